#pragma once

#include "base/ByteMask.h"
#include "base/TypeWords.h"

#include <cstdint>
#include <optional>
#include <string_view>

/// The type that a single text can be read as. docs/definitions.md explains it to users.
namespace tavix::forms {

enum class ValueKind : std::uint8_t {
    None, ///< empty or blank: fits any type
    Boolean,
    Integer,
    Real, ///< a number with a point or an exponent
    Date, ///< a date or a date with a time
    Text,
};

/// The narrowest kind that the text fits.
[[nodiscard]] ValueKind kindOf(std::string_view text);
/// The same, sooner, of a text that is neither empty nor blank; `bytes` is its byteMask().
[[nodiscard]] ValueKind kindOf(std::string_view text, ByteMask bytes);

/// The narrowest kind that holds values of both kinds.
[[nodiscard]] ValueKind joinedKind(ValueKind a, ValueKind b);

/// The type of a field whose values are of this kind; nothing for None.
[[nodiscard]] std::optional<FieldType> typeOf(ValueKind kind);

/// The value of a Boolean.
[[nodiscard]] bool booleanValue(std::string_view text);
/// The value of an Integer; none when it does not fit 64 bits.
[[nodiscard]] std::optional<std::int64_t> integerValue(std::string_view text);
/// Compares two texts of kind Integer of any size by value: below zero, zero, or above.
[[nodiscard]] int compareIntegers(std::string_view left, std::string_view right);
/// The value of an Integer or Real.
[[nodiscard]] double realValue(std::string_view text);
/// The digits after the decimal point of an Integer or Real when it is written without an exponent.
[[nodiscard]] std::int64_t decimalPlaces(std::string_view text);
/// The instant of a Date in units of 100 ns since 1970; UTC when it has no offset.
[[nodiscard]] std::int64_t dateValue(std::string_view text);

} // namespace tavix::forms
