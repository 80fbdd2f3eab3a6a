#include "expression/Catalogue.h"

#include "expression/CalendarFunctions.h"
#include "expression/CheckDigits.h"
#include "expression/NumberFunctions.h"
#include "expression/Similarity.h"
#include "expression/TextFunctions.h"

#include <algorithm>
#include <array>

namespace tavix::expression {

namespace {

namespace calendar = calendar_functions;
namespace number = number_functions;
namespace similarity = similarity_functions;
namespace text = text_functions;

// Sorted by name for the search.
constexpr auto kFunctions = std::to_array<Function>({
    {"abs", "r", 'r', "The number without its sign.", 1, 1, Form::Plain, number::absolute},
    {"adddays", "dr", 'd', "The date that many days later, or earlier for a negative number.", 2, 2, Form::Plain,
     number::addDays},
    {"addmonths", "di", 'd',
     "The date that many months later, or earlier for a negative number. In a shorter month the day is its last one.",
     2, 2, Form::Plain, calendar::addMonths},
    {"between", "aaa", 'b',
     "Whether the first argument is at least the second and at most the third; also written `x between a and b`.", 3, 3,
     Form::OneType, number::between},
    {"ceil", "r", 'r', "The smallest whole number that is not below the number.", 1, 1, Form::Plain, number::ceiling},
    {"char", "i", 's', "The character with the code point: char(92) is a backslash. Null when there is none.", 1, 1,
     Form::Plain, text::character},
    {"coalesce", "aa", 'a', "The first argument that is not null; null when all are.", 1, kMostArguments,
     Form::FirstNonNull, nullptr},
    {"compare", "ssb", 'i',
     "-1, 0 or 1: whether the first text comes before the second, equals it or comes after it, by code point. With "
     "true as the third argument, case is ignored. Dates are compared as dates.",
     2, 3, Form::Compare, text::compare},
    {"concat", "ss", 's', "The texts joined together.", 1, kMostArguments, Form::Plain, text::concat},
    {"contains", "ss", 'b', "Whether the second text occurs in the first.", 2, 2, Form::Plain, text::contains},
    {"datediff", "dds", 'i',
     "The days from the first date to the second, ignoring the times of day; or how many of another unit (second, "
     "minute, hour, week, month, quarter, year) begin after the first date and not after the second.",
     2, 3, Form::Plain, calendar::dateDifference},
    {"day", "d", 'i', "The day of the month, 1 to 31.", 1, 1, Form::Plain, number::day},
    {"dayofyear", "d", 'i', "The day of the year, 1 to 366.", 1, 1, Form::Plain, calendar::dayOfYear},
    {"editdistance", "ss", 'i',
     "The least number of characters to insert, delete or replace that turn one text into the other (Levenshtein). "
     "Texts of more than 2,000 characters fail.",
     2, 2, Form::Plain, similarity::editDistance},
    {"ends_with", "ss", 'b', "Whether the first text ends with the second.", 2, 2, Form::Plain, text::endsWith},
    {"fits", "sS", 'b',
     "Whether the text can be read as the reading says, such as 'integer', 'real decimal-comma unit=%' or 'date "
     "day-first'; see Readings. White space at its ends does not matter, and a blank text never fits.",
     2, 2, Form::Fits, nullptr},
    {"floor", "r", 'r', "The largest whole number that is not above the number.", 1, 1, Form::Plain, number::floor},
    {"has_control_chars", "s", 'b',
     "Whether the text contains a control character: code points 0 to 31 and 127 to 159.", 1, 1, Form::Plain,
     text::hasControlCharacters},
    {"hour", "d", 'i', "The hour, 0 to 23.", 1, 1, Form::Plain, number::hour},
    {"ifnull", "aa", 'a', "The first argument; the second when the first is null.", 2, 2, Form::FirstNonNull, nullptr},
    {"initcap", "s", 's', "The text with each word in lower case and its first letter in upper case.", 1, 1,
     Form::Plain, text::initcap},
    {"inlist", "aa", 'b',
     "Whether the first argument equals one of the others. Null when none does and one of them is null.", 2,
     kMostArguments, Form::InList, nullptr},
    {"instr", "ssi", 'i',
     "The position of the second text in the first, in characters from 1; 0 when it does not occur. The third argument "
     "is the position to begin the search at.",
     2, 3, Form::Plain, text::instr},
    {"isblank", "s", 'b', "Whether the text is empty or all white space.", 1, 1, Form::Plain, text::isBlank},
    {"isdate", "s", 'b', "Whether the text is a date, such as 2026-11-21 or 2026-11-21T08:15:00.", 1, 1, Form::Plain,
     text::isDate},
    {"isean", "s", 'b',
     "Whether the text is an article number of 8, 12, 13 or 14 digits (EAN, UPC, GTIN) with the right check digit; "
     "blanks and hyphens within it do not matter.",
     1, 1, Form::Plain, check_digits::eanFunction},
    {"isiban", "s", 'b',
     "Whether the text has the form of an international bank account number and the right check digits; blanks and "
     "hyphens within it do not matter.",
     1, 1, Form::Plain, check_digits::ibanFunction},
    {"isinteger", "s", 'b', "Whether the text is an integer of at most 64 bits: a sign and digits.", 1, 1, Form::Plain,
     text::isInteger},
    {"isluhn", "s", 'b',
     "Whether the text is a number with the right check digit of Luhn, such as a card number; blanks and hyphens "
     "within "
     "it do not matter.",
     1, 1, Form::Plain, check_digits::luhnFunction},
    {"isnull", "a", 'b', "Whether the argument is null.", 1, 1, Form::IsNull, nullptr},
    {"isnumber", "s", 'b',
     "Whether the text is a number: sign, digits, decimal point, exponent; no blanks and no digit grouping.", 1, 1,
     Form::Plain, text::isNumber},
    {"jarowinkler", "ss", 'r',
     "How alike two texts are, from 0 to 1 for equal ones (Jaro and Winkler); made for names. Texts of more than 2,000 "
     "characters fail.",
     2, 2, Form::Plain, similarity::jaroWinkler},
    {"lastday", "d", 'd', "The last day of the date's month.", 1, 1, Form::Plain, calendar::lastDay},
    {"left", "si", 's', "That many characters from the beginning of the text.", 2, 2, Form::Plain, text::left},
    {"length", "s", 'i', "The number of characters.", 1, 1, Form::Plain, text::length},
    {"lower", "s", 's', "The text with each character in lower case.", 1, 1, Form::Plain, text::lower},
    {"lpad", "sis", 's',
     "The text padded on the left to that many characters, with blanks or with the third text. A longer text is not "
     "cut; left(...) does that.",
     2, 3, Form::Plain, text::padLeft},
    {"ltrim", "s", 's', "The text without white space at its beginning.", 1, 1, Form::Plain, text::ltrim},
    {"match_string", "ss", 'b',
     "Whether the whole text matches the pattern, in which * matches any number of characters and ? exactly one.", 2, 2,
     Form::Wildcard, text::matchString},
    {"matches", "sS", 'b',
     "Whether the whole text matches the regular expression, which must be a fixed text. The syntax is that of RE2, "
     "without back references; put .* before and after it to search within the text.",
     2, 2, Form::Regular, nullptr},
    {"max", "aa", 'a', "The greatest of the arguments.", 1, kMostArguments, Form::OneType, number::greatest},
    {"min", "aa", 'a', "The smallest of the arguments.", 1, kMostArguments, Form::OneType, number::least},
    {"minute", "d", 'i', "The minute, 0 to 59.", 1, 1, Form::Plain, number::minute},
    {"mod", "rr", 'r', "The remainder of the first number divided by the second; null when that is 0.", 2, 2,
     Form::Plain, number::remainder},
    {"month", "d", 'i', "The month, 1 to 12.", 1, 1, Form::Plain, number::month},
    {"now", "", 'd',
     "The moment at which the run began, the same for all rows; in a filter, that of the run that is shown.", 0, 0,
     Form::Now, nullptr},
    {"nullif", "aa", 'a', "Null when both arguments are equal, else the first.", 2, 2, Form::OneType, number::nullIf},
    {"power", "rr", 'r', "The first number to the power of the second.", 2, 2, Form::Plain, number::power},
    {"quarter", "d", 'i', "The quarter of the year, 1 to 4.", 1, 1, Form::Plain, calendar::quarter},
    {"regexp_extract", "sSi", 's',
     "The first part of the text that matches the regular expression, or the part of it in that pair of parentheses, 1 "
     "to 9; null when nothing matches.",
     2, 3, Form::Extraction, nullptr},
    {"regexp_replace", "sSS", 's',
     "The text with each match of the regular expression replaced. In the replacement \\1 to \\9 are the parts in "
     "parentheses, \\0 the whole match and \\\\ a backslash.",
     3, 3, Form::Replacement, nullptr},
    {"replace", "sss", 's', "The first text with each occurrence of the second replaced by the third.", 3, 3,
     Form::Plain, text::replace},
    {"reverse", "s", 's', "The characters of the text in reverse order.", 1, 1, Form::Plain, text::reverse},
    {"right", "si", 's', "That many characters from the end of the text.", 2, 2, Form::Plain, text::right},
    {"round", "ri", 'r',
     "The number rounded to that many decimal places, none by default. Halves, as the number is written, are rounded "
     "away from zero.",
     1, 2, Form::Plain, number::round},
    {"rpad", "sis", 's',
     "The text padded on the right to that many characters, with blanks or with the third text. A longer text is not "
     "cut; left(...) does that.",
     2, 3, Form::Plain, text::padRight},
    {"rtrim", "s", 's', "The text without white space at its end.", 1, 1, Form::Plain, text::rtrim},
    {"second", "d", 'i', "The second, 0 to 59.", 1, 1, Form::Plain, number::second},
    {"soundex", "s", 's',
     "The phonetic key of an English name (Soundex): a letter and three digits. Null for a text without letters a to "
     "z.",
     1, 1, Form::Plain, similarity::soundex},
    {"split", "ssi", 's',
     "The part of the text with that number, counted from 1, between occurrences of the second text; null when there "
     "are fewer parts.",
     3, 3, Form::Plain, text::split},
    {"sqrt", "r", 'r', "The square root; null of a negative number.", 1, 1, Form::Plain, number::squareRoot},
    {"startof", "ds", 'd',
     "The beginning of the date's second, minute, hour, day, week (Monday), month, quarter or year.", 2, 2, Form::Plain,
     calendar::startOf},
    {"starts_with", "ss", 'b', "Whether the first text begins with the second.", 2, 2, Form::Plain, text::startsWith},
    {"substring", "sii", 's',
     "The characters from the given position on, counted from 1: all of them, or as many as the third argument says.",
     2, 3, Form::Plain, text::substring},
    {"todate", "dS", 'd',
     "The text as a date; null when it is not one. The second argument is the format of the dates, such as "
     "'dd.MM.yyyy', or a reading, such as 'date day-first'; see Dates and Readings.",
     1, 2, Form::FormattedDate, number::same},
    {"today", "", 'd', "The day on which the run began (UTC); in a filter, that of the run that is shown.", 0, 0,
     Form::Today, nullptr},
    {"tointeger", "i", 'i',
     "The number, or the text as a number, truncated to an integer; null when it is not a number.", 1, 1, Form::Plain,
     number::same},
    {"tonumber", "rS", 'r',
     "The text as a number; null when it is not one. The second argument is a reading, such as 'real decimal-comma'; "
     "see Readings.",
     1, 2, Form::ReadNumber, number::same},
    {"totext", "s", 's', "The argument as a text.", 1, 1, Form::Plain, number::same},
    {"trim", "s", 's', "The text without white space at both ends.", 1, 1, Form::Plain, text::trim},
    {"trunc", "r", 'r', "The number without its decimal places.", 1, 1, Form::Plain, number::truncate},
    {"unaccent", "s", 's',
     "The text without accents and other marks on letters: é becomes e. Letters such as ø, ł and ß stay.", 1, 1,
     Form::Plain, text::unaccent},
    {"upper", "s", 's', "The text with each character in upper case.", 1, 1, Form::Plain, text::upper},
    {"week", "d", 'i', "The week of the year, 1 to 53, as ISO 8601 counts them.", 1, 1, Form::Plain, calendar::week},
    {"weekday", "d", 'i', "The day of the week, 1 for Monday to 7 for Sunday.", 1, 1, Form::Plain, number::weekday},
    {"year", "d", 'i', "The year.", 1, 1, Form::Plain, number::year},
});

static_assert(std::ranges::is_sorted(kFunctions, {}, &Function::name));

} // namespace

std::span<const Function> functions() {
    return kFunctions;
}

const Function* findFunction(std::string_view name) {
    const auto found = std::ranges::lower_bound(kFunctions, name, {}, &Function::name);
    return found != kFunctions.end() && found->name == name ? &*found : nullptr;
}

} // namespace tavix::expression
