#include "filter/QuickSearch.h"

#include "base/Ascii.h"
#include "base/Characters.h"
#include "base/DateTicks.h"
#include "base/NumberText.h"
#include "filter/ConditionBlock.h"
#include "filter/ExpressionCheck.h"
#include "filter/ValueFilter.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

namespace tavix {

namespace {

using Kind = QuickTerm::Kind;
using Order = QuickTerm::Order;

struct Word {
    std::string_view text;
    Kind kind;
    bool isNegated;
};

constexpr std::array<Word, 8> kWords = {{
    {"null", Kind::Null, false},
    {"!null", Kind::Null, true},
    {"not null", Kind::Null, true},
    {"is null", Kind::Null, false},
    {"is not null", Kind::Null, true},
    {"empty", Kind::Equals, false},
    {"!empty", Kind::Equals, true},
    {"not empty", Kind::Equals, true},
}};

struct Sign {
    std::string_view text;
    Kind kind;
    bool isNegated = false;
    FilterOperation operation = FilterOperation::EqualTo; ///< of a comparison as texts
};

/// A sign comes before those that it begins with.
constexpr std::array<Sign, 9> kSigns = {{
    {"<>", Kind::Equals, true},
    {"!=", Kind::Equals, true},
    {"==", Kind::Equals},
    {"=", Kind::Equals},
    {">=", Kind::GreaterOrEqual, false, FilterOperation::GreaterThanOrEqualTo},
    {"<=", Kind::LessOrEqual, false, FilterOperation::LessThanOrEqualTo},
    {">", Kind::Greater, false, FilterOperation::GreaterThan},
    {"<", Kind::Less, false, FilterOperation::LessThan},
    {"~", Kind::Matches},
}};

const Sign* signOf(Kind kind) {
    const auto* const found =
        std::find_if(kSigns.begin(), kSigns.end(), [kind](const Sign& s) { return s.kind == kind; });
    return found == kSigns.end() ? nullptr : found;
}

/// An expression around a comparison as numbers or dates.
struct OrderForm {
    Order order;
    std::string_view subject;
    std::string_view quote; ///< around a value
};

constexpr std::array<OrderForm, 2> kOrders = {{
    {Order::Number, "tonumber(`Value`)", ""},
    {Order::Date, "todate(`Value`)", "'"},
}};

constexpr std::string_view kMatchBegin = "matches(`Value`, '(?s:.*)(?:";
constexpr std::string_view kMatchEnd = ")(?s:.*)')";

std::string_view trimmed(std::string_view text) {
    const auto isSpace = [](char c) { return c == ' ' || (c >= '\t' && c <= '\r'); };
    while (!text.empty() && isSpace(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isSpace(text.back()))
        text.remove_suffix(1);
    return text;
}

/// A text in quotes without them; nothing for one that is not quoted as a whole.
std::optional<std::string> unquoted(std::string_view text) {
    if (text.size() < 2 || (text.front() != '"' && text.front() != '\'') || text.back() != text.front())
        return std::nullopt;
    const char quote = text.front();
    text = text.substr(1, text.size() - 2);
    std::string result;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == quote && (++at == text.size() || text[at] != quote))
            return std::nullopt;
        result += text[at];
    }
    return result;
}

std::string quoted(std::string_view text) {
    std::string result = "\"";
    for (const char c : text)
        result.append(c == '"' ? 2 : 1, c);
    return result + '"';
}

std::optional<double> numberIn(std::string_view text) {
    // The expression language has no sign '+' before a number.
    return text.starts_with('+') ? std::nullopt : parseNumber(text);
}

/// A value as it is compared.
struct Operand {
    std::string text;
    Order order = Order::Text;
};

Operand operandIn(std::string_view typed) {
    typed = trimmed(typed);
    if (auto literal = unquoted(typed))
        return {std::move(*literal), Order::Text};
    const Order order = numberIn(typed) ? Order::Number : parseDate(typed) ? Order::Date : Order::Text;
    return {std::string(typed), order};
}

bool isAscending(const Operand& first, const Operand& last) {
    switch (first.order) {
    case Order::Number:
        return *numberIn(first.text) <= *numberIn(last.text);
    case Order::Date:
        return *parseDate(first.text) <= *parseDate(last.text);
    case Order::Text:
        break;
    }
    return first.text <= last.text;
}

/// A range whose ends compare alike; nothing for any other text, which is then searched for as it is.
std::optional<QuickTerm> rangeIn(std::string_view typed, std::string_view sign, bool takesTexts) {
    for (std::size_t at = typed.find(sign); at != std::string_view::npos; at = typed.find(sign, at + 1)) {
        const Operand first = operandIn(typed.substr(0, at));
        const Operand last = operandIn(typed.substr(at + sign.size()));
        const bool isText = first.order == Order::Text;
        if (first.order != last.order || first.text.empty() || last.text.empty() || (isText && !takesTexts))
            continue;
        // An ellipsis is not a range.
        if (isText && (first.text.ends_with('.') || last.text.starts_with('.')))
            return std::nullopt;
        return QuickTerm{Kind::Range, false, first.order, first.text, last.text};
    }
    return std::nullopt;
}

Result<std::optional<QuickTerm>> ranged(QuickTerm range) {
    if (!isAscending({range.value, range.order}, {range.last, range.order}))
        return Error{fmt::format("The range ends before it begins: {} comes after {}.", range.value, range.last)};
    return std::optional(std::move(range));
}

Result<std::optional<QuickTerm>> signedTerm(const Sign& sign, std::string_view typed) {
    const std::string_view rest = trimmed(typed.substr(sign.text.size()));
    if (rest.empty())
        return Error{fmt::format("Enter a value after {}", sign.text)};
    QuickTerm term{sign.kind, sign.isNegated, Order::Text, {}, {}};
    if (sign.kind == Kind::Matches) {
        term.value = rest;
        return std::optional(std::move(term));
    }
    Operand operand = operandIn(rest);
    term.value = std::move(operand.text);
    term.order = sign.kind == Kind::Equals ? Order::Text : operand.order;
    return std::optional(std::move(term));
}

CCondition onValue(FilterOperation operation, std::string value) {
    CCondition condition;
    condition.operation = operation;
    condition.fieldType = FieldTypeCode::Value;
    condition.fieldName = "Value";
    condition.values = {std::move(value)};
    return condition;
}

std::string composed(const ConditionList& list) {
    return ComposeFilterText(list, FilterAction::RemoveFailing);
}

std::string composed(CCondition condition) {
    return composed(ConditionList{std::move(condition)});
}

std::string asCompared(const OrderForm& form, std::string_view sign, std::string_view value) {
    return fmt::format("{} {} {}{}{}", form.subject, sign, form.quote, value, form.quote);
}

std::string comparisonFilter(const QuickTerm& term) {
    for (const OrderForm& form : kOrders) {
        if (form.order != term.order)
            continue;
        if (term.kind != Kind::Range)
            return asCompared(form, signOf(term.kind)->text, term.value);
        return asCompared(form, ">=", term.value) + " and " + asCompared(form, "<=", term.last);
    }
    if (term.kind != Kind::Range)
        return composed(onValue(signOf(term.kind)->operation, term.value));
    return composed({onValue(FilterOperation::GreaterThanOrEqualTo, term.value), MakeConnector(Connector::And),
                     onValue(FilterOperation::LessThanOrEqualTo, term.last)});
}

std::string sentence(std::string text) {
    if (!text.empty())
        text.front() = asciiUpper(text.front());
    return text;
}

std::string matchCode(std::string_view begin, std::string_view expression, std::string_view end) {
    return fmt::format("{}{}{}", begin, EscapeSingleQuotes(expression), end);
}

Result<std::string> matchFilter(const std::string& expression) {
    // Alone it is not valid merely because the parentheses around it complete it. The empty group keeps a backslash at
    // its end from taking the quote with it.
    const std::string_view after = expression.ends_with('\\') ? "(?:)')" : "')";
    for (const std::string& code :
         {matchCode("matches(`Value`, '", expression, after), matchCode(kMatchBegin, expression, kMatchEnd)}) {
        if (const auto error = CheckFilterText(code).error)
            return Error{sentence(error->message)};
    }
    return matchCode(kMatchBegin, expression, kMatchEnd);
}

bool endsInBackslash(const QuickTerm& term) {
    return term.value.ends_with('\\') || term.last.ends_with('\\');
}

// Filter texts back to what was typed. Candidates suffice: QuickSearchOf checks them.

using Candidates = std::vector<std::string>;

void addOperand(Candidates& candidates, std::string_view sign, const std::string& value) {
    candidates.push_back(std::string(sign) + value);
    candidates.push_back(std::string(sign) + quoted(value));
}

Candidates candidatesFor(const ConditionList& list) {
    Candidates candidates;
    const CCondition& first = list.front();
    const std::string value = first.values.empty() ? std::string() : first.values.front();
    switch (first.operation) {
    case FilterOperation::IsNull:
        return {"null"};
    case FilterOperation::IsNotNull:
        return {"!null"};
    case FilterOperation::Contains:
        addOperand(candidates, "", value);
        return candidates;
    case FilterOperation::EqualTo:
    case FilterOperation::NotEqualTo: {
        const bool isEqual = first.operation == FilterOperation::EqualTo;
        if (value.empty())
            candidates.emplace_back(isEqual ? "empty" : "!empty");
        addOperand(candidates, isEqual ? "=" : "<>", value);
        return candidates;
    }
    default:
        break;
    }
    if (list.size() == 3 && !list[2].values.empty()) {
        candidates.push_back(value + ".." + list[2].values.front());
        candidates.push_back(quoted(value) + ".." + quoted(list[2].values.front()));
        return candidates;
    }
    for (const Sign& sign : kSigns) {
        if (sign.operation == first.operation && sign.kind != Kind::Equals)
            addOperand(candidates, sign.text, value);
    }
    return candidates;
}

/// The code with its quotes not escaped.
std::string unescaped(std::string_view code) {
    std::string text;
    for (std::size_t at = 0; at < code.size(); ++at) {
        if (!code.substr(at).starts_with("\\'"))
            text += code[at];
    }
    return text;
}

Candidates candidatesFor(std::string_view code) {
    if (code.starts_with(kMatchBegin) && code.ends_with(kMatchEnd) &&
        code.size() >= kMatchBegin.size() + kMatchEnd.size())
        return {"~" + unescaped(code.substr(kMatchBegin.size(), code.size() - kMatchBegin.size() - kMatchEnd.size()))};
    for (const OrderForm& form : kOrders) {
        if (!code.starts_with(form.subject))
            continue;
        std::string rest(code.substr(form.subject.size()));
        if (!form.quote.empty())
            std::erase(rest, form.quote.front());
        const std::string between = fmt::format(" and {} <= ", form.subject);
        const std::size_t at = rest.find(between);
        constexpr std::string_view kFirst = " >= ";
        if (at == std::string::npos || !rest.starts_with(kFirst)) {
            for (std::size_t blank = 0; blank < 2 && rest.find(' ') != std::string::npos; ++blank)
                rest.erase(rest.find(' '), 1); // around the sign
            return {std::move(rest)};
        }
        return {rest.substr(kFirst.size(), at - kFirst.size()) + ".." + rest.substr(at + between.size())};
    }
    return {};
}

} // namespace

