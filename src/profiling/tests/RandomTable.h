#pragma once

#include "source/RowReader.h"

#include <cstddef>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace tavix::profiling::testing {

/// By column; null for an empty cell.
using TableRows = std::vector<std::vector<std::optional<std::string>>>;

/// A table whose columns have types, ties, lengths and ends of texts that are hard in one way each.
[[nodiscard]] TableRows randomTable(std::mt19937& random, std::size_t rows);

/// Hands out a table in blocks of any size. A block's texts are gone once the next block was asked for twice.
class TableReader final : public source::RowReader {
  public:
    TableReader(const TableRows& table, std::vector<std::string> names, std::size_t rowsPerBlock)
        : m_table(table), m_names(std::move(names)), m_rowsPerBlock(rowsPerBlock) {}

    [[nodiscard]] std::span<const std::string> columnNames() const override { return m_names; }
    [[nodiscard]] Result<bool> read(source::RowBlock& block) override;
    [[nodiscard]] std::int64_t position() const override { return static_cast<std::int64_t>(m_next); }
    [[nodiscard]] std::int64_t total() const override { return static_cast<std::int64_t>(m_table.front().size()); }
    [[nodiscard]] std::span<const source::DamagedRow> damagedRows() const override { return {}; }
    [[nodiscard]] std::int64_t damagedRowCount() const override { return 0; }

  private:
    const TableRows& m_table;
    std::vector<std::string> m_names;
    std::size_t m_rowsPerBlock;
    std::size_t m_next = 0;
};

} // namespace tavix::profiling::testing
