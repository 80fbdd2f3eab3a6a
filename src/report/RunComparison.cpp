#include "report/RunComparison.h"

#include "access/Layouts.h"
#include "access/PrViewer.h"
#include "base/GenException.h"
#include "base/Metrics.h"
#include "base/NumberText.h"
#include "base/TypeWords.h"
#include "report/CheckedCursor.h"
#include "report/DistributionComparison.h"
#include "report/DistributionShare.h"
#include "report/ReportTables.h"

#include <algorithm>
#include <array>
#include <vector>

namespace tavix {

namespace {

using Subject = RunChange::Subject;
using Kind = RunChange::Kind;

constexpr std::int64_t kRowsPerPulse = 4096;

/// The number that the text is, provided it is written digit for digit as we write it; else the text.
KvbDatavar numberOrText(const KvbString& text) {
    if (const auto whole = parseInteger(text.view()); whole && formatInteger(*whole) == text.view())
        return *whole;
    if (const auto real = parseNumber(text.view()); real && formatReal(*real) == text.view())
        return *real;
    return text;
}

struct RecordNumber {
    std::int64_t TableIdentity::*number;
    const char* name;
};
constexpr std::array kRecordNumbers{RecordNumber{&TableIdentity::totalRecords, "Total records"},
                                    RecordNumber{&TableIdentity::processedRecords, "Processed records"},
                                    RecordNumber{&TableIdentity::damagedRecords, "Damaged records"}};

/// A custom metric or a rule.
struct Computed {
    std::string name;
    std::string text; ///< expression or condition
    KvbDatavar value;
    std::optional<double> percent;
};

const std::string& nameOf(const TableIdentity& table) {
    return table.displayName();
}

template <typename Entry>
const std::string& nameOf(const Entry& entry) {
    return entry.name;
}

std::vector<TableIdentity> tablesOf(PrViewer& viewer) {
    return readTables(viewer, kAllDataSources, "");
}

std::vector<Computed> customMetricsOf(PrViewer& viewer, int table) {
    std::vector<Computed> metrics;
    const ProfileCursorHandle cursor = checked(viewer, viewer.getCustomMetrics(table));
    while (cursor->next())
        metrics.push_back({cursor->getColumnValue(layout::CustomMetricName).str(),
                           cursor->getColumnValue(layout::CustomMetricExpression).str(),
                           numberOrText(cursor->getColumnValue(layout::CustomMetricOutputValue)), std::nullopt});
    return metrics;
}

std::optional<double> percentOf(std::int64_t part, std::int64_t whole) {
    return whole > 0 ? std::optional(100.0 * static_cast<double>(part) / static_cast<double>(whole)) : std::nullopt;
}

std::vector<Computed> rulesOf(PrViewer& viewer, int table) {
    std::vector<Computed> rules;
    const ProfileCursorHandle cursor = checked(viewer, viewer.getBusinessRules(table));
    while (cursor->next()) {
        const std::int64_t failed = cursor->getColumnInt64(layout::RuleFailedRows);
        const std::int64_t all = cursor->getColumnInt64(layout::RuleCheckedRows);
        rules.push_back({cursor->getColumnValue(layout::RuleName).str(),
                         cursor->getColumnValue(layout::RuleCondition).str(), failed, percentOf(failed, all)});
    }
    return rules;
}

template <typename Entry>
const Entry* findByName(const std::vector<Entry>& entries, const std::string& name) {
    const auto found = std::find_if(entries.begin(), entries.end(), [&](const Entry& e) { return nameOf(e) == name; });
    return found == entries.end() ? nullptr : &*found;
}

/// The distribution of a field in the current run of a session.
class StoredTexts final : public CountedTexts {
  public:
    StoredTexts(PrViewer& viewer, const FieldRecord& field, bool isPatterns, const std::function<void()>& pulse)
        : m_viewer(viewer),
          m_field(field.id),
          m_isPatterns(isPatterns),
          m_pulse(pulse),
          m_size(isPatterns ? viewer.getPatternDistCount(field.id) : viewer.getFreqDistCount(field.id)),
          m_rows(isPatterns ? patternTotal(field.metrics) : viewer.getFreqDistSum(field.id)) {
        if (m_size < 0 || m_rows < 0)
            throw GenException(viewer.getErrorString());
    }

    [[nodiscard]] std::int64_t size() const override { return m_size; }
    [[nodiscard]] std::int64_t rows() const override { return m_rows; }

