#pragma once

#include "job/JobDescription.h"
#include "job/YamlDocument.h"

#include <optional>
#include <string>
#include <vector>

namespace tavix::job {

/// Finds a password in the sources of a job file, where it does not belong. The file need not follow the schema yet.
[[nodiscard]] std::optional<DocumentProblem> findPassword(const YamlDocument& document);

/// Reads the sources of a job file that follows the schema. Throws a DocumentProblem.
[[nodiscard]] std::vector<SourceDescription> readSources(const YamlDocument& document);

/// Whether an entry of the list of tables is a database table.
[[nodiscard]] bool isDatabaseEntry(const nlohmann::json& entry);

/// Reads from where such an entry, which must follow the schema, takes its rows. Throws a DocumentProblem.
void readDatabaseEntry(TableDescription& table, const YamlDocument& document, const nlohmann::json& entry,
                       const std::string& pointer);

} // namespace tavix::job
