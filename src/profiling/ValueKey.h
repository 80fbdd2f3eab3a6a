#pragma once

#include "profiling/ValueKind.h"

#include <cstdint>
#include <string_view>

namespace tavix::profiling {

/// What values of one kind are ordered by, as a number: integers of 64 bits by value, reals and larger integers as
/// doubles, dates by instant, booleans false before true.
enum class KeyForm : std::uint8_t {
    None, ///< only the text counts
    Boolean,
    Integer,
    Double,
    LargeInteger, ///< as a double; equal ones may still differ in value, by compareIntegers()
    Date,
};

/// `fits64`: all integers of the field are within 64 bits.
[[nodiscard]] KeyForm keyForm(ValueKind kind, bool fits64);
/// The key of a value that fits the form.
[[nodiscard]] std::uint64_t keyOf(std::string_view text, KeyForm form);

[[nodiscard]] std::int64_t integerOfKey(std::uint64_t key);
[[nodiscard]] double doubleOfKey(std::uint64_t key);

} // namespace tavix::profiling
