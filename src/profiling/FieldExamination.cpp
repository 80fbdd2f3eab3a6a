#include "profiling/FieldExamination.h"

#include "base/DateTicks.h"
#include "findings/FieldFindings.h"
#include "forms/Reading.h"
#include "forms/ValueKind.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <string_view>

namespace tavix::profiling {

namespace {

using findings::Extreme;
using findings::FieldFigures;
using repository::FieldFacts;

std::uint64_t count(const FieldFacts& facts, MetricId metric) {
    const KvbDatavar& value = facts.metrics[index(metric)];
    return static_cast<std::uint64_t>(value.toInt64());
}

/// How the values of a field are read as numbers or dates.
class Reader {
  public:
    explicit Reader(const FieldFacts& facts) : m_type(facts.typeCode) {
        if (facts.breakdown && facts.breakdown->hasFigures)
            m_reading = forms::Reading::parse(facts.breakdown->reading);
    }

    Extreme read(const repository::Outlier& outlier) const {
        const std::string_view text = outlier.value.view();
        Extreme extreme{text, outlier.count, {}, {}};
        if (m_reading) {
            extreme.number = m_reading->number(text);
            extreme.ticks = m_reading->ticks(text);
        } else if (m_type == 'I' || m_type == 'R') {
            extreme.number = forms::realValue(text);
        } else if (m_type == 'D') {
            extreme.ticks = parseDate(text);
        }
        return extreme;
    }

  private:
    char m_type;
    std::optional<forms::Reading> m_reading;
};

std::optional<double> percentile(const FieldFacts& facts, std::string_view interval) {
    const auto found = std::find_if(facts.percentiles.begin(), facts.percentiles.end(),
                                    [&](const repository::Percentile& each) { return each.interval == interval; });
    if (found == facts.percentiles.end())
        return {};
    const std::string_view text = found->value.view();
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() ? std::optional(number) : std::nullopt;
}

void setBreakdown(FieldFigures& figures, const repository::TypeBreakdown& breakdown) {
    figures.reading = breakdown.reading;
    figures.fit = {breakdown.fitValues, breakdown.fitRows};
    figures.hasFigures = breakdown.hasFigures;
    figures.ambiguity = breakdown.ambiguity;
    for (const repository::FormFacts& form : breakdown.forms)
        figures.forms.push_back({form.form, {form.values, form.rows}, form.example.view()});
}

FieldFigures figuresOf(const FieldFacts& facts, const findings::OrderedFigures& ordered) {
    FieldFigures figures;
    figures.name = facts.name;
    figures.typeCode = facts.typeCode;
    figures.rows = count(facts, MetricId::Count);
    figures.nulls = count(facts, MetricId::NullCount);
    figures.now = ordered.now;
    if (facts.breakdown)
        setBreakdown(figures, *facts.breakdown);
    if (ordered.numbers) {
        figures.lowQuartile = percentile(facts, "25%");
        figures.median = percentile(facts, "50%");
        figures.highQuartile = percentile(facts, "75%");
    }
    const Reader reader(facts);
    for (const repository::Outlier& outlier : facts.outliers)
        (outlier.side == repository::OutlierSide::Low ? figures.lowest : figures.highest)
            .push_back(reader.read(outlier));
    return figures;
}

} // namespace

repository::FindingFacts factsOf(const findings::Finding& finding) {
    return {
        std::string(finding.code), static_cast<int>(finding.likelihood), finding.values, finding.rows, finding.detail,
        finding.condition};
}

void examine(FieldProfile& field, const findings::ValueDetectors& values, const findings::OrderedFigures& ordered) {
    FieldFacts& facts = field.facts;
    const FieldFigures figures = figuresOf(facts, ordered);
    for (const findings::Finding& finding : findings::fieldFindings(
             figures, values, ordered.numbers ? &*ordered.numbers : nullptr, ordered.dates ? &*ordered.dates : nullptr))
        facts.findings.push_back(factsOf(finding));
    findings::FieldSummary& summary = field.summary;
    summary.name = facts.name;
    summary.typeCode = facts.typeCode;
    summary.kind = figures.kindWord();
    summary.pattern = findings::usualPattern(values);
    summary.shown = values.shown();
    if (const KvbDatavar& precision = facts.metrics[index(MetricId::Precision)]; !precision.isNull())
        summary.decimals = precision.toInt64();
    if (ordered.dates && ordered.dates->all().values > 0)
        summary.lastDate = ordered.dates->last();
}

void addChanges(FieldFacts& facts, const findings::FieldSummary& summary, const repository::EarlierField& before,
                std::int64_t now) {
    findings::EarlierField earlier;
    earlier.typeCode = before.typeCode;
    earlier.decimals = before.precision;
    if (before.typeCode == 'D')
        earlier.lastDate = parseDate(before.maximum);
    earlier.moment = ticksOf(before.started);
    earlier.rows = static_cast<std::uint64_t>(std::max<std::int64_t>(before.nonNullCount, 0));
    for (const findings::Finding& change : findings::findChanges(summary, earlier, now)) {
        std::erase_if(facts.findings, [&](const repository::FindingFacts& known) { return known.code == change.code; });
        facts.findings.push_back(factsOf(change));
    }
}

std::string sourceOf(const repository::TableFacts& facts) {
    return facts.dataSource + "|" + facts.catalog + "|" + facts.schema + "|" + facts.name + "|" + facts.query;
}

} // namespace tavix::profiling
