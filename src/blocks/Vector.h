#pragma once

#include "expression/Value.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tavix::expression {

class Frame;

/// Whether some texts are all ASCII. For a block's column this is computed when it is first asked, since many operators
/// do not need it.
class AsciiAnswer {
  public:
    AsciiAnswer() = default;
    explicit AsciiAnswer(bool isYes) : m_isYes(isYes) {}
    /// The frame must outlive it.
    AsciiAnswer(Frame& frame, std::size_t column) : m_frame(&frame), m_column(column) {}
    [[nodiscard]] bool isYes() const;

  private:
    Frame* m_frame = nullptr;
    std::size_t m_column = 0;
    bool m_isYes = false;
};

/// The values of an expression in the rows of a block; only the requested rows have one. Borrowed from the block or
/// from the operator that made it.
struct Vector {
    Type type = Type::Null;
    bool isConstant = false;
    Value constant;
    // Texts, in one of two forms: adjacent in `bytes`, or separate.
    const char* bytes = nullptr;
    const std::uint32_t* ends = nullptr;
    const std::string_view* texts = nullptr;
    const char* readable = nullptr; ///< the end of the memory that may be read after `bytes`; null when unknown
    AsciiAnswer ascii;
    const std::int64_t* integers = nullptr; ///< also dates
    const double* reals = nullptr;
    const std::uint8_t* booleans = nullptr;
    const std::uint8_t* nulls = nullptr; ///< null when no row is null

    [[nodiscard]] bool isNull(std::uint32_t row) const {
        return isConstant ? constant.isNull() : nulls && nulls[row] != 0;
    }
    [[nodiscard]] bool isAscii() const { return ascii.isYes(); }
    [[nodiscard]] Value at(std::uint32_t row) const;
};

/// Reads adjacent texts.
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
    /// Loops over texts are bound by memory: a block is too short for the hardware to detect the access pattern in
    /// time. Prefetching reads nothing, so the address may be past the block.
    void fetchAhead(std::uint32_t from) const {
        constexpr std::uintptr_t kAhead = 2048;
        // As an integer, since a pointer must not point there. NOLINTNEXTLINE(performance-no-int-to-ptr)
        __builtin_prefetch(reinterpret_cast<const void*>(reinterpret_cast<std::uintptr_t>(bytes) + from + kAhead));
    }
};

/// Calls `use` with a reader for the texts of a vector that is not constant.
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
