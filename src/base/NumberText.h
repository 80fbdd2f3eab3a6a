#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// Numbers to text and back without asking the process locale: a decimal point is always '.'.
namespace tavix {

[[nodiscard]] std::string formatInteger(std::int64_t value);
/// With a comma after every three digits: "3,000,000".
[[nodiscard]] std::string formatGrouped(std::int64_t value);
/// The shortest text that reads back as the same value: plain digits from 0.00001 to below 10^15 ("0.1", "100000"),
/// else as short as can be ("1e+20"); "nan", "inf", "-inf" for the others.
[[nodiscard]] std::string formatReal(double value);
/// For people to read: six decimals at most, below 1 six significant digits, no trailing zeros. What a binary fraction
/// or a difference has beyond them is rounding: -0.09999999999999964 is "-0.1".
[[nodiscard]] std::string formatReadable(double value);
/// As printf's "%.<places>f"; a result of zero has no minus sign.
[[nodiscard]] std::string formatFixed(double value, int places);

/// The number that the whole text denotes: sign, digits, decimal point, exponent; nothing else, no blanks, finite.
[[nodiscard]] std::optional<double> parseNumber(std::string_view text);
/// The integer that the whole text denotes: sign and digits, within 64 bits.
[[nodiscard]] std::optional<std::int64_t> parseInteger(std::string_view text);
/// Plain decimal conversion: leading white space, sign, then as many digits as follow; 0 when there are none;
/// clamped to 64 bits. The rule by which settings are read.
[[nodiscard]] std::int64_t decimalPrefix(std::string_view text);
/// Cut toward zero and clamped; NaN gives 0.
[[nodiscard]] std::int64_t saturateToInt64(double value);

} // namespace tavix
