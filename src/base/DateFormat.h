#pragma once

#include "base/Result.h"

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace tavix {

/// A format of written dates, such as "dd.MM.yyyy HH:mm". Its parts:
///
///     yyyy  four digits of the year       yy  two digits: 69 to 99 are 1969 to 1999, 00 to 68 are 2000 to 2068
///     MM    the month, two digits         M   one or two digits
///     MMM   its English name, or the first three letters of it, in any case
///     dd d  the day of the month          HH H  the hour, 0 to 23       hh h  the hour, 1 to 12, with `a`
///     mm m  the minute                    ss s  the second              a     AM or PM in any case
///
/// Any other character is literal, as are letters in single quotes; '' is a quote. The century of yy is that of
/// strptime in POSIX.1-2017. Years are 1 to 9999, times UTC.
class DateFormat {
  public:
    /// At most 100 bytes, with year, month and day exactly once. The error is a sentence for the author.
    [[nodiscard]] static Result<DateFormat> parse(std::string_view format);

    /// The date in units of base/DateTicks.h; nothing if the whole text is not such a date.
    [[nodiscard]] std::optional<std::int64_t> read(std::string_view text) const;

  private:
    enum class Kind : std::uint8_t { Literal, Year, Month, MonthName, Day, Hour, HalfDayHour, Minute, Second, HalfDay };
    struct Part {
        Kind kind = Kind::Literal;
        std::uint8_t least = 1; ///< digits
        std::uint8_t most = 1;
        char literal = 0;
    };

    std::vector<Part> m_parts;
};

} // namespace tavix
