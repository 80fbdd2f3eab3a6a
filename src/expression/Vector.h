#pragma once

#include "expression/Value.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tavix::expression {

/// The values that an expression has in the rows of a block; only the rows that were asked for hold any. Borrowed from
/// the block or from the operator that made it.
struct Vector {
    Type type = Type::Null;
    bool isConstant = false;
    Value constant;
    // Texts, in one of two forms: one after the other in `bytes`, or each by itself.
    const char* bytes = nullptr;
    const std::uint32_t* ends = nullptr;
    const std::string_view* texts = nullptr;
    const char* readable = nullptr;         ///< of `bytes`, up to where they may be read; null when that is not known
    bool isAscii = false;                   ///< no byte of any text is above 0x7F
    const std::int64_t* integers = nullptr; ///< also dates
    const double* reals = nullptr;
    const std::uint8_t* booleans = nullptr;
    const std::uint8_t* nulls = nullptr; ///< null when no row is

    [[nodiscard]] bool isNull(std::uint32_t row) const {
        return isConstant ? constant.isNull() : nulls && nulls[row] != 0;
    }
    [[nodiscard]] Value at(std::uint32_t row) const;
};

/// Reads texts that lie one after the other.
struct AdjacentTexts {
    const char* bytes;
    const std::uint32_t* ends;

    [[nodiscard]] std::uint32_t begin(std::uint32_t row) const { return row == 0 ? 0 : ends[row - 1]; }
    [[nodiscard]] std::string_view operator[](std::uint32_t row) const {
        const std::uint32_t from = begin(row);
        return {bytes + from, ends[row] - from};
    }
};

/// Calls with the reader that fits the texts of a vector that is not constant.
template <typename Use>
void withTexts(const Vector& vector, Use use) {
    if (vector.ends)
        use(AdjacentTexts{vector.bytes, vector.ends});
    else
        use(vector.texts);
}

inline Value Vector::at(std::uint32_t row) const {
    if (isConstant)
        return constant;
    if (isNull(row))
        return {};
    switch (type) {
    case Type::Text:
        return Value::ofText(ends ? AdjacentTexts{bytes, ends}[row] : texts[row]);
    case Type::Integer:
        return Value::ofInteger(integers[row]);
    case Type::Date:
        return Value::ofDate(integers[row]);
    case Type::Real:
        return Value::ofReal(reals[row]);
    case Type::Boolean:
        return Value::ofBoolean(booleans[row] != 0);
    case Type::Null:
        break;
    }
    return {};
}

} // namespace tavix::expression
