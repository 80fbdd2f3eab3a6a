#pragma once

#include "blocks/Block.h"
#include "source/RowReader.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace tavix::profiling {

/// Rows of a source in the form in which expressions read them. Only columns that an expression uses are copied.
class BlockColumns {
  public:
    /// How many rows a caller should hand over at once: enough to spread the cost of a call, few enough to stay in the
    /// processor's cache.
    static constexpr std::size_t kRows = 4096;

    /// `used` says of every column of the source whether an expression uses it.
    explicit BlockColumns(std::vector<bool> used);

    /// Takes the first of `rows`, which are places in the block: all of them, unless their texts are too long for one
    /// block of expressions. At least one is taken.
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
    std::vector<expression::BlockColumn> m_views; ///< one for each column of the source
    expression::Block m_block;
};

} // namespace tavix::profiling
