#pragma once

#include "job/YamlDocument.h"

#include <optional>

namespace tavix::job {

/// The first thing, in the order of the file, in which a document breaks the schema of job files
/// (share/job.schema.json, which is built in); none when it is a job file.
[[nodiscard]] std::optional<DocumentProblem> findSchemaProblem(const YamlDocument& document);

} // namespace tavix::job
