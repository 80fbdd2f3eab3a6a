#pragma once

#include "expression/Value.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tavix::expression {

class Frame;

/// Whether no byte of some texts is above 0x7F. Of a block's column that is looked at when it is first asked, since
/// many operators need not know.
class AsciiAnswer {
  public:
    AsciiAnswer() = default;
    explicit AsciiAnswer(bool isYes) : m_isYes(isYes) {}
    /// The frame has to outlive it.
    AsciiAnswer(Frame& frame, std::size_t column) : m_frame(&frame), m_column(column) {}
    [[nodiscard]] bool isYes() const;

  private:
    Frame* m_frame = nullptr;
    std::size_t m_column = 0;
    bool m_isYes = false;
};

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
    const char* readable = nullptr; ///< of `bytes`, up to where they may be read; null when that is not known
    AsciiAnswer ascii;
    const std::int64_t* integers = nullptr; ///< also dates
    const double* reals = nullptr;
    const std::uint8_t* booleans = nullptr;
    const std::uint8_t* nulls = nullptr; ///< null when no row is

    [[nodiscard]] bool isNull(std::uint32_t row) const {
        return isConstant ? constant.isNull() : nulls && nulls[row] != 0;
    }
    [[nodiscard]] bool isAscii() const { return ascii.isYes(); }
    [[nodiscard]] Value at(std::uint32_t row) const;
};

/// Reads texts that lie one after the other.
struct AdjacentTexts {
    const char* bytes;
    const std::uint32_t* ends;

    [[nodiscard]] std::uint32_t begin(std::uint32_t row) const { return row == 0 ? 0 : ends[row - 1]; }
    [[nodiscard]] std::string_view operator[](std::uint32_t row) const {
        const std::uint32_t from = begin(row);
        fetchAhead(from);
        return {bytes + from, ends[row] - from};
    }

  private:
    /// A loop over texts waits for memory more than it computes: a block is too short for the processor to see early
    /// enough where the loop is going. Nothing is read, so the place may lie behind the block.
    void fetchAhead(std::uint32_t from) const {
        constexpr std::uintptr_t kAhead = 2048;
        // A number, since no pointer may point there. NOLINTNEXTLINE(performance-no-int-to-ptr)
        __builtin_prefetch(reinterpret_cast<const void*>(reinterpret_cast<std::uintptr_t>(bytes) + from + kAhead));
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
