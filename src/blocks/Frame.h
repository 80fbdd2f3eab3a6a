#pragma once

#include "blocks/Block.h"
#include "blocks/RowSet.h"
#include "blocks/Vector.h"
#include "expression/Scratch.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace tavix::expression {

/// The state that operators share while they evaluate one block.
class Frame {
  public:
    /// `mostTexts`: bytes that the scratch may take.
    void begin(const Block& block, std::size_t mostTexts);

    [[nodiscard]] const Block& block() const { return *m_block; }
    [[nodiscard]] std::size_t rows() const { return m_block->rows; }
    [[nodiscard]] Scratch& scratch() { return m_scratch; }
    /// Whether all texts of the column are ASCII; computed once for each block.
    [[nodiscard]] bool isAscii(std::size_t column);

    /// Whether an operator may make texts of `size` bytes in a buffer of its own.
    [[nodiscard]] bool takeAdjacent(std::size_t size) {
        if (size > kMostAdjacentOfOne || m_adjacent + size > kMostAdjacent)
            return false;
        m_adjacent += size;
        return true;
    }

    /// Records a failure that a function left in the scratch as one of this row.
    void collectFailure(std::uint32_t row) {
        if (m_scratch.hasFailed())
            markFailed(row);
    }
    [[nodiscard]] bool hasFailures() const { return m_failures > 0; }
    [[nodiscard]] bool isFailed(std::uint32_t row) const { return m_failed[row] != 0; }
    /// Nonzero for a row that failed; empty without failures.
    [[nodiscard]] std::span<const std::uint8_t> failed() const {
        return m_failures > 0 ? std::span<const std::uint8_t>(m_failed) : std::span<const std::uint8_t>();
    }
    [[nodiscard]] std::size_t failures() const { return m_failures; }
    [[nodiscard]] std::uint32_t firstFailedRow() const { return m_firstFailed; }
    [[nodiscard]] const std::string& firstFailure() const { return m_firstFailure; }

    /// A set of rows that the guard returns when it is destroyed.
    class Loan {
      public:
        explicit Loan(Frame& frame);
        Loan(const Loan&) = delete;
        Loan& operator=(const Loan&) = delete;
        ~Loan() { --m_frame.m_lent; }
        [[nodiscard]] RowSet& rows() { return *m_rows; }

      private:
        Frame& m_frame;
        RowSet* m_rows;
    };

  private:
    /// Beyond these bounds texts are made row by row in the scratch, which bounds each text and those of each row.
    static constexpr std::size_t kMostAdjacentOfOne = std::size_t{8} << 20;
    static constexpr std::size_t kMostAdjacent = std::size_t{64} << 20;

    void markFailed(std::uint32_t row);

    const Block* m_block = nullptr;
    Scratch m_scratch;
    std::size_t m_adjacent = 0;       ///< bytes that operators took for this block
    std::vector<std::int8_t> m_ascii; ///< for each column; -1: not known yet
    std::vector<std::uint8_t> m_failed;
    std::size_t m_failures = 0;
    std::uint32_t m_firstFailed = 0;
    std::string m_firstFailure;
    std::vector<std::unique_ptr<RowSet>> m_sets;
    std::size_t m_lent = 0;
};

} // namespace tavix::expression