    void walk(const Visitor& visitor) override {
        const ProfileCursorHandle cursor =
            checked(m_viewer, m_isPatterns ? m_viewer.getPatternDist(m_field, "") : m_viewer.getFreqDist(m_field, ""));
        const int textColumn = m_isPatterns ? int{layout::PatternText} : int{layout::FreqValue};
        const int countColumn = m_isPatterns ? int{layout::PatternCountColumn} : int{layout::FreqCount};
        for (std::int64_t row = 0; cursor->next(); ++row) {
            if (m_pulse && row % kRowsPerPulse == 0)
                m_pulse();
            const KvbString text = cursor->getColumnValue(textColumn);
            if (!visitor(text.view(), text.isNull(), cursor->getColumnInt64(countColumn)))
                return;
        }
    }

  private:
    PrViewer& m_viewer;
    int m_field;
    bool m_isPatterns;
    const std::function<void()>& m_pulse;
    std::int64_t m_size;
    std::int64_t m_rows;
};

class Comparison {
  public:
    Comparison(PrViewer& before, PrViewer& after, const RunComparisonOptions& options,
               const std::function<void(const RunChange&)>& sink)
        : m_before(before), m_after(after), m_options(options), m_sink(sink) {}

    void run() {
        const std::vector<TableIdentity> before = tablesOf(m_before);
        const std::vector<TableIdentity> after = tablesOf(m_after);
        for (const TableIdentity& table : after) {
            if (m_options.table && nameOf(table) != *m_options.table)
                continue;
            if (const TableIdentity* earlier = findByName(before, nameOf(table)))
                compareTables(*earlier, table);
            else
                tell(Subject::Table, Kind::New, nameOf(table), "");
        }
        for (const TableIdentity& table : before)
            if (!findByName(after, nameOf(table)) && (!m_options.table || nameOf(table) == *m_options.table))
                tell(Subject::Table, Kind::Vanished, nameOf(table), "");
    }

  private:
    void tell(Subject subject, Kind kind, const std::string& table, const std::string& field) {
        m_sink({subject, kind, table, field, {}, {}, {}, {}, {}});
    }
    void pulse() const {
        if (m_options.pulse)
            m_options.pulse();
    }

    void compareTables(const TableIdentity& before, const TableIdentity& after) {
        for (const auto& [number, name] : kRecordNumbers)
            if (before.*number != after.*number)
                m_sink(
                    {Subject::Records, Kind::Changed, nameOf(after), "", name, before.*number, after.*number, {}, {}});
        compareComputed(nameOf(after), customMetricsOf(m_before, before.id), customMetricsOf(m_after, after.id),
                        Subject::CustomMetric, Subject::Expression);
        compareComputed(nameOf(after), rulesOf(m_before, before.id), rulesOf(m_after, after.id), Subject::Rule,
                        Subject::Condition);
        const std::vector<FieldRecord> fieldsBefore = readFields(m_before, before.id);
        const std::vector<FieldRecord> fieldsAfter = readFields(m_after, after.id);
        for (const FieldRecord& field : fieldsAfter) {
            pulse();
            if (const FieldRecord* earlier = findByName(fieldsBefore, field.name))
                compareFields(nameOf(after), *earlier, field);
            else
                tell(Subject::Field, Kind::New, nameOf(after), field.name);
        }
        for (const FieldRecord& field : fieldsBefore)
            if (!findByName(fieldsAfter, field.name))
                tell(Subject::Field, Kind::Vanished, nameOf(after), field.name);
    }

    void compareComputed(const std::string& table, const std::vector<Computed>& before,
                         const std::vector<Computed>& after, Subject value, Subject text) {
        for (const Computed& one : after) {
            const Computed* earlier = findByName(before, one.name);
            if (!earlier) {
                m_sink({value, Kind::New, table, "", one.name, {}, one.value, {}, one.percent});
                continue;
            }
            if (earlier->text != one.text)
                m_sink({text, Kind::Changed, table, "", one.name, earlier->text, one.text, {}, {}});
            if (!(earlier->value == one.value) || earlier->percent != one.percent)
                m_sink({value, Kind::Changed, table, "", one.name, earlier->value, one.value, earlier->percent,
                        one.percent});
        }
        for (const Computed& one : before)
            if (!findByName(after, one.name))
                m_sink({value, Kind::Vanished, table, "", one.name, one.value, {}, one.percent, {}});
    }