Result<std::optional<QuickTerm>> ParseQuickSearch(std::string_view typed) {
    typed = trimmed(typed);
    if (typed.empty())
        return std::optional<QuickTerm>();
    if (typed.size() > kLongestQuickSearch)
        return Error{"The text is too long to search for."};
    for (const Word& word : kWords) {
        if (equalsIgnoringAsciiCase(word.text, typed))
            return std::optional(QuickTerm{word.kind, word.isNegated, Order::Text, {}, {}});
    }
    for (const Sign& sign : kSigns) {
        if (typed.starts_with(sign.text))
            return signedTerm(sign, typed);
    }
    if (auto literal = unquoted(typed)) {
        // Every value contains an empty text.
        return literal->empty() ? std::optional<QuickTerm>()
                                : std::optional(QuickTerm{Kind::Contains, false, Order::Text, std::move(*literal), {}});
    }
    if (typed.size() > 2 && typed.starts_with('/') && typed.ends_with('/'))
        return std::optional(
            QuickTerm{Kind::Matches, false, Order::Text, std::string(typed.substr(1, typed.size() - 2)), {}});
    if (auto range = rangeIn(typed, "~", false))
        return ranged(std::move(*range));
    if (auto range = rangeIn(typed, "..", true))
        return ranged(std::move(*range));
    return std::optional(QuickTerm{Kind::Contains, false, Order::Text, std::string(typed), {}});
}

