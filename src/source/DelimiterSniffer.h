#pragma once

namespace tavix::source {

/// The delimiter among , ; tab | that splits the first rows of the text best: the one with the largest share of rows
/// that have as many cells as the first row, then the one with more cells. 0, for one cell a line, if none splits the
/// first row, or if fewer than half of the rows contain it. The text must be followed by RowScanner::kPadding readable
/// bytes; `isLast`: the file ends with the text; `quote` 0: none.
[[nodiscard]] char sniffDelimiter(const char* begin, const char* end, bool isLast, char quote);

} // namespace tavix::source
