#pragma once

#include "forms/ColumnReading.h"
#include "forms/ValueKind.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace tavix::profiling {

/// How values of one kind are ordered, as a number: 64-bit integers by value, reals and larger integers as doubles,
/// dates by instant, false before true.
enum class KeyForm : std::uint8_t {
    None, ///< by text
    Boolean,
    Integer,
    Double,
    LargeInteger, ///< as a double; compareIntegers() decides between equal ones
    Date,
};

/// `fits64`: whether all integers of the field fit 64 bits.
[[nodiscard]] KeyForm keyForm(forms::ValueKind kind, bool fits64);
/// The key of a value that fits the form.
[[nodiscard]] std::uint64_t keyOf(std::string_view text, KeyForm form);

/// For the values that fit a column's reading. Integers beyond 64 bits are doubles.
[[nodiscard]] KeyForm keyForm(const forms::ColumnReading& column);
/// The key of a value that is read so; none if it does not fit.
[[nodiscard]] std::optional<std::uint64_t> keyOf(std::string_view text, KeyForm form, const forms::Reading& reading);

[[nodiscard]] std::int64_t integerOfKey(std::uint64_t key);
[[nodiscard]] double doubleOfKey(std::uint64_t key);

/// Whether values of this form can be summed up.
[[nodiscard]] constexpr bool isNumber(KeyForm form) {
    return form == KeyForm::Integer || form == KeyForm::Double || form == KeyForm::LargeInteger;
}
/// The value of a key of a number.
[[nodiscard]] long double numberOfKey(std::uint64_t key, KeyForm form);

} // namespace tavix::profiling
