#include "report/JobFileText.h"

#include "access/CursorText.h"
#include "access/Layouts.h"
#include "access/PrViewer.h"
#include "access/TableSource.h"
#include "base/LibraryDate.h"
#include "base/NumberText.h"
#include "report/AlertEntryText.h"
#include "report/AlertStates.h"
#include "report/CheckedCursor.h"
#include "report/CountText.h"
#include "report/ReportTables.h"
#include "report/YamlText.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <string_view>
#include <utility>
#include <vector>

namespace tavix {

namespace {

/// As the reader of job files limits it.
constexpr std::size_t kLargestFile = std::size_t{1} << 20;

std::string suggestedEntry(const RuleSuggestion& suggestion) {
    const SuggestedAlert& alert = *suggestion.alert;
    const std::string watched = suggestion.element == SuggestedElement::MetricAlert
                                    ? "custom metric: " + yamlScalar(suggestion.name)
                                    : fmt::format("field: {}, metric: {}", yamlScalar(suggestion.field),
                                                  metricCatalogue()[index(alert.metric)].name);
    return fmt::format("{}, {}: {}", watched, alert.isLeast ? "min" : "max", formatReal(alert.bound));
}

/// As a setting of a connection string.
std::string settingText(std::string_view value) {
    if (value.find_first_of(";{}") == std::string_view::npos)
        return std::string(value);
    std::string made = "{";
    for (const char c : value)
        made += c == '}' ? "}}" : std::string(1, c);
    return made + '}';
}

std::string connectionText(const TableSource& source) {
    return source.user.empty() ? source.connection : source.connection + ";UID=" + settingText(source.user);
}

/// The elements of a job file below a table, each kind in its list.
struct TableLists {
    std::string metrics, rules, alerts;
};

class Writer {
  public:
    Writer(PrViewer& viewer, int job, std::span<const RuleSuggestion> suggestions, int tableId)
        : m_viewer(viewer), m_job(job), m_suggestions(suggestions) {
        const std::vector<TableIdentity> all = readTables(viewer);
        const auto chosen =
            std::find_if(all.begin(), all.end(), [&](const auto& table) { return table.id == tableId; });
        const TableIdentity* const base =
            chosen != all.end() && chosen->kind == TableKind::Filter ? findBaseTable(all, *chosen) : nullptr;
        for (const TableIdentity& table : all)
            if (tableId == -1 || table.id == tableId || (base && table.id == base->id))
                m_tables.push_back(table);
        m_isWhole = m_tables.size() == all.size();
    }

    Result<std::string> run() {
        writeHead();
        for (const TableIdentity& table : m_tables)
            if (table.kind != TableKind::Filter)
                if (Status status = readSource(table); !status)
                    return status.error();
        writeSources();
        readKnown();
        for (const RuleSuggestion& suggestion : m_suggestions)
            addSuggestion(suggestion);
        m_text += "\ntables:\n";
        for (const TableIdentity& table : m_tables)
            if (Status status = writeTable(table); !status)
                return status.error();
        if (!isYamlText(m_text))
            return Error{"A name, path or condition is not UTF-8 text, so a job file cannot have it."};
        if (m_text.size() > kLargestFile)
            return Error{"The job file would be larger than 1 MiB: choose a table or fewer kinds of rules."};
        return std::move(m_text);
    }

  private:
    void writeHead() {
        const ProfileCursorHandle job = checked(m_viewer, m_viewer.getReport(m_job));
        std::string name;
        std::string description;
        if (job->next()) {
            name = textAt(*job, layout::ReportRowName);
            description = textAt(*job, layout::ReportRowDescription);
        }
        const auto violated = std::count_if(m_suggestions.begin(), m_suggestions.end(),
                                            [](const RuleSuggestion& one) { return one.violations > 0; });
        m_text +=
            fmt::format("# Suggested by run {} of the job {}: {}, {} violated in that run.\n", m_viewer.getCurrentJob(),
                        yamlComment(name), countOf(static_cast<std::int64_t>(m_suggestions.size()), "rule"), violated);
        m_text += "# Read each before you use it. \"tavix profile FILE --dry-run\" checks the file.\n";
        if (!m_isWhole && m_tables.size() > 0)
            name += ": " + m_tables.back().displayName();
        m_text += fmt::format("job: {}\n", yamlScalar(name));
        if (!description.empty())
            m_text += fmt::format("description: {}\n", yamlScalar(description));
    }

