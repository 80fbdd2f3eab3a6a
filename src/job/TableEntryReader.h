#pragma once

#include "job/JobDescription.h"
#include "job/YamlDocument.h"

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace tavix::job {

/// Reads an entry of a job file's list of tables, which must follow the schema.
class TableEntryReader {
  public:
    /// `file`: the name of the job file in messages. `folder`: where relative paths begin.
    TableEntryReader(const YamlDocument& document, std::string file, std::filesystem::path folder,
                     std::size_t rowLogLimit)
        : m_document(document), m_file(std::move(file)), m_folder(std::move(folder)), m_rowLogLimit(rowLogLimit) {}

    /// Reads the table at `pointer`, or one table for each file that matches a pattern. Does not check how the tables
    /// of a job relate to each other. Throws a DocumentProblem.
    [[nodiscard]] std::vector<TableDescription> read(const nlohmann::json& entry, const std::string& pointer) const;

  private:
    [[noreturn]] void fail(const std::string& pointer, std::string text) const;
    std::vector<TableDescription> readFiles(const nlohmann::json& entry, const std::string& pointer) const;
    void readSeveral(TableDescription& table, const nlohmann::json& entry, const std::string& pointer) const;
    void readReading(TableDescription& table, const nlohmann::json& entry, const std::string& pointer) const;
    /// How the values of the fields are read.
    void readForms(TableDescription& table, const nlohmann::json& entry, const std::string& pointer) const;
    void readChecks(TableDescription& table, const nlohmann::json& entry, const std::string& pointer) const;
    [[nodiscard]] std::vector<std::string> matching(const std::string& path, const std::string& pointer) const;
    void readFilter(TableDescription& table, const nlohmann::json& entry, const std::string& pointer) const;
    void readMetrics(TableDescription& table, const nlohmann::json& list, const std::string& pointer) const;
    void readRules(TableDescription& table, const nlohmann::json& list, const std::string& pointer) const;
    [[nodiscard]] char delimiterOf(const std::string& text, const std::string& pointer) const;
    /// Also checks its syntax; its fields are not known yet.
    [[nodiscard]] ExpressionText expressionAt(const nlohmann::json& value, const std::string& pointer) const;

    const YamlDocument& m_document;
    std::string m_file;
    std::filesystem::path m_folder;
    std::size_t m_rowLogLimit;
};

} // namespace tavix::job
