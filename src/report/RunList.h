#pragma once

#include "report/RunInfo.h"

#include <locale>
#include <string>
#include <vector>

namespace tavix {

/// A run as lists and choosers show it.
struct RunRow {
    int id = -1;
    int number = 0;          ///< 1 for the earliest run that is kept
    std::string run;         ///< the number, with the id if it is another one: "12 (id 17)"
    std::string date;        ///< in the locale's form
    std::string description; ///< in one line
    std::string tables;
    std::string records; ///< those profiled in all tables
    std::string change;  ///< of the records since the run before; empty for the earliest one

    /// Number, date and description in one line.
    [[nodiscard]] std::string Label() const;

    bool operator==(const RunRow&) const = default;
};

/// The latest run first.
[[nodiscard]] std::vector<RunRow> listRuns(std::vector<RunInfo> runs, const std::locale& locale);

} // namespace tavix
