#pragma once

#include "job/YamlDocument.h"

#include <optional>

namespace tavix::job {

/// The first violation, in file order, of the schema of job files (share/job.schema.json, which is built in); none for
/// a valid job file.
[[nodiscard]] std::optional<DocumentProblem> findSchemaProblem(const YamlDocument& document);

/// The same for a document that is a single alert of a table.
[[nodiscard]] std::optional<DocumentProblem> findAlertProblem(const YamlDocument& document);

} // namespace tavix::job
