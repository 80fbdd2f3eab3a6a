#pragma once

#include "access/ProfileCursor.h"

#include <cstdint>
#include <string>

namespace tavix {

/// The text of a cell; empty for null.
[[nodiscard]] inline std::string textAt(const ProfileCursor& cursor, int column) {
    return cursor.getColumnValue(column).str();
}

/// The whole number of a cell that may be null.
[[nodiscard]] inline std::int64_t int64Or(const ProfileCursor& cursor, int column, std::int64_t ofNull) {
    return cursor.isColumnNull(column) ? ofNull : cursor.getColumnInt64(column);
}

} // namespace tavix
