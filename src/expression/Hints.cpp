#include "expression/Hints.h"

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
    "counts, sums and averages of rows are figures of a custom metric (count:, sum:, average:)";

/// By name, for a binary search.
constexpr auto kFunctions = std::to_array<Hint>({
    {"average", kOverRows},
    {"avg", kOverRows},
    {"cast", "write tonumber(...), tointeger(...), totext(...) or todate(...)"},
    {"ceiling", "write ceil"},
    {"char_length", "write length"},
    {"charindex", "write instr(text, part)"},
    {"chr", "write char"},
    {"convert", "write tonumber(...), tointeger(...), totext(...) or todate(...)"},
    {"count", kOverRows},
    {"date", "write todate"},
    {"date_diff", "write datediff(first, second)"},
    {"decimal", "write tonumber"},
    {"endswith", "write ends_with"},
    {"float", "write tonumber"},
    {"greatest", "write max"},
    {"iif", "write if ... then return ... else return ..."},
    {"in", "write inlist(value, a, b, ...)"},
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
    {"like", "write match_string(text, 'a*'), with * and ?"},
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
    {"value", "write tonumber(...); fields stand in grave accents"},
});

constexpr auto kWords = std::to_array<Hint>({
    {"between", "write value >= a and value <= b"},
    {"div", "write trunc(a / b)"},
    {"eq", "a comparison is written =="},
    {"in", "write inlist(value, a, b, ...)"},
    {"is", "write isnull(value) or not isnull(value)"},
    {"like", "write match_string(value, 'a*'), with * and ?"},
    {"mod", "write %"},
    {"not", "\"not\" stands before the whole condition, as in not inlist(value, a, b)"},
});

static_assert(std::ranges::is_sorted(kFunctions, std::less<>(), &Hint::word));
static_assert(std::ranges::is_sorted(kWords, std::less<>(), &Hint::word));

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

std::string behindSemicolon(std::string_view hint) {
    return hint.empty() ? std::string() : "; " + std::string(hint);
}

} // namespace tavix::expression
