#pragma once

#include <optional>
#include <string_view>

namespace tavix {

/// The kind of a profiled table. Repository and alerts store its letter.
enum class TableKind : char {
    Plain = 'Y',
    Query = 'S',  ///< the rows of an SQL query
    Filter = 'D', ///< the rows of another table that meet a condition
};

/// The kind with this letter; nothing for any other text.
[[nodiscard]] constexpr std::optional<TableKind> tableKindOf(std::string_view letter) {
    for (const TableKind kind : {TableKind::Plain, TableKind::Query, TableKind::Filter})
        if (letter.size() == 1 && letter.front() == static_cast<char>(kind))
            return kind;
    return std::nullopt;
}

} // namespace tavix
