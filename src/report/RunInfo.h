#pragma once

#include "base/LibraryDate.h"

#include <cstdint>
#include <locale>
#include <string>
#include <vector>

namespace tavix {

/// A run of the current job for lists of runs.
struct RunInfo {
    int id = -1;
    LibraryDate date = 0;
    std::string description;
    std::int64_t tables = 0;
    std::int64_t records = 0; ///< that were profiled, in all tables

    [[nodiscard]] std::string DateText(const std::locale& locale) const {
        return formatDateTime(decompose(date), locale);
    }

    bool operator==(const RunInfo&) const = default;
};

} // namespace tavix
