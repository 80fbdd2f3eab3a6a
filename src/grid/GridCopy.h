#pragma once

#include "grid/CUGDataSource.h"

#include <cstdint>
#include <span>
#include <string>

namespace tavix {

/// A text and the remark that stands beside it, where both are one text.
[[nodiscard]] std::string withMark(const std::string& text, const std::string& mark);

/// What copying rows of a grid puts on the clipboard: cells separated by a tab character, each row ended by "\r\n",
/// in the order given. The line of headings, if wanted, comes first. A cell with a tab or a line end in it is quoted as
/// spreadsheets do it, so that it is pasted as one cell.
[[nodiscard]] std::string copyRows(const CUGDataSource& source, std::span<const std::int64_t> rows, bool withHeadings);

} // namespace tavix
