#include "report/ChangeWeights.h"

#include "base/NumberText.h"
#include "base/TypeWords.h"
#include "report/DistributionComparison.h"

#include <algorithm>
#include <cmath>

namespace tavix {

namespace {

/// A metric of both runs as numbers; nothing unless it is one in both.
struct Figures {
    double before = 0;
    double after = 0;
};

std::optional<Figures> figuresOf(MetricId metric, const FieldRecord& before, const FieldRecord& after) {
    const auto was = parseNumber(before.metrics[index(metric)].view());
    const auto is = parseNumber(after.metrics[index(metric)].view());
    return was && is ? std::optional(Figures{*was, *is}) : std::nullopt;
}

/// Rows of a kind out of all rows.
ChangeWeight weightOfRows(const Figures& part, const Figures& rows) {
    const bool isProportional = part.before * rows.after == part.after * rows.before;
    const double share = std::abs(part.after / rows.after - part.before / rows.before);
    return {isProportional ? 0 : 100 * share, isProportional && rows.before != rows.after};
}

/// By how much a figure lies outside what the rows explain: added rows may contribute as much as the others, or
/// nothing.
double beyondGrowth(const Figures& figure, const Figures& rows) {
    const double inProportion = figure.before * rows.after / rows.before;
    return std::max({0.0, std::min(figure.before, inProportion) - figure.after,
                     figure.after - std::max(figure.before, inProportion)});
}

ChangeWeight weightOfDistinct(const Figures& texts, const Figures& rows) {
    const double beyond = beyondGrowth(texts, rows);
    const double percent = 100 * beyond / std::max(rows.before, rows.after);
    return {std::min(100.0, percent), beyond == 0 && rows.before != rows.after};
}

/// If no value leaves the range, the mean moves by at most its width times the share of the rows that change.
std::optional<ChangeWeight> weightInRange(MetricId metric, const FieldRecord& before, const FieldRecord& after) {
    if (!isNumericType(before.figureTypeCode()) || !isNumericType(after.figureTypeCode()))
        return std::nullopt;
    const auto figure = figuresOf(metric, before, after);
    const auto lowest = figuresOf(MetricId::MinimumValue, before, after);
    const auto highest = figuresOf(MetricId::MaximumValue, before, after);
    if (!figure || !lowest || !highest)
        return std::nullopt;
    const double range = std::max(highest->before, highest->after) - std::min(lowest->before, lowest->after);
    if (!(range > 0))
        return std::nullopt;
    return ChangeWeight{std::min(100.0, 100 * std::abs(figure->after - figure->before) / range), false};
}

} // namespace

double relativeChange(double before, double after) {
    const double larger = std::max(std::abs(before), std::abs(after));
    return larger > 0 ? std::min(100.0, 100 * std::abs(after - before) / larger) : 0;
}

ChangeWeight weightOfShare(std::optional<double> percentBefore, std::optional<double> percentAfter) {
    return {std::abs(percentAfter.value_or(0) - percentBefore.value_or(0)), false};
}

ChangeWeight weightOfFigure(double before, double after, std::int64_t rowsBefore, std::int64_t rowsAfter) {
    const Figures rows{static_cast<double>(rowsBefore), static_cast<double>(rowsAfter)};
    if (rows.before <= 0 || rows.after <= 0)
        return {relativeChange(before, after), false};
    const double beyond = beyondGrowth({before, after}, rows);
    const double larger = std::max({std::abs(before), std::abs(after), rows.before, rows.after});
    return {std::min(100.0, 100 * beyond / larger), beyond == 0 && rowsBefore != rowsAfter};
}

ChangeWeight weightOfMetric(MetricId metric, const FieldRecord& before, const FieldRecord& after) {
    const auto rows = figuresOf(MetricId::Count, before, after);
    if (!rows || rows->before <= 0 || rows->after <= 0)
        return kWholeChange;
    const ChangeWeight oneRow{100 / std::max(rows->before, rows->after), false};
    const auto figures = [&](MetricId wanted) { return figuresOf(wanted, before, after); };
    switch (metric) {
    case MetricId::Count:
        return {relativeChange(rows->before, rows->after), true};
    case MetricId::NullCount:
    case MetricId::NonNullCount:
    case MetricId::PercentNull:
        if (const auto nulls = figures(MetricId::NullCount))
            return weightOfRows(*nulls, *rows);
        return oneRow;
    case MetricId::BlankCount:
        if (const auto blanks = figures(metric))
            return weightOfRows(*blanks, *rows);
        return oneRow;
    case MetricId::UniqueCount:
    case MetricId::UniquePercent:
        if (const auto texts = figures(MetricId::UniqueCount))
            return weightOfDistinct(*texts, *rows);
        return oneRow;
    case MetricId::PatternCount:
        if (const auto texts = figures(metric))
            return weightOfDistinct(*texts, *rows);
        return oneRow;
    case MetricId::StandardError:
        if (before.metrics[index(MetricId::StandardDeviation)] == after.metrics[index(MetricId::StandardDeviation)])
            return {0, rows->before != rows->after};
        return weightInRange(metric, before, after).value_or(oneRow);
    case MetricId::Mean:
    case MetricId::Median:
    case MetricId::StandardDeviation:
        return weightInRange(metric, before, after).value_or(oneRow);
    case MetricId::MinimumValue:
    case MetricId::MaximumValue:
    case MetricId::MinimumLength:
    case MetricId::MaximumLength:
    case MetricId::Mode:
    case MetricId::Precision:
        return oneRow;
    case MetricId::Ordinal:
        return {};
    case MetricId::DefinedType:
    case MetricId::DefinedLength:
    case MetricId::PrimaryKey:
    case MetricId::Nullable:
    case MetricId::ActualType:
        break;
    }
    return kWholeChange;
}

ChangeWeight weightOfTexts(const DistributionChanges& changes, double percentWithText) {
    const double beyond = std::max(0.0, changes.shareMoved - changes.shareByGrowth);
    return {beyond * percentWithText, beyond == 0 && changes.rowsBefore != changes.rowsAfter};
}

} // namespace tavix
