#pragma once

#include "grid/CUGDataSource.h"

#include <functional>
#include <optional>
#include <span>
#include <vector>

namespace tavix {

/// How many pixels a column needs.
struct ColumnNeed {
    int least = 0;             ///< the width that its source gives it
    int heading = 0;           ///< to show the whole heading
    int content = 0;           ///< to show the widest of the measured cells
    bool isBlank = false;      ///< no cell has anything to show but "(Unknown)"
    bool isName = false;       ///< its cells name the rows, so it does not give way to figures
    bool takesRest = false;    ///< see GridColumn
    std::optional<int> chosen; ///< by the user

    bool operator==(const ColumnNeed&) const = default;
};

/// The widths of a grid's columns in `room` pixels. A width that the user chose stays. Any other column is at least
/// as wide as its source wants and its heading needs, and grows to its content, but by itself not beyond three times
/// its own width or `bound`. A blank column is as wide as its heading and gives the rest of its width away. If the grid
/// would have to be scrolled only because of growing columns, they grow as far as the room allows. Room that is left
/// goes to columns whose content is still cut, then to the column that takes the rest.
[[nodiscard]] std::vector<int> fitColumns(std::span<const ColumnNeed> columns, int room, int bound);

/// The cells of a column that decide its content's width.
struct ColumnSample {
    std::vector<GridCell> longest; ///< the few with the most characters
    bool isBlank = false;
};

/// Looks at the first rows of a list, and at more of a column that names the rows or has been blank so far; never at
/// all rows of a long list.
[[nodiscard]] ColumnSample sampleColumn(const CUGDataSource& source, int column, bool isName);

} // namespace tavix
