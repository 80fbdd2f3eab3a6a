#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace tavix::source {

/// A column as declared in the catalogue of its engine or in the description of a query.
struct DeclaredColumn {
    /// As far as it matters for reading; `typeName` is the engine's own name.
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
    std::optional<std::int64_t> length;        ///< characters or digits; none if the column declares none
    std::optional<std::int64_t> decimalPlaces; ///< of decimals
    std::optional<bool> isNullable;
    bool isKey = false;            ///< part of the primary key
    bool isDeclaredByTable = true; ///< false for a column of a query, which has no key

    /// The longest text form in bytes of UTF-8; none if unknown.
    [[nodiscard]] std::optional<std::size_t> longestText() const;
};

} // namespace tavix::source
