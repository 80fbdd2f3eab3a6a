#include "source/SqlDialect.h"

#include "base/Ascii.h"
#include "source/SqliteText.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace tavix::source {

namespace {

using Kind = DeclaredColumn::Kind;
using Snapshot = SqlDialect::Snapshot;
using TextForm = SqlDialect::TextForm;

constexpr SqlDialect kUnknown{};

constexpr std::array kDialects = {
    SqlDialect{
        .product = "PostgreSQL",
        .snapshot = Snapshot::RepeatableRead,
        .textForm = TextForm::Cast,
        .isModern = true,
        .isUtf8 = true,
        .isTextExact = true,
        // Every row of a cursor is read, so the plan must suit all of them.
        .settings = "SET default_transaction_read_only = on; SET cursor_tuple_fraction = 1",
        .exactCollation = " COLLATE \"C\"",
        .questionMarkHint = " Write a ? b as jsonb_exists(a, b), a ?| b as jsonb_exists_any(a, b), a ?& b as "
                            "jsonb_exists_all(a, b) and a @? b as jsonb_path_exists(a, b).",
    },
    SqlDialect{
        .product = "SQLite",
        .snapshot = Snapshot::Transaction,
        .textForm = TextForm::PerValue,
        .isModern = true,
        .isUtf8 = true,
        .isTextExact = true,
        .ignoresDeclaredLength = true,
        .hasLengthInTypeName = true,
        .exactCollation = " COLLATE BINARY",
    },
    // By their makers' documentation of how texts compare.
    SqlDialect{.product = "ClickHouse", .isTextExact = true},
    SqlDialect{.product = "Trino", .isTextExact = true},
    SqlDialect{.product = "Presto", .isTextExact = true},
    SqlDialect{.product = "Spark", .isTextExact = true},
};

/// Type names of PostgreSQL.
constexpr std::array<std::string_view, 3> kComparableTexts = {"text", "varchar", "name"};
constexpr std::array<std::string_view, 6> kIntegers = {"int2", "int4", "int8", "smallserial", "serial", "bigserial"};

bool isInteger(std::string_view text) {
    if (text.starts_with('-'))
        text.remove_prefix(1);
    return !text.empty() && text.size() <= 18 && (text.front() != '0' || text.size() == 1) &&
           std::all_of(text.begin(), text.end(), isAsciiDigit);
}

} // namespace

std::optional<std::size_t> DeclaredColumn::longestText() const {
    constexpr std::int64_t kLongestText = 4000;
    switch (kind) {
    case Kind::Integer:
    case Kind::Boolean:
        return 24;
    case Kind::Real:
    case Kind::Uuid:
        return 40;
    case Kind::Date:
    case Kind::Time:
    case Kind::Timestamp:
        return 64;
    case Kind::Text:
    case Kind::FixedText:
        if (length && *length > 0 && *length <= kLongestText)
            return static_cast<std::size_t>(*length) * 4;
        return std::nullopt;
    case Kind::Decimal:
        if (length && *length > 0 && *length <= kLongestText)
            return static_cast<std::size_t>(*length) + 8;
        return std::nullopt;
    default:
        return std::nullopt;
    }
}

std::string SqlDialect::textOf(const std::string& name, const DeclaredColumn& column) const {
    switch (textForm) {
    case TextForm::Driver:
        return name;
    case TextForm::PerValue:
        return sqliteTextOf(name);
    case TextForm::Cast:
        break;
    }
    // A cast to text would strip the trailing blanks of a fixed-length text.
    if (column.kind == Kind::FixedText)
        return fmt::format("CASE WHEN {0} IS NULL THEN NULL ELSE concat({0}) END", name);
    return fmt::format("CAST({} AS text)", name);
}

bool SqlDialect::canCompare(std::string_view text) const {
    return textForm != TextForm::PerValue || isSentUnchanged(text);
}

std::optional<std::string> SqlDialect::whyInexact(const DeclaredColumn& column) const {
    if (writesText())
        return std::nullopt;
    switch (column.kind) {
    case Kind::Integer:
    case Kind::Decimal:
    case Kind::Date:
    case Kind::Boolean:
    case Kind::Uuid:
        return std::nullopt;
    case Kind::Text:
    case Kind::LongText:
        if (isTextExact)
            return std::nullopt;
        [[fallthrough]];
    case Kind::FixedText:
        return fmt::format("the engine may take texts of \"{}\" for equal that differ in case or in blanks",
                           column.name);
    default:
        return fmt::format("values of \"{}\" ({}) may be equal and read differently", column.name, column.typeName);
    }
}

std::string SqlDialect::indexCondition(const std::string& name, const DeclaredColumn& column,
                                       std::string_view text) const {
    switch (textForm) {
    case TextForm::Driver:
        return {};
    case TextForm::PerValue:
        return sqliteIndexCondition(name, text);
    case TextForm::Cast:
        break;
    }
    // The driver reports as text or integer many types that cannot be compared with every text.
    const auto isOneOf = [&](const auto& names) {
        return std::find(names.begin(), names.end(), column.typeName) != names.end();
    };
    if (isOneOf(kComparableTexts))
        return fmt::format("{} = ?", name);
    if (isOneOf(kIntegers) && isInteger(text))
        return fmt::format("{} = CAST(? AS bigint)", name);
    return {};
}

const SqlDialect& dialectOf(std::string_view product) {
    const auto found = std::find_if(kDialects.begin(), kDialects.end(),
                                    [&](const SqlDialect& dialect) { return product.starts_with(dialect.product); });
    return found == kDialects.end() ? kUnknown : *found;
}

} // namespace tavix::source
