#pragma once

#include "base/KvbDatavar.h"

#include <cstdint>
#include <string_view>

namespace tavix::expression {

/// The types of values. Every expression has exactly one, known before anything is evaluated.
enum class Type : std::uint8_t {
    Null, ///< of the word null; goes with every other type
    Boolean,
    Integer,
    Real,
    Text,
    Date,
};

/// A value or null. A text is borrowed from the cell it was read from, from the program, or from a Scratch.
struct Value {
    Type type = Type::Null;
    union {
        bool boolean;
        std::int64_t integer = 0; ///< also a date: units of 100 ns since 1970-01-01 00:00 UTC
        double real;
    };
    std::string_view text{};

    [[nodiscard]] bool isNull() const { return type == Type::Null; }

    [[nodiscard]] static Value ofBoolean(bool value) { return {.type = Type::Boolean, .boolean = value}; }
    [[nodiscard]] static Value ofInteger(std::int64_t value) { return {.type = Type::Integer, .integer = value}; }
    [[nodiscard]] static Value ofReal(double value) { return {.type = Type::Real, .real = value}; }
    [[nodiscard]] static Value ofDate(std::int64_t ticks) { return {.type = Type::Date, .integer = ticks}; }
    [[nodiscard]] static Value ofText(std::string_view value) {
        return {.type = Type::Text, .integer = 0, .text = value};
    }
    /// A text is borrowed from the cell.
    [[nodiscard]] static Value ofCell(const KvbDatavar& cell);
};

[[nodiscard]] constexpr bool isNumber(Type type) {
    return type == Type::Integer || type == Type::Real;
}

/// The word for a type in messages: "text", "integer", ...
[[nodiscard]] std::string_view typeName(Type type);

} // namespace tavix::expression
