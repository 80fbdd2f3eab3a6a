// Rules for the range of numbers and dates, and for days without a gap.
#include "base/DateTicks.h"
#include "base/NumberText.h"
#include "report/CountText.h"
#include "report/ExpressionText.h"
#include "report/RuleDrafts.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <limits>
#include <utility>

namespace tavix {

namespace {

/// A range that a quantity has by its nature, if its name says so and its values agree.
struct KnownRange {
    std::string_view name;
    double low;
    double high;
};
constexpr auto kKnownRanges = std::to_array<KnownRange>({
    {"latitude", -90, 90},
    {"lat", -90, 90},
    {"longitude", -180, 180},
    {"lon", -180, 180},
    {"lng", -180, 180},
    {"long", -180, 180},
    {"month", 1, 12},
    {"quarter", 1, 4},
    {"weekday", 0, 7},
    {"percent", 0, 100},
    {"percentage", 0, 100},
});

struct Ends {
    double low = 0;
    double high = 0;
    std::int64_t rowsOut = 0; ///< of values that are too far from the others to be meant
    std::string out;          ///< those values
};

using Read = std::function<std::optional<double>(std::string_view)>;

Read numbersOf(const FieldEvidence& field) {
    return [&field](std::string_view text) { return field.numberIn(text); };
}

/// Dates as days since 1970.
Read dayNumbersOf(const FieldEvidence& field) {
    return [&field](std::string_view text) {
        const auto ticks = field.ticksIn(text);
        return ticks ? std::optional(static_cast<double>(dayOf(*ticks))) : std::nullopt;
    };
}

/// The field as a date in a condition.
std::string dateText(const FieldEvidence& field, const std::string& operand) {
    return field.reading ? fmt::format("todate({}, {})", operand, literalText(field.reading->text()))
                         : fmt::format("todate({})", operand);
}

/// Leaves out the farthest values of one side while a gap that is wider than the span of all others separates them.
/// `side` has the farthest first; `other` is the far end of the values.
void leaveOut(const std::vector<ExtremeValue>& side, const Read& read, double other, double& end, Ends& ends,
              std::int64_t rows) {
    constexpr double kFewPercent = 0.5;
    constexpr double kGap = 2;
    std::int64_t out = 0;
    for (std::size_t i = 0; i + 1 < side.size(); ++i) {
        const auto here = read(side[i].text);
        const auto next = read(side[i + 1].text);
        out += side[i].count;
        if (!here || !next || 100 * static_cast<double>(out) > kFewPercent * static_cast<double>(rows))
            return;
        if (std::abs(*here - *next) <= kGap * std::abs(*next - other))
            continue;
        end = *next;
        ends.rowsOut = out;
        ends.out.clear();
        for (std::size_t k = 0; k <= i && k < 3; ++k)
            ends.out += (k > 0 ? ", " : "") + side[k].text;
    }
}

std::optional<Ends> endsOf(const FieldEvidence& field, const Read& read) {
    const auto low = read(field.field.metrics[index(MetricId::MinimumValue)].view());
    const auto high = read(field.field.metrics[index(MetricId::MaximumValue)].view());
    if (!low || !high || std::abs(*low) > kExactIntegers || std::abs(*high) > kExactIntegers)
        return std::nullopt;
    Ends ends{*low, *high, 0, {}};
    Ends below = ends;
    Ends above = ends;
    // Each side is judged by the others without the far values of the other side, whichever hides which.
    leaveOut(field.highest, read, ends.low, above.high, above, field.filled());
    leaveOut(field.lowest, read, above.high, below.low, below, field.filled());
    leaveOut(field.highest, read, below.low, above.high, above, field.filled());
    ends.low = below.low;
    ends.high = above.high;
    ends.rowsOut = below.rowsOut + above.rowsOut;
    ends.out = below.out + (below.out.empty() || above.out.empty() ? "" : ", ") + above.out;
    return ends;
}

/// 1 · 10^k, at most a step of the span.
double stepOf(double span) {
    return span > 0 ? std::pow(10.0, std::floor(std::log10(span))) : 1;
}

double rounded(double value, double step, double (*round)(double)) {
    // Below 1 a division by its inverse keeps the decimals short.
    return step >= 1 ? round(value / step) * step : round(value * std::round(1 / step)) / std::round(1 / step);
}

double down(double value, double step) {
    return rounded(value, step, [](double one) { return std::floor(one); });
}

double up(double value, double step) {
    return rounded(value, step, [](double one) { return std::ceil(one); });
}

bool isSideFar(const FieldEvidence& field, const std::vector<ExtremeValue>& side, double end) {
    return std::any_of(side.begin(), side.end(),
                       [&](const ExtremeValue& value) { return value.isFar && field.numberIn(value.text) == end; });
}

const KnownRange* knownRange(const FieldEvidence& field, const Ends& ends) {
    std::string name;
    for (const char c : field.field.name)
        name += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    for (const KnownRange& known : kKnownRanges)
        if (known.name == name && ends.low >= known.low && ends.high <= known.high)
            return &known;
    return nullptr;
}

std::string saidRange(const FieldEvidence& field, const Ends& ends, const std::string& low, const std::string& high) {
    const std::int64_t rows = field.filled() - ends.rowsOut - field.misfitRows;
    std::string said = fmt::format("{} to {} in {}{}", low, high, countOf(rows, "row"), overRuns(field));
    if (field.misfitRows > 0)
        said += fmt::format("; {} {} no {}", countOf(field.misfitRows, "row"), field.misfitRows == 1 ? "has" : "have",
                            typeWord(field.reading->type));
    if (ends.rowsOut > 0)
        said += fmt::format("; {} far from all others: {}", countOf(ends.rowsOut, "row"), ends.out);
    return said;
}

/// The lowest figure of the runs before, or of all if they are few.
double lowestOfRuns(const FieldEvidence& field, double low) {
    for (const double one : field.minimumHistory)
        low = std::isnan(one) ? low : std::min(low, one);
    return low;
}

double highestOfRuns(const FieldEvidence& field, double high) {
    for (const double one : field.maximumHistory)
        high = std::isnan(one) ? high : std::max(high, one);
    return high;
}

/// Readable bounds for a range; no lower one means no range.
struct Bounds {
    std::optional<double> least;
    std::optional<double> most;
};

/// `low` and `high` are the ends over the runs. A side with values beyond the outer fence has no bound but zero, since
/// the next run may go farther. A bound is a tenth of the span away unless the end is a round number itself.
Bounds boundsOf(const FieldEvidence& field, const Ends& ends, double low, double high) {
    constexpr double kMargin = 0.1;
    const double span = ends.high - ends.low;
    const double step = stepOf(span);
    Bounds bounds;
    if (!isSideFar(field, field.highest, ends.high))
        bounds.most = up(high, step) == high ? high : up(high + kMargin * span, step);
    if (low >= 0 && (low <= span || !bounds.most))
        bounds.least = 0;
    else if (bounds.most && !isSideFar(field, field.lowest, ends.low))
        bounds.least = down(low, step) == low ? low : down(low - kMargin * span, step);
    if (bounds.least && low >= 0)
        bounds.least = std::max(*bounds.least, 0.0);
    return bounds;
}

void draftLowest(const FieldEvidence& field, double low, std::vector<RuleDraft>& drafts) {
    RuleDraft draft;
    draft.kind = SuggestionKind::NoLowerMinimum;
    draft.element = SuggestedElement::Alert;
    draft.alert = SuggestedAlert{MetricId::MinimumValue, true, low};
    draft.predicate = fmt::format("is not below {}", formatReal(low));
    draft.reason = fmt::format("{} is the lowest value of {} runs", formatReal(low), field.runs());
    // Only counts the rows.
    draft.conditions = {withMissing(field, fmt::format("{} >= {}", kNumber, formatReal(low)))};
    draft.confidence = confidenceOf(field, true);
    drafts.push_back(std::move(draft));
}

/// The figure of the metric that names an end of the values.
std::optional<double> endIn(const FieldEvidence& field, MetricId metric) {
    return field.numberIn(field.field.metrics[index(metric)].view());
}

/// Fills in condition and name; false if the values suggest no bounds.
bool boundNumbers(const FieldEvidence& field, const Ends& ends, RuleDraft& draft) {
    if (const KnownRange* const known = knownRange(field, ends)) {
        draft.conditions = {fmt::format("{} between {} and {}", kNumber, known->low, known->high)};
        draft.predicate = fmt::format("is from {} to {}", known->low, known->high);
        return true;
    }
    // Values of other runs belong to the range, unless they are as far out as those that were left out.
    const bool isBottomLeftOut = ends.low > endIn(field, MetricId::MinimumValue);
    const bool isTopLeftOut = ends.high < endIn(field, MetricId::MaximumValue);
    const Bounds bounds = boundsOf(field, ends, isBottomLeftOut ? ends.low : lowestOfRuns(field, ends.low),
                                   isTopLeftOut ? ends.high : highestOfRuns(field, ends.high));
    if (bounds.least && bounds.most) {
        const std::string least = formatReal(*bounds.least);
        const std::string most = formatReal(*bounds.most);
        draft.conditions = {fmt::format("{} between {} and {}", kNumber, least, most)};
        draft.predicate = fmt::format("is from {} to {}", least, most);
        draft.remark = "The bounds are rounded outwards.";
        // One run does not show where the values end.
        if (field.runs() == 1 && draft.confidence != SuggestionConfidence::Low)
            draft.confidence = draft.confidence == SuggestionConfidence::High ? SuggestionConfidence::Medium
                                                                              : SuggestionConfidence::Low;
    } else if (bounds.least) {
        draft.conditions = {fmt::format("{} >= 0", kNumber)};
        draft.predicate = "is not negative";
    }
    return bounds.least.has_value();
}

/// Of a text field some values do not fit its reading; all of them violate the rule.
constexpr double kMostMisfits = 5;

void draftNumbers(const FieldEvidence& field, std::vector<RuleDraft>& drafts) {
    const auto ends = endsOf(field, numbersOf(field));
    if (!ends)
        return;
    const auto addLowest = [&](double low) {
        if (field.runs() > 1 && !field.reading)
            draftLowest(field, lowestOfRuns(field, low), drafts);
    };
    if (field.isGrowingIdentifier())
        return addLowest(ends->low);
    RuleDraft draft;
    draft.kind = SuggestionKind::Range;
    draft.reason = saidRange(field, *ends, formatReal(ends->low), formatReal(ends->high));
    draft.confidence = confidenceOf(field, ends->rowsOut + field.misfitRows == 0);
    if (!boundNumbers(field, *ends, draft)) {
        if (!field.reading)
            return addLowest(endIn(field, MetricId::MinimumValue).value_or(ends->low));
        draft.conditions = {fmt::format("fits({}, {})", kOperand, literalText(field.reading->text()))};
        draft.predicate = "is a number";
    }
    if (field.reading)
        draft.mostPercent += kMostMisfits;
    draft.conditions.front() = withMissing(field, draft.conditions.front());
    drafts.push_back(std::move(draft));
}

void draftDates(const FieldEvidence& field, std::vector<RuleDraft>& drafts) {
    const auto ends = endsOf(field, dayNumbersOf(field));
    if (!ends)
        return;
    const auto dayText = [](double day) { return formatDate(static_cast<std::int64_t>(day) * kTicksPerDay); };
    const std::string first = dayText(ends->low);
    const std::string year = first.substr(0, 4);
    RuleDraft draft;
    draft.kind = SuggestionKind::Range;
    draft.predicate = fmt::format("is from {} to the day of the run", year);
    draft.conditions = {withMissing(
        field, fmt::format("{} between '{}-01-01' and now()", dateText(field, std::string(1, kOperand)), year))};
    draft.reason = saidRange(field, *ends, first, dayText(ends->high));
    draft.confidence = confidenceOf(field, ends->rowsOut + field.misfitRows == 0);
    if (field.reading)
        draft.mostPercent += kMostMisfits;
    drafts.push_back(std::move(draft));
}

std::int64_t monthOf(std::int64_t day) {
    const CalendarDay date = calendarDay(day * kTicksPerDay);
    return std::int64_t{date.year} * 12 + date.month - 1;
}

std::string monthText(std::int64_t month) {
    return fmt::format("{:04}-{:02}", month / 12, month % 12 + 1);
}

/// `part` is a day or a month; `missing` of `span` have no rows.
RuleDraft coverage(std::string_view part, std::int64_t missing, std::int64_t span, const std::string& first,
                   const std::string& last) {
    RuleDraft draft;
    draft.kind = SuggestionKind::Coverage;
    draft.violations = missing;
    draft.violationNoun = part;
    draft.mostPercent = 100;
    draft.reason = missing == 0
                       ? fmt::format("every one of {} from {} to {} has rows", countOf(span, part), first, last)
                       : fmt::format("{} of {} from {} to {} have rows", groupedCount(span - missing),
                                     countOf(span, part), first, last);
    return draft;
}

} // namespace

void draftRange(const FieldEvidence& field, std::vector<RuleDraft>& drafts) {
    if (field.filled() < kFewestRows || hasDraft(drafts, {SuggestionKind::Constant, SuggestionKind::Domain}))
        return;
    if (field.holdsNumbers())
        draftNumbers(field, drafts);
    else if (field.holdsDates())
        draftDates(field, drafts);
}

void draftCoverage(const FieldEvidence& field, const std::vector<std::int64_t>& days, std::vector<RuleDraft>& drafts) {
    constexpr std::int64_t kFewestDays = 28;
    constexpr std::int64_t kFewestMonths = 12;
    constexpr double kFewMissing = 1; // percent
    if (days.size() < 2)
        return;
    const auto isNearlyAll = [&](std::int64_t missing, std::int64_t span) {
        return 100 * static_cast<double>(missing) <= kFewMissing * static_cast<double>(span);
    };
    const std::int64_t span = days.back() - days.front() + 1;
    const std::int64_t missing = span - static_cast<std::int64_t>(days.size());
    const std::string low = dateText(field, fieldText(field.field.name + ":Minimum Value"));
    const std::string high = dateText(field, fieldText(field.field.name + ":Maximum Value"));
    const std::string unique = fieldText(field.field.name + ":Unique Count");
    if (span >= kFewestDays && isNearlyAll(missing, span)) {
        RuleDraft draft = coverage("day", missing, span, formatDate(days.front() * kTicksPerDay),
                                   formatDate(days.back() * kTicksPerDay));
        draft.element = SuggestedElement::MetricAlert;
        draft.predicate = "Days without rows in";
        draft.expression = fmt::format("datediff({}, {}) + 1 - {}", low, high, unique);
        draft.alert = SuggestedAlert{MetricId::Count, false, 0};
        draft.confidence = confidenceOf(field, missing == 0);
        drafts.push_back(std::move(draft));
        return;
    }
    std::vector<std::int64_t> months;
    bool areFirstDays = true;
    for (const std::int64_t day : days) {
        const std::int64_t month = monthOf(day);
        areFirstDays = areFirstDays && calendarDay(day * kTicksPerDay).day == 1;
        if (months.empty() || months.back() != month)
            months.push_back(month);
    }
    const std::int64_t spanMonths = months.back() - months.front() + 1;
    const std::int64_t missingMonths = spanMonths - static_cast<std::int64_t>(months.size());
    if (spanMonths < kFewestMonths || !isNearlyAll(missingMonths, spanMonths))
        return;
    RuleDraft draft = coverage("month", missingMonths, spanMonths, monthText(months.front()), monthText(months.back()));
    draft.predicate = "Months without rows in";
    draft.confidence = confidenceOf(field, missingMonths == 0);
    if (areFirstDays) {
        draft.element = SuggestedElement::MetricAlert;
        draft.expression = fmt::format("datediff({}, {}, 'month') + 1 - {}", low, high, unique);
        draft.alert = SuggestedAlert{MetricId::Count, false, 0};
    } else {
        draft.element = SuggestedElement::Remark;
        draft.predicate = "has rows in every month";
        draft.remark = "A job cannot count the months of a field with several days a month.";
    }
    drafts.push_back(std::move(draft));
}

} // namespace tavix