    /// A number or a text; a metric that is a value of the field is a number when the field is numeric in both runs.
    static KvbDatavar metricCell(const KvbString& text, MetricValue value, bool isNumeric) {
        const bool isText = value == MetricValue::Word || (value == MetricValue::FieldValue && !isNumeric);
        return isText ? KvbDatavar(text) : numberOrText(text);
    }

    void compareFields(const std::string& table, const FieldRecord& before, const FieldRecord& after) {
        const bool isNumeric = isNumericType(before.typeCode) && isNumericType(after.typeCode);
        for (const MetricInfo& metric : metricCatalogue()) {
            const KvbString& was = before.metrics[index(metric.id)];
            const KvbString& is = after.metrics[index(metric.id)];
            if (was == is)
                continue;
            m_sink({Subject::Metric,
                    Kind::Changed,
                    table,
                    after.name,
                    metric.name,
                    metricCell(was, metric.value, isNumeric),
                    metricCell(is, metric.value, isNumeric),
                    {},
                    {}});
        }
        if (m_options.top == 0)
            return;
        compareTexts(table, before, after, false);
        compareTexts(table, before, after, true);
    }

    void compareTexts(const std::string& table, const FieldRecord& before, const FieldRecord& after, bool isPatterns) {
        StoredTexts textsBefore(m_before, before, isPatterns, m_options.pulse);
        StoredTexts textsAfter(m_after, after, isPatterns, m_options.pulse);
        const DistributionChanges changes = compareDistributions(textsBefore, textsAfter, {m_options.top});
        const Subject all = isPatterns ? Subject::Patterns : Subject::Values;
        const Subject one = isPatterns ? Subject::Pattern : Subject::Value;
        const std::array groups{std::pair{Kind::New, &changes.appeared}, std::pair{Kind::Vanished, &changes.vanished},
                                std::pair{Kind::Changed, &changes.moved}};
        for (const auto& [kind, group] : groups) {
            if (group->texts == 0)
                continue;
            const bool wasThere = kind != Kind::New;
            const bool isThere = kind != Kind::Vanished;
            const DistributionKind kindOfTexts = isPatterns ? DistributionKind::Pattern : DistributionKind::Frequency;
            const auto percent = [kindOfTexts](bool present, std::int64_t part, std::int64_t whole) {
                return present ? DistributionShare(kindOfTexts, false, whole).PercentOf(part) : std::nullopt;
            };
            const auto number = [](bool present, std::int64_t count) {
                return present ? KvbDatavar(count) : KvbDatavar();
            };
            m_sink({all,
                    kind,
                    table,
                    after.name,
                    {},
                    number(wasThere, group->texts),
                    number(isThere, group->texts),
                    percent(wasThere, group->rowsBefore, changes.rowsBefore),
                    percent(isThere, group->rowsAfter, changes.rowsAfter)});
            for (const ValueChange& change : group->top)
                m_sink({one, kind, table, after.name, change.text, number(wasThere, change.before),
                        number(isThere, change.after), percent(wasThere, change.before, changes.rowsBefore),
                        percent(isThere, change.after, changes.rowsAfter)});
        }
    }

    PrViewer& m_before;
    PrViewer& m_after;
    const RunComparisonOptions& m_options;
    const std::function<void(const RunChange&)>& m_sink;
};

} // namespace

KvbDatavar differenceOf(const RunChange& change) {
    const auto* wholeBefore = std::get_if<std::int64_t>(&change.before.storage());
    const auto* wholeAfter = std::get_if<std::int64_t>(&change.after.storage());
    std::int64_t difference = 0;
    if (wholeBefore && wholeAfter && !__builtin_sub_overflow(*wholeAfter, *wholeBefore, &difference))
        return difference;
    const auto isNumber = [](const KvbDatavar& value) {
        return std::holds_alternative<double>(value.storage()) || std::holds_alternative<std::int64_t>(value.storage());
    };
    if (!isNumber(change.before) || !isNumber(change.after))
        return {};
    return change.after.toDouble() - change.before.toDouble();
}

void compareRuns(PrViewer& before, PrViewer& after, const RunComparisonOptions& options,
                 const std::function<void(const RunChange&)>& sink) {
    Comparison(before, after, options, sink).run();
}

} // namespace tavix
