#pragma once

#include "source/DeclaredColumn.h"

#include <optional>
#include <string>
#include <string_view>

namespace tavix::source {

/// How an engine differs from the others where a table is read. One that is not known by name gets nothing but the
/// SQL that all have.
struct SqlDialect {
    /// How it keeps several statements at one state of the data.
    enum class Snapshot { None, Transaction, RepeatableRead };

    std::string_view product; ///< what the name that the engine gives itself begins with
    Snapshot snapshot = Snapshot::None;
    /// Values go through a text form that the engine writes, see textOf(); otherwise through the driver's.
    bool writesText = false;
    /// Named subqueries with a list of columns, and LIMIT.
    bool isModern = false;
    bool isUtf8 = false;      ///< the driver gives narrow text in UTF-8, whatever the locale
    bool isTextExact = false; ///< texts are equal only when their bytes are
    /// Said once after connecting; what the server does not know of it does no harm.
    std::string_view settings{};
    /// The collation by which texts are equal only when their bytes are, behind a text of textOf(); with a blank.
    std::string_view exactCollation{};
    /// How its operators with a question mark are written otherwise; with a blank before it.
    std::string_view questionMarkHint{};

    /// A value as the engine writes it. `name` is quoted.
    [[nodiscard]] std::string textOf(const std::string& name, const DeclaredColumn& column) const;
    /// Why the engine's own GROUP BY may join values that read differently; nothing when it cannot.
    [[nodiscard]] std::optional<std::string> whyInexact(const DeclaredColumn& column) const;
    /// A condition that every row with the text meets and that an index may serve, with `?` for the text; empty for
    /// none.
    [[nodiscard]] std::string indexCondition(const std::string& name, const DeclaredColumn& column,
                                             std::string_view text) const;
};

/// `product`: what the driver says of the engine (SQL_DBMS_NAME).
[[nodiscard]] const SqlDialect& dialectOf(std::string_view product);

} // namespace tavix::source
