#pragma once

#include "source/DeclaredColumn.h"

#include <optional>
#include <string>
#include <string_view>

namespace tavix::source {

/// What reading a table must know about its engine. The defaults are those of an unknown engine: only SQL that every
/// engine understands.
struct SqlDialect {
    /// How several statements read one state of the data.
    enum class Snapshot { None, Transaction, RepeatableRead };
    /// What turns values into text.
    enum class TextForm {
        Driver,   ///< the driver's conversion
        Cast,     ///< a cast to text in the query
        PerValue, ///< an expression in the query that asks the type of each value, see SqliteText.h
    };

    std::string_view product; ///< prefix of the engine's own name
    Snapshot snapshot = Snapshot::None;
    TextForm textForm = TextForm::Driver;
    /// Named subqueries with a list of columns, and LIMIT.
    bool isModern = false;
    bool isUtf8 = false;      ///< the driver returns narrow text in UTF-8, whatever the locale
    bool isTextExact = false; ///< texts are equal only if their bytes are
    /// A value can be longer than its column declares.
    bool ignoresDeclaredLength = false;
    /// The catalogue's type names carry the declared length and decimal places, "NUMERIC(10,2)"; its numbers are
    /// guesses of the driver.
    bool hasLengthInTypeName = false;
    /// Statements run once after connecting; a server that does not support them reports an error, which is ignored.
    std::string_view settings{};
    /// Appended to a text of textOf() to compare by bytes; begins with a blank.
    std::string_view exactCollation{};
    /// How to write its operators that contain a question mark; begins with a blank.
    std::string_view questionMarkHint{};

    /// Values come as text that the engine wrote.
    [[nodiscard]] bool writesText() const { return textForm != TextForm::Driver; }
    /// The SQL of a value's text. `name` is quoted.
    [[nodiscard]] std::string textOf(const std::string& name, const DeclaredColumn& column) const;
    /// Whether a comparison of textOf() with a parameter finds every row with this text.
    [[nodiscard]] bool canCompare(std::string_view text) const;
    /// Why the engine's own GROUP BY may join values that read differently; nothing if it cannot.
    [[nodiscard]] std::optional<std::string> whyInexact(const DeclaredColumn& column) const;
    /// A condition that every row with the text meets and that an index may serve, with `?` for the text; empty for
    /// none.
    [[nodiscard]] std::string indexCondition(const std::string& name, const DeclaredColumn& column,
                                             std::string_view text) const;
};

/// `product`: the engine's name as its driver reports it (SQL_DBMS_NAME).
[[nodiscard]] const SqlDialect& dialectOf(std::string_view product);

} // namespace tavix::source
