#include "grid/GridCopy.h"

namespace tavix {

namespace {

/// Puts a cell with a tab or a line end in double quotes and doubles its own quotes, as spreadsheets do; likewise a
/// cell that begins with a quote, which they would read as quoted.
void appendCell(std::string& text, const std::string& cell) {
    if (cell.find_first_of("\t\r\n") == std::string::npos && !cell.starts_with('"')) {
        text += cell;
        return;
    }
    text += '"';
    for (const char c : cell) {
        text += c;
        if (c == '"')
            text += c;
    }
    text += '"';
}

} // namespace

std::string withMark(const std::string& text, const std::string& mark) {
    return mark.empty() ? text : text + " " + mark;
}

std::string copyRows(const CUGDataSource& source, std::span<const std::int64_t> rows, std::span<const int> columns,
                     bool withHeadings) {
    std::string text;
    const auto line = [&](auto&& cellText) {
        for (std::size_t at = 0; at < columns.size(); ++at) {
            if (at > 0)
                text += '\t';
            appendCell(text, cellText(columns[at]));
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
