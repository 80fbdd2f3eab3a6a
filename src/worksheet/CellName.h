#pragma once

#include "base/Result.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace tavix::worksheet {

/// A cell; both numbers count from 0.
struct Cell {
    std::int64_t row = 0;
    int column = 0;

    bool operator==(const Cell&) const = default;
};

/// The cell of a name such as "A1" or "ab12": one to three letters in any case, then a row number from 1 on, of at most
/// twelve digits. Accepts columns beyond IV, but no cell can be written there.
[[nodiscard]] Result<Cell> parseCellName(std::string_view name);

/// "A1" for the first cell.
[[nodiscard]] std::string cellName(const Cell& cell);
/// "A" for 0, "IV" for 255.
[[nodiscard]] std::string columnName(int column);

} // namespace tavix::worksheet
