#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace tavix::source {

/// A column as the catalogue of its engine, or the description of a query, has it.
struct DeclaredColumn {
    /// What matters for reading; the engine's own name for it is `typeName`.
    enum class Kind {
        Text,
        FixedText,
        LongText,
        Integer,
        Decimal,
        Real,
        Date,
        Time,
        Timestamp,
        Boolean,
        Uuid,
        Binary,
        Other
    };

    std::string name;
    std::string typeName; ///< "varchar"
    Kind kind = Kind::Other;
    std::optional<std::int64_t> length;        ///< characters or digits; none when the column states none
    std::optional<std::int64_t> decimalPlaces; ///< of decimals
    std::optional<bool> isNullable;
    bool isKey = false;            ///< part of the primary key
    bool isDeclaredByTable = true; ///< of a table; else of a query, which has no key

    /// The longest text form in bytes of UTF-8; none when there is no telling.
    [[nodiscard]] std::optional<std::size_t> longestText() const;
};

} // namespace tavix::source
