#pragma once

#include "job/JobDescription.h"
#include "job/YamlDocument.h"

#include <optional>
#include <string>
#include <vector>

namespace tavix::job {

/// A password in the list of sources of a job file that need not follow the schema yet; it does not belong there.
[[nodiscard]] std::optional<DocumentProblem> findPassword(const YamlDocument& document);

/// The list of sources of a job file that follows the schema. Throws a DocumentProblem.
[[nodiscard]] std::vector<SourceDescription> readSources(const YamlDocument& document);

/// Whether an entry of the list of tables is read from a database.
[[nodiscard]] bool isDatabaseEntry(const nlohmann::json& entry);

/// Reads such an entry, which follows the schema, as far as it says from where the rows come. Throws a DocumentProblem.
void readDatabaseEntry(TableDescription& table, const YamlDocument& document, const nlohmann::json& entry,
                       const std::string& pointer);

} // namespace tavix::job