    Status readSource(const TableIdentity& table) {
        TableSource source;
        if (!m_viewer.getTableSource(table.id, source))
            return Error{m_viewer.getErrorString().str()};
        if (!source.connection.empty())
            m_connections.emplace(table.dataSource, connectionText(source));
        else if (m_fileSource.empty())
            m_fileSource = table.dataSource;
        m_sources.emplace(table.id, std::move(source));
        return {};
    }

    void writeSources() {
        if (!m_fileSource.empty())
            m_text += fmt::format("source: {}\n", yamlScalar(m_fileSource));
        if (m_connections.empty())
            return;
        m_text += "\nsources:\n";
        for (const auto& [name, connection] : m_connections)
            m_text += fmt::format("  - {{name: {}, odbc: {}}}\n", yamlScalar(name), yamlScalar(connection));
    }

    void readKnown() {
        constexpr int kAllTables = -1;
        const ProfileCursorHandle metrics = checked(m_viewer, m_viewer.getCustomMetrics(kAllTables));
        while (metrics->next()) {
            const std::string name = textAt(*metrics, layout::CustomMetricName);
            const std::string output = textAt(*metrics, layout::CustomMetricOutputName);
            std::string& list = m_lists[metrics->getColumnInt(layout::CustomMetricTableId)].metrics;
            list += fmt::format("      - name: {}\n", yamlScalar(name));
            if (output != name)
                list += fmt::format("        output: {}\n", yamlScalar(output));
            list += fmt::format("        {}: {}\n", textAt(*metrics, layout::CustomMetricFigure),
                                yamlScalar(textAt(*metrics, layout::CustomMetricExpression)));
        }
        const ProfileCursorHandle rules = checked(m_viewer, m_viewer.getBusinessRules(kAllTables));
        while (rules->next()) {
            const int table = rules->getColumnInt(layout::RuleTableId);
            readKey(table, rules->getColumnInt(layout::RuleId));
            addRule(table, textAt(*rules, layout::RuleName), textAt(*rules, layout::RuleCondition));
        }
        for (const AlertState& alert : readAlertStates(m_viewer, m_job))
            if (alert.rule)
                m_lists[alert.tableId].alerts += fmt::format("      - {{{}}}\n", alertEntryText(alert));
    }

    /// The rows that a run keeps for a rule have the fields of the table's key.
    void readKey(int table, int rule) {
        if (m_keys.contains(table))
            return;
        std::string& key = m_keys[table];
        const ProfileCursorHandle rows = checked(m_viewer, m_viewer.getBusinessRuleRowLog(rule, 0, false));
        for (int column = layout::RuleRowFirstField; column < rows->getColumnCount(); ++column)
            key += (key.empty() ? "" : ", ") + yamlScalar(rows->getColumnName(column).str());
    }

    void addRule(int table, const std::string& name, const std::string& condition) {
        m_lists[table].rules +=
            fmt::format("      - name: {}\n        condition: {}\n", yamlScalar(name), yamlScalar(condition));
    }

    static std::string commentOf(const RuleSuggestion& suggestion, std::string_view indent) {
        std::string comment = fmt::format("{}# {}, {} confidence: {}. Violations: {}.\n", indent,
                                          suggestionWord(suggestion.kind), confidenceWord(suggestion.confidence),
                                          yamlComment(suggestion.reason), suggestion.violationText());
        if (!suggestion.remark.empty())
            comment += fmt::format("{}# {}\n", indent, yamlComment(suggestion.remark));
        return comment;
    }

    void addSuggestion(const RuleSuggestion& suggestion) {
        TableLists& lists = m_lists[suggestion.tableId];
        const std::string comment = commentOf(suggestion, "      ");
        switch (suggestion.element) {
        case SuggestedElement::Rule:
            lists.rules += comment;
            addRule(suggestion.tableId, suggestion.name, suggestion.condition);
            break;
        case SuggestedElement::MetricAlert:
            lists.metrics +=
                fmt::format("{}      - name: {}\n        output: {}s\n        metric: {}\n", comment,
                            yamlScalar(suggestion.name), suggestion.violationNoun, yamlScalar(suggestion.condition));
            lists.alerts += fmt::format("      - {{{}}}\n", suggestedEntry(suggestion));
            break;
        case SuggestedElement::Alert:
            lists.alerts += comment + fmt::format("      - {{{}}}\n", suggestedEntry(suggestion));
            break;
        case SuggestedElement::Remark:
            m_remarks[suggestion.tableId] +=
                fmt::format("    # {}\n{}", yamlComment(suggestion.name), commentOf(suggestion, "    "));
            break;
        }
    }

