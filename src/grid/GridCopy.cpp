#include "grid/GridCopy.h"

namespace tavix {

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
        line([&](int column) { return source.GetColumn(column).heading; });
    for (const std::int64_t row : rows)
        line([&](int column) { return source.GetCell(column, row).text; });
    return text;
}

} // namespace tavix
