#pragma once

#include "base/KvbDatavar.h"

#include <cstdint>
#include <string_view>

namespace tavix::expression {

/// What a value can be. Every expression has exactly one type, known before anything is evaluated.
enum class Type : std::uint8_t {
    Null, ///< of the word null alone: goes with every other type
    Boolean,
    Integer,
    Real,
    Text,
    Date,
};

/// One value, or null. A text is borrowed: from the cell it was read from, from the program, or from a Scratch.
struct Value {
    Type type = Type::Null;
    union {
        bool boolean;
        std::int64_t integer = 0; ///< also a date: units of 100 ns since 1970-01-01 00:00 UTC
        double real;
    };
    std::string_view text;

    [[nodiscard]] bool isNull() const { return type == Type::Null; }
    [[nodiscard]] bool isTrue() const { return type == Type::Boolean && boolean; }

    [[nodiscard]] static Value ofBoolean(bool value) {
        Value made;
        made.type = Type::Boolean;
        made.boolean = value;
        return made;
    }
    [[nodiscard]] static Value ofInteger(std::int64_t value) {
        Value made;
        made.type = Type::Integer;
        made.integer = value;
        return made;
    }
    [[nodiscard]] static Value ofReal(double value) {
        Value made;
        made.type = Type::Real;
        made.real = value;
        return made;
    }
    [[nodiscard]] static Value ofDate(std::int64_t ticks) {
        Value made;
        made.type = Type::Date;
        made.integer = ticks;
        return made;
    }
    [[nodiscard]] static Value ofText(std::string_view value) {
        Value made;
        made.type = Type::Text;
        made.text = value;
        return made;
    }
    /// A text stays borrowed from the cell.
    [[nodiscard]] static Value ofCell(const KvbDatavar& cell);
};

[[nodiscard]] constexpr bool isNumber(Type type) {
    return type == Type::Integer || type == Type::Real;
}

/// The word for a type in messages: "text", "integer", ...
[[nodiscard]] std::string_view typeName(Type type);

} // namespace tavix::expression
