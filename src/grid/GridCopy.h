#pragma once

#include "grid/CUGDataSource.h"

#include <cstdint>
#include <span>
#include <string>

namespace tavix {

/// The text followed by the mark, if any.
[[nodiscard]] std::string withMark(const std::string& text, const std::string& mark);

/// The clipboard text for these rows and columns of a grid: cells separated by tabs, each row ended by "\r\n", after a
/// line of headings if requested. A cell that contains a tab or a line end is quoted as spreadsheets do, so it pastes
/// as one cell.
[[nodiscard]] std::string copyRows(const CUGDataSource& source, std::span<const std::int64_t> rows,
                                   std::span<const int> columns, bool withHeadings);

} // namespace tavix
