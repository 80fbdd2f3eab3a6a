#pragma once

#include "base/Clock.h"

#include <locale>
#include <string>

namespace tavix {

/// The date type of the repository library: a double that counts days since 1899-12-30 00:00, local time.
using LibraryDate = double;

struct DateParts {
    int year = 0;
    int month = 0; ///< 1 to 12
    int day = 0;   ///< 1 to 31
    int hour = 0;
    int minute = 0;
    int second = 0;

    bool operator==(const DateParts&) const = default;
};

/// The local wall-clock time of an instant in the process's time zone.
[[nodiscard]] LibraryDate toLibraryDate(UtcTime time);
/// Splits a date, rounded to the nearest second. Dates outside the years 1 to 9999 give all zeros.
[[nodiscard]] DateParts decompose(LibraryDate date);
/// The locale's form of date and time, "%c".
[[nodiscard]] std::string formatDateTime(const DateParts& parts, const std::locale& locale);
/// The locale of the user's environment; the classic one if that does not exist.
[[nodiscard]] std::locale userLocale();

} // namespace tavix
