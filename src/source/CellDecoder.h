#pragma once

#include "source/RowReader.h"
#include "source/RowScanner.h"
#include "source/TextArena.h"

namespace tavix::source {

/// What a cell of a file reads as: doubled quotes undone, text behind a closing quote joined, and, unless the text is
/// known to be `isValid`, each byte that is no UTF-8 replaced by U+FFFD, which sets `hadBadBytes`. The bytes are those
/// of the file where they stand there as they are, else the arena's.
[[nodiscard]] Cell decodeCell(const RawCell& raw, bool isValid, char quote, TextArena& arena, bool& hadBadBytes);

} // namespace tavix::source
