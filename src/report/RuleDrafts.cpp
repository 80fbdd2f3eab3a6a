#include "report/RuleDrafts.h"

#include "base/NumberText.h"
#include "report/CountText.h"
#include "report/ExpressionText.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace tavix {

namespace {

constexpr double kFewPercent = 0.5;                 ///< of the rows: taken for mistakes
constexpr std::size_t kShortList = 20;              ///< values; longer ones are more likely to grow
constexpr std::size_t kLongestListed = 200;         ///< bytes of a value in a domain
constexpr std::size_t kLongestDomainText = 400'000; ///< bytes of all of them; a job file has at most 1 MiB

double percentOf(std::int64_t part, std::int64_t all) {
    return all > 0 ? 100 * static_cast<double>(part) / static_cast<double>(all) : 0;
}

/// The share of null in the run that has most of them.
double mostNullPercent(const FieldEvidence& field) {
    double most = 0;
    for (std::size_t i = 0; i < field.nullHistory.size() && i < field.nonNullHistory.size(); ++i) {
        const double rows = field.nullHistory[i] + field.nonNullHistory[i];
        if (rows > 0)
            most = std::max(most, 100 * field.nullHistory[i] / rows);
    }
    return most;
}

int runsWithoutNull(const FieldEvidence& field) {
    return static_cast<int>(std::count(field.nullHistory.begin(), field.nullHistory.end(), 0.0));
}

/// Whether later runs had more values than earlier ones, as open lists have.
bool growsWithTheRuns(const FieldEvidence& field) {
    const std::vector<double>& unique = field.uniqueHistory;
    return unique.size() >= 2 && unique.back() > unique.front();
}

/// The values that belong to the domain: those at the end that are far rarer than the others and few are mistakes.
std::size_t sizeOfDomain(const FieldEvidence& field) {
    constexpr double kGap = 100;
    std::int64_t rest = 0;
    std::size_t size = field.values.size();
    for (std::size_t i = field.values.size(); i-- > 1;) {
        rest += field.values[i].count;
        if (percentOf(rest, field.rows) > kFewPercent)
            break;
        if (static_cast<double>(field.values[i - 1].count) >= kGap * static_cast<double>(field.values[i].count))
            size = i;
    }
    // A single frequent value does not show that the others are mistakes.
    return size < 2 ? field.values.size() : size;
}

bool isWritable(const CountedText& value) {
    return value.text.size() <= kLongestListed && value.text.find('\0') == std::string::npos &&
           value.text.find_first_of({kOperand, kNumber}) == std::string::npos;
}

/// 'a', 'b', in the order of the code points, which stays the same when counts change.
std::string listOf(std::vector<CountedText> values) {
    std::sort(values.begin(), values.end(), [](const auto& a, const auto& b) { return a.text < b.text; });
    std::string list;
    for (const CountedText& value : values)
        list += (list.empty() ? "" : ", ") + literalText(value.text);
    return list;
}

/// Whether the values are compared as numbers. Integers beyond 2^53 are texts.
bool isOfNumbers(const FieldEvidence& field) {
    return field.isType(FieldType::Integer) &&
           std::all_of(field.values.begin(), field.values.end(), [](const auto& value) {
               return std::abs(parseNumber(value.text).value_or(0)) <= kExactIntegers;
           });
}

/// 3, 5, 8.
std::string listOfNumbers(const std::vector<CountedText>& values) {
    std::vector<double> numbers;
    numbers.reserve(values.size());
    for (const CountedText& value : values)
        numbers.push_back(parseNumber(value.text).value_or(0));
    std::sort(numbers.begin(), numbers.end());
    std::string list;
    for (const double number : numbers)
        list += (list.empty() ? "" : ", ") + formatReal(number);
    return list;
}

/// Whole numbers from the first to the last without a gap, which a range describes better.
bool isContiguous(const FieldEvidence& field) {
    const auto low = field.number(MetricId::MinimumValue);
    const auto high = field.number(MetricId::MaximumValue);
    return low && high && *high - *low + 1 <= static_cast<double>(field.distinct);
}

bool mayBeDomain(const FieldEvidence& field, std::size_t longest) {
    constexpr std::int64_t kRowsOfAValue = 10; // on average; else it is a list that has not been seen to its end
    constexpr std::size_t kMostNumbers = 10;
    // Of texts that are numbers or dates a range says more.
    if (!field.hasAllValues || field.values.size() > longest || field.values.size() < 2 || field.reading)
        return false;
    const auto size = static_cast<std::int64_t>(field.values.size());
    if (field.isType(FieldType::Real) || field.isType(FieldType::Date) || field.filled() < kRowsOfAValue * size)
        return false;
    return !field.isType(FieldType::Integer) || (field.values.size() <= kMostNumbers && !isContiguous(field));
}

std::string leftOut(const FieldEvidence& field, std::size_t size) {
    constexpr std::size_t kNamed = 3;
    std::int64_t rows = 0;
    std::string names;
    for (std::size_t i = size; i < field.values.size(); ++i) {
        rows += field.values[i].count;
        if (i < size + kNamed)
            names += (names.empty() ? "" : ", ") + literalText(field.values[i].text);
    }
    const std::size_t others = field.values.size() - size;
    return fmt::format("; {} in {} left out: {}{}", countOf(static_cast<std::int64_t>(others), "rare value"),
                       countOf(rows, "row"), names, others > kNamed ? ", ..." : "");
}

} // namespace

