#include "profiling/EngineCount.h"

#include "source/OdbcReader.h"

#include <charconv>
#include <optional>
#include <string_view>

namespace tavix::profiling {

namespace {

using source::Cell;
using source::DeclaredColumn;

std::optional<std::uint64_t> countIn(const Cell& cell) {
    std::uint64_t value = 0;
    if (cell.isNull)
        return std::nullopt;
    const auto [end, failure] = std::from_chars(cell.data, cell.data + cell.size, value);
    if (failure != std::errc() || end != cell.data + cell.size)
        return std::nullopt;
    return value;
}

/// The number of rows of the column; nothing when the engine's answer is not an exact count.
Result<std::optional<std::uint64_t>> countColumn(const OpenedDatabaseTable& opened, std::size_t column, TablePass& pass,
                                                 RunEngine& engine, const source::KeepGoing& keepGoing,
                                                 const std::function<void(std::int64_t)>& counted) {
    DeclaredColumn number;
    number.kind = DeclaredColumn::Kind::Integer;
    const std::vector<DeclaredColumn> columns = {opened.table.columns()[column], number};
    const std::vector<std::string> names = {opened.table.columnNames()[column], "count"};
    auto reader = source::OdbcReader::open(*opened.connection, opened.table.counts(column), columns, names, keepGoing);
    if (!reader)
        return reader.error();
    std::uint64_t rows = 0;
    source::RowBlock block;
    ValueCounter& counter = pass.values(column).counter();
    for (;;) {
        const auto more = (*reader)->read(block);
        if (!more)
            return more.error();
        if (!*more)
            break;
        for (std::size_t row = 0; row < block.rows; ++row) {
            const auto count = countIn(block.columns[1][row]);
            if (!count)
                return std::optional<std::uint64_t>();
            const Cell& value = block.columns[0][row];
            if (value.isNull)
                counter.addNulls(*count);
            else
                counter.add({value.data, value.size}, *count);
            rows += *count;
        }
        counted(static_cast<std::int64_t>(rows));
        if (Status status = engine.spillWhatIsTooMuch(pass); !status)
            return status.error();
    }
    if ((*reader)->damagedRowCount() > 0)
        return std::optional<std::uint64_t>();
    return std::optional<std::uint64_t>(rows);
}

} // namespace

Result<bool> countInEngine(const OpenedDatabaseTable& opened, TablePass& pass, RunEngine& engine,
                           const source::KeepGoing& keepGoing, const std::function<void(std::int64_t)>& counted) {
    std::optional<std::uint64_t> rows;
    for (std::size_t c = 0; c < pass.columns().size(); ++c) {
        const auto found = countColumn(opened, c, pass, engine, keepGoing, counted);
        if (!found)
            return found.error();
        if (!*found || (rows && **found != *rows)) {
            engine.forget(pass);
            return false;
        }
        rows = *found;
    }
    pass.setRows(static_cast<std::int64_t>(rows.value_or(0)));
    return true;
}

} // namespace tavix::profiling
