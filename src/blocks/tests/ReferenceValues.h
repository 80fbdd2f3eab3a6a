#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// The values of the reference evaluator and the operations on them, as slow and obvious as possible.
namespace tavix::expression::reference {

/// A list of code points.
using Text = std::u32string;
/// Null, boolean, integer, real or text.
using Value = std::variant<std::monostate, bool, std::int64_t, double, Text>;

/// Bytes that are not part of a character become numbers above all code points, and back.
Text decode(std::string_view utf8);
std::string encode(const Text& text);

constexpr char32_t kBytes = 0x110000; ///< the first of them

bool isNull(const Value& value);
const Text& textOf(const Value& value);
std::int64_t integerOf(const Value& value);
Value toText(const Value& value);
double toReal(const Value& value);
std::optional<bool> truth(const Value& value);
Value fromTruth(std::optional<bool> truth);

/// Below zero, zero or above: by code point, or by byte when there are bytes that are not part of a character.
int compareTexts(const Text& left, const Text& right);
/// Below zero, zero or above.
int compareAny(const Value& left, const Value& right);
/// A fixed text that is a number becomes one where it is compared with a number.
Value asNumber(const Value& value);
/// None when the cell is not a number.
std::optional<int> orderOfCell(const Text& cell, const Value& number);
/// Two numbers without leading zeros, two dates, or texts.
int orderOfCells(const Text& left, const Text& right);
bool isPlainNumber(const Text& cell);
bool isDate(const Text& cell);
/// Whether the first value is among the others: true when it equals one by its index, else null when one is null.
Value isAmong(const std::vector<Value>& values, const std::function<bool(std::size_t)>& equals);
/// To one decimal place, as the number is written.
double roundedToOnePlace(double value);

Text lower(const Text& text);
Text upper(const Text& text);
bool isSpace(char32_t c);
bool isControl(char32_t c);
/// sign? (digits [. digits*] | . digits) (e sign? digits)?
bool isNumber(const Text& text);
/// None when the text is not a number, or not within the range of a double.
std::optional<double> readNumber(const Text& text);
Text trimmed(Text text, bool left, bool right);
Text substring(const Text& text, std::int64_t first, std::int64_t count);
Text replaced(const Text& text, const Text& from, const Text& to);
/// Each word with its first letter in upper case and the others in lower case.
Text capitalized(const Text& text);
/// Of the letters that random texts have.
Text withoutAccents(Text text);
/// The first digits in a row; null without digits.
Value firstDigits(const Text& text);
/// Whether the text is a number of at least two digits, with blanks and hyphens between them, that Luhn's formula
/// accepts.
bool isLuhn(const Text& text);

/// A day of the proleptic Gregorian calendar.
struct Civil {
    std::int64_t year = 1970;
    std::int64_t month = 1;
    std::int64_t day = 1;
};
/// Found by counting days.
Civil civilOf(std::int64_t ticks);

/// Whether the text matches the wildcard pattern, found by matching all prefixes of both.
bool fits(const Text& text, const Text& pattern);

} // namespace tavix::expression::reference