    Status writeTable(const TableIdentity& table) {
        if (table.kind == TableKind::Filter) {
            const TableIdentity* const base = findBaseTable(m_tables, table);
            if (!base)
                return Error{fmt::format("The run does not have the table that \"{}\" filters.", table.displayName())};
            m_text += fmt::format("  - name: {}\n    based on: {}\n    where: {}\n", yamlScalar(table.displayName()),
                                  yamlScalar(base->displayName()), yamlScalar(table.filter));
        } else if (const TableSource& source = m_sources.at(table.id); source.connection.empty()) {
            writeFiles(table, source);
        } else {
            writeDatabaseTable(table);
        }
        if (const auto key = m_keys.find(table.id); key != m_keys.end() && !key->second.empty())
            m_text += fmt::format("    key: [{}]\n", key->second);
        const TableLists& lists = m_lists[table.id];
        m_text += m_remarks[table.id];
        if (!lists.metrics.empty())
            m_text += "    custom metrics:\n" + lists.metrics;
        if (!lists.rules.empty())
            m_text += "    rules:\n" + lists.rules;
        if (!lists.alerts.empty())
            m_text += "    alerts:\n" + lists.alerts;
        m_text += '\n';
        return {};
    }

    void writeFiles(const TableIdentity& table, const TableSource& source) {
        m_text += fmt::format("  - name: {}\n", yamlScalar(table.displayName()));
        const TableSource::File& first = source.files.front();
        if (source.files.size() == 1) {
            m_text += fmt::format("    file: {}\n", yamlScalar(first.path));
        } else {
            m_text += "    files:\n";
            for (const TableSource::File& file : source.files)
                m_text += fmt::format("      - {}\n", yamlScalar(file.path));
        }
        // Of several files, each may have been found to have its own form.
        const auto areAlike = [&](auto member) {
            return std::all_of(source.files.begin(), source.files.end(),
                               [&](const TableSource::File& file) { return file.*member == first.*member; });
        };
        if (first.delimiter > ' ' && areAlike(&TableSource::File::delimiter))
            m_text += fmt::format("    delimiter: {}\n", yamlScalar(std::string(1, first.delimiter)));
        else if (first.delimiter == '\t' && areAlike(&TableSource::File::delimiter))
            m_text += "    delimiter: tab\n";
        if (!first.encoding.empty() && areAlike(&TableSource::File::encoding))
            m_text += fmt::format("    encoding: {}\n", yamlScalar(first.encoding));
        if (!source.hasHeader)
            m_text += "    header: false\n";
        if (source.quote != '"')
            m_text += fmt::format("    quote: {}\n",
                                  source.quote == 0 ? std::string("none") : yamlScalar(std::string(1, source.quote)));
        if (table.isSample)
            m_text +=
                "    # The run profiled a sample of the rows, which it did not record. To profile one again, add:\n"
                "    # sample: {percent: 5, seed: 42}\n";
    }

    void writeDatabaseTable(const TableIdentity& table) {
        m_text += fmt::format("  - name: {}\n    source: {}\n", yamlScalar(table.displayName()),
                              yamlScalar(table.dataSource));
        if (!table.query.empty()) {
            m_text += fmt::format("    query: {}\n", yamlScalar(table.query));
            return;
        }
        m_text += fmt::format("    table: {}\n", yamlScalar(table.name));
        if (!table.schema.empty())
            m_text += fmt::format("    schema: {}\n", yamlScalar(table.schema));
        if (!table.catalog.empty())
            m_text += fmt::format("    catalog: {}\n", yamlScalar(table.catalog));
    }

    PrViewer& m_viewer;
    int m_job;
    std::span<const RuleSuggestion> m_suggestions;
    std::vector<TableIdentity> m_tables;
    bool m_isWhole = true;
    std::map<int, TableSource> m_sources;             ///< by table
    std::map<std::string, std::string> m_connections; ///< by the name of the database
    std::string m_fileSource;                         ///< the name of the text files' data source
    std::map<int, TableLists> m_lists;
    std::map<int, std::string> m_keys;    ///< the fields as the entries of a list
    std::map<int, std::string> m_remarks; ///< comments of a table
    std::string m_text;
};

} // namespace

Result<std::string> jobFileText(PrViewer& viewer, int job, std::span<const RuleSuggestion> suggestions, int tableId) {
    return Writer(viewer, job, suggestions, tableId).run();
}

} // namespace tavix
