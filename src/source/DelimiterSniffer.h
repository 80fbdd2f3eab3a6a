#pragma once

namespace tavix::source {

/// The delimiter among , ; tab | that splits the first rows of the text best: the one with the largest share of rows
/// that have as many cells as the first row, then the one with more cells. 0 when none splits the first row, or when
/// fewer than half of the rows hold it: every line is one cell. The text must be followed by RowScanner::kPadding
/// readable bytes; `isLast`: the file ends where the text does; `quote` 0: none.
[[nodiscard]] char sniffDelimiter(const char* begin, const char* end, bool isLast, char quote);

} // namespace tavix::source
