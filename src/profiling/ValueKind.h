#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

/// What a single text may be read as. docs/definitions.md says the same to users.
namespace tavix::profiling {

enum class ValueKind : std::uint8_t {
    None, ///< empty or blank: tells nothing
    Boolean,
    Integer,
    Real, ///< a number with a point or an exponent
    Date, ///< a date or a date with a time
    Text,
};

/// The narrowest kind that the text fits.
[[nodiscard]] ValueKind kindOf(std::string_view text);

/// The value of a Boolean.
[[nodiscard]] bool booleanValue(std::string_view text);
/// The value of an Integer; none when 64 bits do not hold it.
[[nodiscard]] std::optional<std::int64_t> integerValue(std::string_view text);
/// Below zero, zero, above: how two texts of kind Integer of any size compare by value.
[[nodiscard]] int compareIntegers(std::string_view left, std::string_view right);
/// The value of an Integer or Real.
[[nodiscard]] double realValue(std::string_view text);
/// Digits behind the decimal point of an Integer or Real when it is written without an exponent.
[[nodiscard]] std::int64_t decimalPlaces(std::string_view text);
/// The instant of a Date in units of 100 ns since 1970; without an offset it is taken as UTC.
[[nodiscard]] std::int64_t dateValue(std::string_view text);

} // namespace tavix::profiling
