#pragma once

#include "forms/Unit.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace tavix::forms {

/// How negative numbers are marked.
enum class NegativeMark : std::uint8_t { None, Before, After, Parentheses };

/// How a number is read if '.' or ',' is its decimal mark.
struct MarkReading {
    bool reads = false;
    bool isWhole = false; ///< neither a decimal mark nor an exponent
    bool isGrouped = false;

    bool operator==(const MarkReading&) const = default;
};

/// A number as people write it: with a sign, groups of three digits, a decimal point or comma, a unit.
/// docs/definitions.md has the grammar.
struct WrittenNumber {
    MarkReading point;
    MarkReading comma;
    NegativeMark negative = NegativeMark::None;
    UnitCode unit = kNoUnit;
    std::string_view digits; ///< digits, separators, decimal mark and exponent: part of the text that was read

    /// Whether both decimal marks give the same number.
    [[nodiscard]] bool isSameByMark() const { return digits.find_first_of(".,") == std::string_view::npos; }
    /// The value with this decimal mark, which must read it.
    [[nodiscard]] double value(char mark) const;
    /// The value of a whole number; none beyond 64 bits.
    [[nodiscard]] std::optional<std::int64_t> integer(char mark) const;
};

/// Reads the complete text, which must have no white space at its ends.
[[nodiscard]] std::optional<WrittenNumber> readNumber(std::string_view text);

} // namespace tavix::forms
