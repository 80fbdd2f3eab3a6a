#pragma once

#include "access/ProfileCursor.h"

#include <string>
#include <vector>

namespace tavix::testing {

/// The remaining rows of a cursor as a user would read them: a text per row, cells separated by '|', null as "<null>".
inline std::vector<std::string> rowsOf(ProfileCursor& cursor) {
    std::vector<std::string> rows;
    while (cursor.next()) {
        std::string& row = rows.emplace_back();
        for (int column = 0; column < cursor.getColumnCount(); ++column) {
            if (column > 0)
                row += '|';
            row += cursor.isColumnNull(column) ? "<null>" : cursor.getColumnValue(column).str();
        }
    }
    return rows;
}

} // namespace tavix::testing
