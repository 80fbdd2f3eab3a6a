#pragma once

#include "base/Result.h"
#include "job/JobDescription.h"
#include "job/YamlDocument.h"

#include <span>
#include <string>
#include <vector>

namespace tavix::job {

/// Reads the alerts of a table of a job file. They must follow the schema, and the table's custom metrics and rules
/// must have been read.
class AlertEntries {
  public:
    /// `file`: the name of the job file in messages.
    AlertEntries(const YamlDocument& document, std::string file, TableDescription& table)
        : m_document(document), m_file(std::move(file)), m_table(table) {}

    /// Adds the alerts to the table. Throws a DocumentProblem.
    void read(const nlohmann::json& list, const std::string& pointer);
    /// Adds the alerts of one entry: one for each of its fields.
    void readEntry(const nlohmann::json& entry, const std::string& pointer);

  private:
    [[noreturn]] void fail(const std::string& pointer, std::string text) const;
    void add(repository::AlertFacts alert, const std::string& fieldPointer);
    void readFigure(repository::AlertFacts& alert, const nlohmann::json& entry, const std::string& pointer) const;
    void readCondition(AlertRule& rule, const nlohmann::json& entry, const std::string& pointer) const;
    [[nodiscard]] MetricId metricOf(const nlohmann::json& entry, const std::string& pointer) const;

    const YamlDocument& m_document;
    std::string m_file;
    TableDescription& m_table;
};

/// Reads an entry that a user typed, with or without braces: "field: price, metric: Null Count, max: 0". Only the name,
/// rules and custom metrics of the table matter; whether it has the fields is not checked.
[[nodiscard]] Result<std::vector<repository::AlertFacts>> readAlertEntry(const std::string& text,
                                                                         TableDescription table);

/// Checks that the fields exist that the table's alerts watch.
[[nodiscard]] Status checkAlertFields(const TableDescription& table, std::span<const std::string> columns);

/// The alerts of all tables, in the order of the job.
[[nodiscard]] std::vector<repository::AlertFacts> alertsOf(const JobDescription& job);

} // namespace tavix::job