Result<std::string> QuickFilter(const QuickTerm& term, DistributionKind kind) {
    if (term.kind == Kind::Matches)
        return matchFilter(term.value);
    if (endsInBackslash(term))
        return Error{"A text that ends in a backslash cannot be searched for; use a regular expression: ~\\\\$"};
    Result<std::string> filter = std::string();
    switch (term.kind) {
    case Kind::Null:
    case Kind::Equals:
        filter = FilterByValues({}, kind, {term.kind == Kind::Null ? KvbString() : KvbString(term.value)},
                                term.isNegated ? ValueChoice::Exclude : ValueChoice::Keep);
        break;
    case Kind::Contains: {
        CCondition contains = onValue(FilterOperation::Contains, term.value);
        contains.caseInsensitive = kind == DistributionKind::Frequency;
        filter = composed(std::move(contains));
        break;
    }
    default:
        filter = comparisonFilter(term);
        break;
    }
    if (!filter)
        return filter;
    if (const auto error = CheckFilterText(*filter).error)
        return Error{sentence(error->message)};
    return filter;
}

Result<std::string> QuickFilter(std::string_view typed, DistributionKind kind) {
    const Result<std::optional<QuickTerm>> term = ParseQuickSearch(typed);
    if (!term)
        return term.error();
    return *term ? QuickFilter(**term, kind) : Result<std::string>(std::string());
}

std::optional<std::string> QuickSearchOf(std::string_view filterText, DistributionKind kind) {
    if (filterText.empty())
        return std::string();
    // A filter of conditions takes more than the typed text; a longer one cannot come from the field.
    if (filterText.size() > 8 * kLongestQuickSearch)
        return std::nullopt;
    const ParsedFilter parsed = ParseConditionBlock(filterText, FilterAction::RemoveFailing);
    Candidates candidates;
    if (!parsed.understood)
        candidates = candidatesFor(filterText);
    else if (!parsed.conditions.empty())
        candidates = candidatesFor(parsed.conditions);
    for (std::string& candidate : candidates) {
        if (const auto back = QuickFilter(candidate, kind); back && *back == filterText)
            return std::move(candidate);
    }
    return std::nullopt;
}

} // namespace tavix
