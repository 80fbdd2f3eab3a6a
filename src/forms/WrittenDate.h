#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace tavix::forms {

enum class DateShape : std::uint8_t {
    Iso,            ///< as base/DateTicks reads it
    YearFirst,      ///< 2001/1/14
    DayAndMonth,    ///< 14.01.2001 and 01/14/2001: the column decides which comes first
    MonthNameFirst, ///< Jan 14, 2001
    DayBeforeName,  ///< 14 Jan 2001
    ShortYear,      ///< 14.1.01: never read, since the century and often the order are open
};

/// A date as people write it. docs/definitions.md has the grammar.
struct WrittenDate {
    DateShape shape = DateShape::Iso;
    char separator = '-'; ///< between its parts: one of / . - and blank, or 0
    bool hasTime = false;
    /// Units of 100 ns since 1970, when the day or the month comes first; equal unless the order matters. None where
    /// that order gives no date.
    std::optional<std::int64_t> dayFirst;
    std::optional<std::int64_t> monthFirst;
};

/// Reads the complete text, which must have no white space at its ends.
[[nodiscard]] std::optional<WrittenDate> readDate(std::string_view text);

} // namespace tavix::forms
