#pragma once

#include "base/Result.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace tavix::source {

/// One cell of a block. The bytes are UTF-8 and live as long as the block that holds the cell is neither filled again
/// nor destroyed.
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
    std::int64_t line = 0; ///< in the file, from 1, where the row begins
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
    std::vector<std::int64_t> records; ///< the rows' numbers in the source, from 1; empty when none was left out
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
    /// Of the source, for progress: how much was read and how much there is, in bytes or rows; total 0 when unknown.
    [[nodiscard]] virtual std::int64_t position() const = 0;
    [[nodiscard]] virtual std::int64_t total() const = 0;
    /// The damaged rows met so far; the list is cut after kListedDamage, the count is not. A row that is damaged in
    /// two ways stands in the list twice and counts once.
    [[nodiscard]] virtual std::span<const DamagedRow> damagedRows() const = 0;
    [[nodiscard]] virtual std::int64_t damagedRowCount() const = 0;
};

} // namespace tavix::source