std::string withMissing(const FieldEvidence& field, const std::string& condition) {
    std::string made;
    if (field.nulls > 0)
        made += fmt::format("isnull({}) or ", kOperand);
    if (field.blanks > 0)
        made += fmt::format("isblank({}) or ", kOperand);
    // `and` binds tighter than `or`.
    return made + condition;
}

SuggestionConfidence confidenceOf(const FieldEvidence& field, bool isExact) {
    constexpr std::int64_t kManyRows = 1000;
    constexpr std::int64_t kSomeRows = 100;
    constexpr int kManyRuns = 3;
    int degree = field.rows >= kManyRows || field.runs() >= kManyRuns ? 2 : field.rows >= kSomeRows ? 1 : 0;
    if (!isExact || field.isSample)
        degree = std::max(degree - 1, 0);
    return static_cast<SuggestionConfidence>(degree);
}

std::string overRuns(const FieldEvidence& field) {
    return field.runs() > 1 ? fmt::format(" in {} runs", field.runs()) : std::string();
}

bool hasDraft(const std::vector<RuleDraft>& drafts, std::initializer_list<SuggestionKind> kinds) {
    return std::any_of(drafts.begin(), drafts.end(), [&](const RuleDraft& draft) {
        return std::find(kinds.begin(), kinds.end(), draft.kind) != kinds.end();
    });
}

void draftFilled(const FieldEvidence& field, std::vector<RuleDraft>& drafts) {
    const bool areBlanksUsual = percentOf(field.blanks, field.rows) > kFewPercent;
    const std::int64_t missing = field.nulls + (areBlanksUsual ? 0 : field.blanks);
    if (percentOf(missing, field.rows) > kFewPercent || mostNullPercent(field) > kFewPercent)
        return;
    RuleDraft draft;
    draft.kind = SuggestionKind::NotNull;
    draft.predicate = areBlanksUsual ? "is not null" : "is filled in";
    draft.conditions = {fmt::format("not {}({})", areBlanksUsual ? "isnull" : "isblank", kOperand)};
    draft.violations = missing;
    if (missing == 0 && field.runs() > 1)
        draft.reason = fmt::format("no null in {} of {} runs", runsWithoutNull(field), field.runs());
    else if (missing == 0)
        draft.reason = fmt::format("no null in {}", countOf(field.rows, "row"));
    else
        draft.reason = fmt::format("{} of {} {} null{}", groupedCount(missing), countOf(field.rows, "row"),
                                   missing == 1 ? "is" : "are", areBlanksUsual || field.blanks == 0 ? "" : " or blank");
    draft.confidence = confidenceOf(field, missing == 0);
    drafts.push_back(std::move(draft));
}

