#include "source/OdbcCatalogue.h"

#include "base/Ascii.h"
#include "source/OdbcStatement.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <map>
#include <tuple>

namespace tavix::source {

namespace {

using Kind = DeclaredColumn::Kind;
using Row = OdbcStatement::Row;

constexpr std::size_t kMostEntries = 200'000;
constexpr std::size_t kSuggestions = 5;

// The columns of the results of catalogue functions, from 0.
enum TablePlace : std::size_t { Catalog = 0, Schema = 1, Table = 2 };
enum ColumnPlace : std::size_t { Name = 3, Type = 4, TypeName = 5, Size = 6, Places = 8, Nullable = 10 };
enum KeyPlace : std::size_t { KeyColumn = 3 };

std::string text(const Row& row, std::size_t place) {
    return place < row.size() ? row[place].value_or(std::string()) : std::string();
}

std::optional<std::int64_t> integer(std::string_view digits) {
    std::int64_t value = 0;
    const auto [end, failure] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (failure != std::errc() || end != digits.data() + digits.size())
        return std::nullopt;
    return value;
}

bool isOfSystem(const std::string& schema) {
    return schema == "pg_catalog" || schema == "information_schema" || schema == "INFORMATION_SCHEMA" ||
           schema == "sys" || schema == "SYS";
}

TableRequest addressIn(const Row& row) {
    return {text(row, Catalog), text(row, Schema), text(row, Table), {}};
}

/// The length of the common prefix of two names, ignoring case, and whether one contains the other.
std::size_t likeness(const std::string& left, const std::string& right) {
    const std::string a = asciiLower(left);
    const std::string b = asciiLower(right);
    if (a == b)
        return 1000;
    std::size_t common = 0;
    while (common < a.size() && common < b.size() && a[common] == b[common])
        ++common;
    return common + (a.find(b) != std::string::npos || b.find(a) != std::string::npos ? 100 : 0);
}

/// ", but ..., ..." with the tables that have similar names; empty if there are none.
std::string suggestions(const OdbcConnection& connection, const std::string& name) {
    const auto tables = listTables(connection);
    if (!tables || tables->empty())
        return {};
    std::vector<std::pair<std::size_t, std::string>> known;
    for (const TableRequest& table : *tables)
        if (const std::size_t rank = likeness(table.table, name); rank >= 2)
            known.emplace_back(rank,
                               fmt::format("\"{}{}{}\"", table.schema, table.schema.empty() ? "" : ".", table.table));
    std::stable_sort(known.begin(), known.end(), [](const auto& a, const auto& b) { return a.first > b.first; });
    known.resize(std::min(known.size(), kSuggestions));
    std::string list;
    for (const auto& [rank, text] : known)
        list += (list.empty() ? "; it has " : ", ") + text;
    return list;
}

/// Takes the length from "VARCHAR(20)", the digits from "NUMERIC(10,2)"; what drivers report instead differs.
void readDeclaration(DeclaredColumn& column) {
    column.length.reset();
    column.decimalPlaces.reset();
    const auto open = column.typeName.find('(');
    const auto close = column.typeName.find(')', open == std::string::npos ? 0 : open);
    if (open == std::string::npos || close == std::string::npos)
        return;
    const std::string inside = column.typeName.substr(open + 1, close - open - 1);
    const auto comma = inside.find(',');
    column.length = integer(inside.substr(0, comma));
    if (comma != std::string::npos) {
        const auto places = inside.find_first_not_of(' ', comma + 1);
        if (places != std::string::npos)
            column.decimalPlaces = integer(inside.substr(places));
    }
    column.typeName.erase(open);
    while (column.typeName.ends_with(' '))
        column.typeName.pop_back();
}

/// `modifierPlace`: the index of a non-standard column that holds the modifier of the declared type.
DeclaredColumn columnIn(const Row& row, const SqlDialect& dialect, std::optional<std::size_t> modifierPlace) {
    DeclaredColumn column;
    column.name = text(row, Name);
    column.typeName = text(row, TypeName);
    column.kind = kindOfType(static_cast<int>(integer(text(row, Type)).value_or(0)));
    column.length = integer(text(row, Size));
    if (column.kind == Kind::Decimal)
        column.decimalPlaces = integer(text(row, Places));
    if (const auto nullable = integer(text(row, Nullable)); nullable && *nullable < 2)
        column.isNullable = *nullable == 1;
    if (dialect.hasLengthInTypeName)
        readDeclaration(column);
    const bool hasOwnSize = column.kind == Kind::Text || column.kind == Kind::FixedText || column.kind == Kind::Decimal;
    if (modifierPlace && hasOwnSize && text(row, *modifierPlace) == "-1") {
        column.length.reset(); // then the driver reports a guess
        column.decimalPlaces.reset();
    }
    if (column.kind == Kind::LongText || column.kind == Kind::Binary || (column.length && *column.length <= 0))
        column.length.reset();
    return column;
}

} // namespace

Result<std::vector<TableRequest>> listTables(const OdbcConnection& connection) {
    auto statement = OdbcStatement::create(connection);
    if (!statement)
        return statement.error();
    if (Status status = statement->listTables(); !status)
        return status.error();
    const auto rows = statement->rows(kMostEntries);
    if (!rows)
        return rows.error();
    std::vector<TableRequest> tables;
    for (const Row& row : *rows)
        if (TableRequest table = addressIn(row); !isOfSystem(table.schema))
            tables.push_back(std::move(table));
    return tables;
}

Result<CatalogueEntry> findTable(const OdbcConnection& connection, const TableRequest& request) {
    auto statement = OdbcStatement::create(connection);
    if (!statement)
        return statement.error();
    if (Status status = statement->listColumns(request.catalog, request.schema, request.table); !status)
        return status.error();
    std::optional<std::size_t> modifierPlace;
    for (std::size_t c = 0; c < statement->columnCount(); ++c)
        if (statement->heading(c) == "TYPMOD")
            modifierPlace = c;
    const auto rows = statement->rows(kMostEntries);
    if (!rows)
        return rows.error();
    using Address = std::tuple<std::string, std::string>;
    std::map<Address, CatalogueEntry> found;
    for (const Row& row : *rows) {
        const TableRequest address = addressIn(row);
        if (address.table != request.table || (!request.schema.empty() && address.schema != request.schema) ||
            (!request.catalog.empty() && address.catalog != request.catalog))
            continue;
        CatalogueEntry& entry = found[{address.catalog, address.schema}];
        entry.address = address;
        entry.columns.push_back(columnIn(row, connection.dialect(), modifierPlace));
    }
    if (found.size() > 1)
        std::erase_if(found, [](const auto& entry) { return isOfSystem(std::get<1>(entry.first)); });
    if (found.empty())
        return Error{fmt::format("Source \"{}\": there is no table \"{}\"{}{}.", connection.name(), request.table,
                                 request.schema.empty() ? "" : fmt::format(" in the schema \"{}\"", request.schema),
                                 suggestions(connection, request.table))};
    if (found.size() > 1) {
        std::string places;
        for (const auto& [address, entry] : found)
            places += fmt::format("{}\"{}\"", places.empty() ? "" : ", ",
                                  std::get<1>(address).empty() ? std::get<0>(address) : std::get<1>(address));
        return Error{fmt::format("Source \"{}\": the table \"{}\" is in {}. Say which one is meant.", connection.name(),
                                 request.table, places)};
    }
    CatalogueEntry entry = std::move(found.begin()->second);
    // An engine without keys, or without a way to query them, has none to show.
    auto keys = OdbcStatement::create(connection);
    if (!keys || !keys->listKeys(entry.address.catalog, entry.address.schema, entry.address.table))
        return entry;
    if (const auto keyRows = keys->rows(kMostEntries))
        for (const Row& row : *keyRows)
            for (DeclaredColumn& column : entry.columns)
                column.isKey = column.isKey || column.name == text(row, KeyColumn);
    return entry;
}

} // namespace tavix::source
