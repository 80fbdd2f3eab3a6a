#include "report/RunComparison.h"

#include "access/Layouts.h"
#include "access/PrViewer.h"
#include "base/GenException.h"
#include "base/Metrics.h"
#include "base/NumberText.h"
#include "base/TypeWords.h"
#include "report/ChangeWeights.h"
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
    bool isOfAll; ///< a part of all records
};
constexpr std::array kRecordNumbers{RecordNumber{&TableIdentity::totalRecords, kTotalRecords, false},
                                    RecordNumber{&TableIdentity::processedRecords, kProcessedRecords, false},
                                    RecordNumber{&TableIdentity::damagedRecords, "Damaged records", true}};

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
    /// `pulse` is called for every kRowsPerPulse texts.
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
            if (row % kRowsPerPulse == 0)
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
            if (!isWanted(nameOf(table)))
                continue;
            if (const TableIdentity* earlier = findByName(before, nameOf(table)))
                compareTables(*earlier, table);
            else
                tell({Subject::Table, Kind::New, nameOf(table), "", {}, {}, {}, {}, {}}, kWholeChange);
        }
        for (const TableIdentity& table : before)
            if (!findByName(after, nameOf(table)) && isWanted(nameOf(table)))
                tell({Subject::Table, Kind::Vanished, nameOf(table), "", {}, {}, {}, {}, {}}, kWholeChange);
    }

  private:
    [[nodiscard]] bool isWanted(const std::string& table) const {
        if (m_options.table && table != *m_options.table)
            return false;
        if (!m_options.fields)
            return true;
        const auto first = m_options.fields->lower_bound({table, ""});
        return first != m_options.fields->end() && first->first == table;
    }
    [[nodiscard]] bool isWanted(const std::string& table, const FieldRecord& field) const {
        return !m_options.fields || m_options.fields->contains({table, field.name});
    }
    void tell(RunChange change, const ChangeWeight& weight) {
        change.weight = weight.percent;
        change.followsRows = weight.followsRows;
        m_sink(change);
    }
    void pulse() {
        if (m_options.pulse)
            m_options.pulse();
        if (m_options.progress)
            m_options.progress(m_table, m_done + std::min(m_walked, m_walks), m_total);
    }

    void compareTables(const TableIdentity& before, const TableIdentity& after) {
        m_table = nameOf(after);
        for (const auto& [number, name, isOfAll] : kRecordNumbers) {
            const std::int64_t was = before.*number;
            const std::int64_t is = after.*number;
            if (was != is)
                tell({Subject::Records, Kind::Changed, m_table, "", name, was, is, {}, {}},
                     isOfAll ? weightOfShare(percentOf(was, before.totalRecords), percentOf(is, after.totalRecords))
                             : ChangeWeight{relativeChange(static_cast<double>(was), static_cast<double>(is)), false});
        }
        if (!m_options.fields) {
            compareComputed(before, after, customMetricsOf(m_before, before.id), customMetricsOf(m_after, after.id),
                            Subject::CustomMetric, Subject::Expression);
            compareComputed(before, after, rulesOf(m_before, before.id), rulesOf(m_after, after.id), Subject::Rule,
                            Subject::Condition);
        }
        compareFieldsOf(readFields(m_before, before.id), readFields(m_after, after.id));
    }

    void compareFieldsOf(const std::vector<FieldRecord>& before, const std::vector<FieldRecord>& after) {
        m_done = m_total = 0;
        for (const FieldRecord& field : after)
            if (const FieldRecord* earlier = findByName(before, field.name); earlier && isWanted(m_table, field))
                m_total += textsOf(*earlier, field);
        for (const FieldRecord& field : after) {
            if (!isWanted(m_table, field))
                continue;
            m_walked = m_walks = 0;
            pulse();
            if (const FieldRecord* earlier = findByName(before, field.name)) {
                m_walks = textsOf(*earlier, field);
                compareFields(*earlier, field);
                m_done += m_walks;
            } else
                tell({Subject::Field, Kind::New, m_table, field.name, {}, {}, {}, {}, {}}, kWholeChange);
        }
        for (const FieldRecord& field : before)
            if (!findByName(after, field.name) && isWanted(m_table, field))
                tell({Subject::Field, Kind::Vanished, m_table, field.name, {}, {}, {}, {}, {}}, kWholeChange);
    }
    static std::int64_t textsOf(const FieldRecord& before, const FieldRecord& after) {
        return before.freqCount + after.freqCount + before.patternCount + after.patternCount;
    }

    static ChangeWeight weightOfCustomMetric(const KvbDatavar& was, const KvbDatavar& is, const TableIdentity& before,
                                             const TableIdentity& after) {
        const double figureBefore = was.toDouble();
        const double figureAfter = is.toDouble();
        if (figureBefore == figureAfter) // texts
            return {
                100 / static_cast<double>(std::max({std::int64_t{1}, before.processedRecords, after.processedRecords})),
                false};
        return weightOfFigure(figureBefore, figureAfter, before.processedRecords, after.processedRecords);
    }
    void compareComputed(const TableIdentity& tableBefore, const TableIdentity& tableAfter,
                         const std::vector<Computed>& before, const std::vector<Computed>& after, Subject value,
                         Subject text) {
        for (const Computed& one : after) {
            const Computed* earlier = findByName(before, one.name);
            if (!earlier) {
                tell({value, Kind::New, m_table, "", one.name, {}, one.value, {}, one.percent}, kWholeChange);
                continue;
            }
            if (earlier->text != one.text)
                tell({text, Kind::Changed, m_table, "", one.name, earlier->text, one.text, {}, {}}, kWholeChange);
            if (!(earlier->value == one.value) || earlier->percent != one.percent)
                tell({value, Kind::Changed, m_table, "", one.name, earlier->value, one.value, earlier->percent,
                      one.percent},
                     value == Subject::Rule ? weightOfShare(earlier->percent, one.percent)
                                            : weightOfCustomMetric(earlier->value, one.value, tableBefore, tableAfter));
        }
        for (const Computed& one : before)
            if (!findByName(after, one.name))
                tell({value, Kind::Vanished, m_table, "", one.name, one.value, {}, one.percent, {}}, kWholeChange);
    }

    /// A number or a text; a metric that is a value of the field is a number when the field is numeric in both runs.
    static KvbDatavar metricCell(const KvbString& text, MetricValue value, bool isNumeric) {
        const bool isText = value == MetricValue::Word || (value == MetricValue::FieldValue && !isNumeric);
        return isText ? KvbDatavar(text) : numberOrText(text);
    }

    static FigureBasis basisOf(MetricId metric, const FieldRecord& before, const FieldRecord& after) {
        if (!isOverFits(static_cast<int>(metric)) || (!before.fits && !after.fits))
            return FigureBasis::AllValues;
        if (before.fits && after.fits)
            return FigureBasis::Fits;
        return before.fits ? FigureBasis::FitsBefore : FigureBasis::FitsAfter;
    }

    void compareFields(const FieldRecord& before, const FieldRecord& after) {
        const bool isNumeric = isNumericType(before.figureTypeCode()) && isNumericType(after.figureTypeCode());
        for (const MetricInfo& metric : metricCatalogue()) {
            const KvbString& was = before.metrics[index(metric.id)];
            const KvbString& is = after.metrics[index(metric.id)];
            if (was == is)
                continue;
            RunChange change{Subject::Metric,
                             Kind::Changed,
                             m_table,
                             after.name,
                             metric.name,
                             metricCell(was, metric.value, isNumeric),
                             metricCell(is, metric.value, isNumeric),
                             {},
                             {}};
            change.basis = basisOf(metric.id, before, after);
            tell(std::move(change), weightOfMetric(metric.id, before, after));
        }
        if (m_options.top == 0)
            return;
        compareTexts(before, after, false);
        compareTexts(before, after, true);
    }

    /// Of the run in which more rows have a value.
    static double percentWithValue(const FieldRecord& before, const FieldRecord& after) {
        const auto percentNull = [](const FieldRecord& field) {
            return parseNumber(field.metrics[index(MetricId::PercentNull)].view()).value_or(0);
        };
        return 100 - std::min(percentNull(before), percentNull(after));
    }

    void compareTexts(const FieldRecord& before, const FieldRecord& after, bool isPatterns) {
        const std::function<void()> walked = [this] {
            m_walked += kRowsPerPulse;
            pulse();
        };
        StoredTexts textsBefore(m_before, before, isPatterns, walked);
        StoredTexts textsAfter(m_after, after, isPatterns, walked);
        const DistributionChanges changes = compareDistributions(textsBefore, textsAfter, {m_options.top});
        const double percentWithText = isPatterns ? percentWithValue(before, after) : 100;
        ChangeWeight weight = weightOfTexts(changes, percentWithText);
        // The rows with a pattern also change with the nulls.
        weight.followsRows =
            weight.followsRows && before.metrics[index(MetricId::Count)] != after.metrics[index(MetricId::Count)];
        const Subject all = isPatterns ? Subject::Patterns : Subject::Values;
        const Subject one = isPatterns ? Subject::Pattern : Subject::Value;
        const DistributionKind kindOfTexts = isPatterns ? DistributionKind::Pattern : DistributionKind::Frequency;
        const auto percent = [kindOfTexts](bool present, std::int64_t part, std::int64_t whole) {
            return present ? DistributionShare(kindOfTexts, false, whole).PercentOf(part) : std::nullopt;
        };
        const auto number = [](bool present, std::int64_t count) { return present ? KvbDatavar(count) : KvbDatavar(); };
        const std::array groups{std::pair{Kind::New, &changes.appeared}, std::pair{Kind::Vanished, &changes.vanished},
                                std::pair{Kind::Changed, &changes.moved}};
        for (const auto& [kind, group] : groups) {
            if (group->texts == 0)
                continue;
            const bool wasThere = kind != Kind::New;
            const bool isThere = kind != Kind::Vanished;
            tell({all,
                  kind,
                  m_table,
                  after.name,
                  {},
                  number(wasThere, group->texts),
                  number(isThere, group->texts),
                  percent(wasThere, group->rowsBefore, changes.rowsBefore),
                  percent(isThere, group->rowsAfter, changes.rowsAfter)},
                 weight);
            for (const ValueChange& change : group->top) {
                const auto was = percent(wasThere, change.before, changes.rowsBefore);
                const auto is = percent(isThere, change.after, changes.rowsAfter);
                const double moved = weightOfShare(was, is).percent * percentWithText / 100;
                tell({one, kind, m_table, after.name, change.text, number(wasThere, change.before),
                      number(isThere, change.after), was, is},
                     {moved, weight.followsRows});
            }
        }
    }

    PrViewer& m_before;
    PrViewer& m_after;
    const RunComparisonOptions& m_options;
    const std::function<void(const RunChange&)>& m_sink;
    std::string m_table;       ///< that is being compared
    std::int64_t m_total = 0;  ///< texts of its fields
    std::int64_t m_done = 0;   ///< of the fields before
    std::int64_t m_walks = 0;  ///< of the field
    std::int64_t m_walked = 0; ///< of the field, some of them twice
};

} // namespace

std::string_view basisMark(FigureBasis basis) {
    switch (basis) {
    case FigureBasis::Fits:
        return "(fits)";
    case FigureBasis::FitsBefore:
        return "(fits in the earlier run only)";
    case FigureBasis::FitsAfter:
        return "(fits in the later run only)";
    case FigureBasis::AllValues:
        break;
    }
    return {};
}

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
