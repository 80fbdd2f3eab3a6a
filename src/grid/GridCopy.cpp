#include "grid/GridCopy.h"

namespace tavix {

std::string withMark(const std::string& text, const std::string& mark) {
    return mark.empty() ? text : text + " " + mark;
}

std::string copyRows(const CUGDataSource& source, std::span<const std::int64_t> rows, bool withHeadings) {
    const int columns = source.GetColumnCount();
    std::string text;
    const auto line = [&](auto&& cellText) {
        for (int column = 0; column < columns; ++column) {
            if (column > 0)
                text += '\t';
            text += cellText(column);
        }
        text += "\r\n";
    };
    if (withHeadings)
        line([&](int column) {
            const GridColumn shown = source.GetColumn(column);
            return withMark(shown.heading, shown.mark);
        });
    for (const std::int64_t row : rows)
        line([&](int column) {
            const GridCell cell = source.GetCell(column, row);
            return withMark(cell.text, cell.mark);
        });
    return text;
}

} // namespace tavix
