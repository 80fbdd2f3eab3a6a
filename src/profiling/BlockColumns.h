#pragma once

#include "blocks/Block.h"
#include "source/RowReader.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace tavix::profiling {

/// Rows of a source as a block that expressions read. Copies only the columns that an expression uses.
class BlockColumns {
  public:
    /// Rows to hand over at once: enough to spread the cost of a call, few enough to fit the processor's cache.
    static constexpr std::size_t kRows = 4096;

    /// `used`: for each column of the source, whether an expression uses it.
    explicit BlockColumns(std::vector<bool> used);

    /// Takes rows of the block from the first of `rows` on: all of them unless their texts are too long for one block
    /// of expressions, and at least one.
    struct Taken {
        const expression::Block* block = nullptr; ///< valid until the next call
        std::size_t rows = 0;
    };
    [[nodiscard]] Taken take(const source::RowBlock& block, std::span<const std::uint32_t> rows);

  private:
    struct Column {
        std::size_t source = 0;
        std::string bytes;
        std::vector<std::uint32_t> ends;
        std::vector<std::uint8_t> nulls;
    };

    std::vector<Column> m_columns;
    std::vector<expression::BlockColumn> m_views; ///< for each column of the source
    expression::Block m_block;
};

} // namespace tavix::profiling
