#pragma once

#include "grid/CUGDataSource.h"

#include <fmt/format.h>

#include <string>
#include <vector>

namespace tavix {

/// Whether the user sees the column without asking for it.
inline bool isShownAtFirst(const CUGDataSource& rows, int column) {
    const GridColumn shown = rows.GetColumn(column);
    return !shown.isOptional || shown.isShownAtFirst;
}

/// A row as it is shown at first: "text|text", with "?" after an unknown value, "~" after a null value, "<n>" for an
/// icon, "[share]" for a bar and "[share, share]" for those of two runs; right-aligned texts begin with ">".
inline std::string lineOf(const CUGDataSource& rows, std::int64_t row) {
    std::string line;
    for (int column = 0; column < rows.GetColumnCount(); ++column) {
        if (!isShownAtFirst(rows, column))
            continue;
        const GridCell cell = rows.GetCell(column, row);
        line += column > 0 ? "|" : "";
        line += cell.alignment == CellAlignment::Right ? ">" : "";
        line += shownText(cell);
        line += cell.mark.empty() ? "" : " " + cell.mark;
        line += cell.state == CellState::Unknown ? "?" : cell.state == CellState::Null ? "~" : "";
        if (cell.icon != CellIcon::None)
            line += fmt::format("<{}>", static_cast<int>(cell.icon));
        if (cell.barBefore >= 0)
            line += fmt::format("[{:.2f}, {:.2f}]", cell.barBefore, cell.bar);
        else if (cell.bar >= 0)
            line += fmt::format("[{:.2f}]", cell.bar);
    }
    return line;
}

inline std::vector<std::string> linesOf(const CUGDataSource& rows) {
    std::vector<std::string> lines;
    for (std::int64_t row = 0; row < rows.GetRowCount(); ++row)
        lines.push_back(lineOf(rows, row));
    return lines;
}

/// "heading:width" of every column that is shown at first, with ">" before headings to the right and "{}" around a
/// mark.
inline std::string headingsOf(const CUGDataSource& rows) {
    std::string text;
    for (int column = 0; column < rows.GetColumnCount(); ++column) {
        if (!isShownAtFirst(rows, column))
            continue;
        const GridColumn heading = rows.GetColumn(column);
        text += fmt::format("{}{}{}{}:{}", column > 0 ? "|" : "", heading.alignment == CellAlignment::Right ? ">" : "",
                            heading.heading, heading.mark.empty() ? "" : "{" + heading.mark + "}", heading.width);
    }
    return text;
}

} // namespace tavix
