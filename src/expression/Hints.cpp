#include "expression/Hints.h"

#include "base/Characters.h"
#include "expression/Lexer.h"
#include "expression/TextOperators.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <functional>

namespace tavix::expression {

namespace {

struct Hint {
    std::string_view word;
    std::string_view text;
};

constexpr std::string_view kOverRows =
    "for counts, sums and averages of rows use a custom metric (count:, sum:, average:)";

constexpr std::string_view kToday = "write today()";
constexpr std::string_view kNow = "write now()";
constexpr std::string_view kConversions = "write tonumber(...), tointeger(...), totext(...) or todate(...)";
constexpr std::string_view kChoice = "write if condition then return a else return b";

/// Sorted by name for binary search.
constexpr auto kFunctions = std::to_array<Hint>({
    {"average", kOverRows},
    {"avg", kOverRows},
    {"cast", kConversions},
    {"ceiling", "write ceil"},
    {"char_length", "write length"},
    {"charindex", "write instr(text, part)"},
    {"chr", "write char"},
    {"convert", kConversions},
    {"count", kOverRows},
    {"current_date", kToday},
    {"date", "write todate"},
    {"date_diff", "write datediff(first, second)"},
    {"decimal", "write tonumber"},
    {"endswith", "write ends_with"},
    {"float", "write tonumber"},
    {"getdate", kNow},
    {"greatest", "write max"},
    {"iif", kChoice},
    {"in", "write value in (a, b, ...)"},
    {"indexof", "write instr(text, part)"},
    {"int", "write tointeger"},
    {"integer", "write tointeger"},
    {"is_date", "write isdate"},
    {"is_null", "write isnull"},
    {"is_number", "write isnumber"},
    {"isempty", "write isblank(...), or compare with ''"},
    {"isnumeric", "write isnumber"},
    {"lcase", "write lower"},
    {"least", "write min"},
    {"len", "write length"},
    {"like", "write value like 'a%'"},
    {"locate", "write instr(text, part)"},
    {"mean", kOverRows},
    {"mid", "write substring"},
    {"number", "write tonumber"},
    {"numeric", "write tonumber"},
    {"nvl", "write ifnull"},
    {"position", "write instr(text, part)"},
    {"pow", "write power"},
    {"regex", "write matches(text, 'expression')"},
    {"regexp", "write matches(text, 'expression')"},
    {"regexp_like", "write matches(text, 'expression')"},
    {"startswith", "write starts_with"},
    {"str", "write totext"},
    {"string", "write totext"},
    {"strlen", "write length"},
    {"substr", "write substring"},
    {"sum", kOverRows},
    {"sysdate", kNow},
    {"to_char", "write totext"},
    {"to_date", "write todate"},
    {"to_integer", "write tointeger"},
    {"to_number", "write tonumber"},
    {"to_text", "write totext"},
    {"tolower", "write lower"},
    {"toupper", "write upper"},
    {"truncate", "write trunc"},
    {"ucase", "write upper"},
    {"val", "write tonumber"},
    {"value", "write tonumber(...); put fields in grave accents"},
});

constexpr auto kWords = std::to_array<Hint>({
    {"as", kConversions},
    {"contains", "write contains(text, part)"},
    {"div", "write trunc(a / b)"},
    {"elif", "write else if"},
    {"elseif", "write else if"},
    {"elsif", "write else if"},
    {"end", "an if has no end"},
    {"eq", "a comparison is written =="},
    {"if", kChoice},
    {"ilike", "write lower(value) like 'a%'"},
    {"mod", "write %"},
    {"not", "put \"not\" before the whole condition, as in not isblank(value)"},
    {"regexp", "write matches(value, 'expression')"},
    {"rlike", "write matches(value, 'expression')"},
    {"similar", "write matches(value, 'expression')"},
    {"when", kChoice},
});

constexpr auto kNames = std::to_array<Hint>({
    {"current_date", kToday},
    {"no", "write false"},
    {"none", "write null"},
    {"now", kNow},
    {"sysdate", kNow},
    {"today", kToday},
    {"yes", "write true"},
});

static_assert(std::ranges::is_sorted(kFunctions, std::less<>(), &Hint::word));
static_assert(std::ranges::is_sorted(kWords, std::less<>(), &Hint::word));
static_assert(std::ranges::is_sorted(kNames, std::less<>(), &Hint::word));

template <std::size_t N>
std::string_view find(const std::array<Hint, N>& hints, std::string_view word) {
    const auto found = std::ranges::lower_bound(hints, word, std::less<>(), &Hint::word);
    return found != hints.end() && found->word == word ? found->text : std::string_view();
}

} // namespace

std::string_view hintForFunction(std::string_view name) {
    return find(kFunctions, name);
}

std::string_view hintForWord(std::string_view word) {
    return find(kWords, word);
}

std::string_view hintForName(std::string_view name) {
    return find(kNames, name);
}

std::string noFunction(std::string_view written) {
    return fmt::format("there is no function {}{}", shortened(written, kLongestEcho),
                       afterSemicolon(hintForFunction(lowerText(written))));
}

std::string afterSemicolon(std::string_view hint) {
    return hint.empty() ? std::string() : "; " + std::string(hint);
}

} // namespace tavix::expression