void draftUnique(const FieldEvidence& field, std::vector<RuleDraft>& drafts) {
    constexpr double kFewRepeated = 0.1; // percent
    constexpr std::int64_t kManyRows = 1000;
    constexpr int kSeveralRuns = 3;
    const std::int64_t values = field.rows - field.nulls;
    const std::int64_t repeated = values - field.distinct;
    const bool mayBe =
        field.isType(FieldType::Integer) || field.isType(FieldType::Text) || field.isType(FieldType::Date);
    if (!mayBe || values < kFewestRows || field.blanks > 1 || percentOf(field.nulls, field.rows) > kFewPercent)
        return;
    const RunShare runs = field.uniqueRuns();
    const bool wasAlwaysUnique = runs.meeting == runs.all - (repeated > 0 ? 1 : 0);
    const bool isKey = field.looksLikeKey() || field.number(MetricId::Ordinal) == 1.0;
    if (!wasAlwaysUnique || !(isKey || (repeated == 0 && runs.all >= kSeveralRuns && values >= kManyRows)))
        return;
    if (repeated > 0 && (values < kManyRows || percentOf(repeated, values) > kFewRepeated))
        return;
    RuleDraft draft;
    draft.kind = SuggestionKind::Unique;
    draft.predicate = "is unique";
    draft.reason = runs.all > 1 ? fmt::format("unique in {} of {} runs", runs.meeting, runs.all)
                                : fmt::format("{} in {}", countOf(field.distinct, "value"), countOf(values, "row"));
    if (repeated > 0)
        draft.reason +=
            fmt::format("; {} {} the value of another one", countOf(repeated, "row"), repeated == 1 ? "has" : "have");
    draft.violations = repeated;
    draft.confidence = confidenceOf(field, repeated == 0);
    if (field.isSample)
        draft.remark = "The run profiled a sample; values may repeat in other rows.";
    if (repeated == 0 && field.nulls == 0) {
        draft.element = SuggestedElement::Alert;
        draft.alert = SuggestedAlert{MetricId::UniquePercent, true, 100};
    } else {
        draft.element = SuggestedElement::MetricAlert;
        draft.predicate = "Repeated values of";
        draft.expression = fmt::format("{} - {}", fieldText(field.field.name + ":Non-null Count"),
                                       fieldText(field.field.name + ":Unique Count"));
        draft.alert = SuggestedAlert{MetricId::Count, false, 0};
    }
    drafts.push_back(std::move(draft));
}

void draftDomain(const FieldEvidence& field, std::size_t longest, std::vector<RuleDraft>& drafts) {
    if (field.hasAllValues && field.values.size() == 1 && field.filled() >= kFewestRows) {
        if (!isWritable(field.values.front()) || growsWithTheRuns(field))
            return;
        RuleDraft draft;
        draft.kind = SuggestionKind::Constant;
        draft.predicate = "is constant";
        draft.conditions = {withMissing(
            field, isOfNumbers(field) ? fmt::format("{} = {}", kNumber, listOfNumbers(field.values))
                                      : fmt::format("{} = {}", kOperand, literalText(field.values[0].text)))};
        draft.reason = fmt::format("1 value in {}{}", countOf(field.filled(), "row"), overRuns(field));
        draft.confidence = confidenceOf(field, true);
        drafts.push_back(std::move(draft));
        return;
    }
    if (!mayBeDomain(field, longest) || !std::all_of(field.values.begin(), field.values.end(), isWritable))
        return;
    const std::size_t size = sizeOfDomain(field);
    const std::vector<CountedText> kept(field.values.begin(), field.values.begin() + static_cast<std::ptrdiff_t>(size));
    const std::string list = isOfNumbers(field) ? listOfNumbers(kept) : listOf(kept);
    if (list.size() > kLongestDomainText)
        return;
    RuleDraft draft;
    draft.kind = SuggestionKind::Domain;
    draft.predicate = fmt::format("is one of {} values", size);
    draft.conditions = {withMissing(field, fmt::format("{} in ({})", isOfNumbers(field) ? kNumber : kOperand, list))};
    draft.reason = fmt::format("{} in {}{}", countOf(static_cast<std::int64_t>(size), "value"),
                               countOf(field.filled(), "row"), overRuns(field));
    if (size < field.values.size())
        draft.reason += leftOut(field, size);
    draft.confidence = confidenceOf(field, size == field.values.size() && size <= kShortList);
    if (growsWithTheRuns(field)) {
        draft.confidence = SuggestionConfidence::Low;
        draft.remark = fmt::format("The first of {} runs had {}: the list may grow.", field.runs(),
                                   countOf(static_cast<std::int64_t>(field.uniqueHistory.front()), "value"));
    }
    drafts.push_back(std::move(draft));
}

} // namespace tavix
