#pragma once

#include "source/RowReader.h"
#include "source/RowScanner.h"
#include "source/TextArena.h"

namespace tavix::source {

/// Decodes a cell of a file: undoes doubled quotes, appends text after a closing quote, and, unless the text is known
/// to be `isValid`, replaces each byte that is not UTF-8 by U+FFFD and sets `hadBadBytes`. The result refers to the
/// bytes of the file if they are unchanged, else to the arena's.
[[nodiscard]] Cell decodeCell(const RawCell& raw, bool isValid, char quote, TextArena& arena, bool& hadBadBytes);

} // namespace tavix::source
