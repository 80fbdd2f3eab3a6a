#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// Numbers to text and back, independent of the process locale: the decimal point is always '.'.
namespace tavix {

[[nodiscard]] std::string formatInteger(std::int64_t value);
/// With a comma after every three digits: "3,000,000".
[[nodiscard]] std::string formatGrouped(std::int64_t value);
/// The shortest text that reads back as the same value: plain digits from 0.00001 to below 10^15 ("0.1", "100000"),
/// else the shortest form ("1e+20"); "nan", "inf", "-inf".
[[nodiscard]] std::string formatReal(double value);
/// For people: at most six decimals, below 1 six significant digits, no trailing zeros. Further digits are rounding
/// errors of a binary fraction or a difference: -0.09999999999999964 is "-0.1".
[[nodiscard]] std::string formatReadable(double value);
/// Like printf's "%.<places>f", but zero has no minus sign.
[[nodiscard]] std::string formatFixed(double value, int places);

/// The number of the whole text: sign, digits, decimal point, exponent; finite, without blanks.
[[nodiscard]] std::optional<double> parseNumber(std::string_view text);
/// The integer of the whole text: sign and digits, within 64 bits.
[[nodiscard]] std::optional<std::int64_t> parseInteger(std::string_view text);
/// The rule for settings: skips white space, takes a sign and the digits that follow; 0 without digits; clamped to 64
/// bits.
[[nodiscard]] std::int64_t decimalPrefix(std::string_view text);
/// Truncated and clamped; NaN gives 0.
[[nodiscard]] std::int64_t saturateToInt64(double value);

} // namespace tavix
