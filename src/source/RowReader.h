#pragma once

#include "base/Result.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace tavix::source {

/// One cell of a block. The bytes are UTF-8 and valid until the block is filled again or destroyed.
struct Cell {
    const char* data = nullptr;
    std::uint32_t size = 0;
    bool isNull = true;
};

enum class Damage {
    TooFewCells,  ///< the missing cells are null
    TooManyCells, ///< the extra cells are cut
    BadBytes,     ///< each became U+FFFD
    OpenQuote,    ///< the quote took the rest of the file
};

struct DamagedRow {
    std::int64_t line = 0; ///< in the file, from 1, where the row starts
    Damage damage = Damage::TooFewCells;
    std::size_t cells = 0; ///< found in the row
    std::size_t file = 0;  ///< of a table of several files, from 0
};

/// How many damaged rows a reader lists.
inline constexpr std::size_t kListedDamage = 1000;

/// Where a row begins in its file, in bytes.
struct RowOffset {
    std::size_t row = 0; ///< of the block
    std::int64_t offset = 0;

    bool operator==(const RowOffset&) const = default;
};

/// The next rows of a table, column by column: columns[c][r] is row r of column c; only the first `rows` count.
struct RowBlock {
    std::vector<std::vector<Cell>> columns;
    std::size_t rows = 0;
    std::vector<std::int64_t> records; ///< the rows' numbers in the source, from 1; empty if no row was left out
    std::shared_ptr<const void> text;  ///< owns the bytes of the cells
    /// Where some of the rows begin in the file, from readers that can tell: ascending, the first of row 0, the last of
    /// the row after the block.
    std::vector<RowOffset> offsets;
};

/// A table read once from its first row to its last, in blocks.
class RowReader {
  public:
    virtual ~RowReader() = default;

    [[nodiscard]] virtual std::span<const std::string> columnNames() const = 0;
    /// Fills `block`, reusing its memory; false at the end of the table, and then the block is empty.
    [[nodiscard]] virtual Result<bool> read(RowBlock& block) = 0;
    /// Progress in the source, in bytes or rows; total 0: unknown.
    [[nodiscard]] virtual std::int64_t position() const = 0;
    [[nodiscard]] virtual std::int64_t total() const = 0;
    /// The damaged rows so far; the list is limited to kListedDamage, the count is not. A row with two kinds of damage
    /// is listed twice and counted once.
    [[nodiscard]] virtual std::span<const DamagedRow> damagedRows() const = 0;
    [[nodiscard]] virtual std::int64_t damagedRowCount() const = 0;
};

} // namespace tavix::source
