#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace tavix::expression {

/// A set of rows of a block in ascending order. The set of all rows is kept as their number, so that the first operator
/// reads no list.
class RowSet {
  public:
    /// All rows of a block of this size.
    void fill(std::size_t rows) {
        m_rows.resize(rows);
        m_size = rows;
        m_isFull = true;
    }
    void assign(const RowSet& other) {
        m_rows.resize(other.m_rows.size());
        m_size = other.m_size;
        m_isFull = other.m_isFull;
        if (!m_isFull)
            std::copy_n(other.m_rows.begin(), m_size, m_rows.begin());
    }
    void clear() {
        m_size = 0;
        m_isFull = false;
    }

    [[nodiscard]] std::size_t size() const { return m_size; }
    [[nodiscard]] bool isEmpty() const { return m_size == 0; }
    /// Call it only when the set is not empty.
    [[nodiscard]] std::uint32_t first() const { return m_isFull ? 0 : m_rows.front(); }
    /// Keeps only the first row, if any.
    void keepFirst() {
        if (isEmpty())
            return;
        m_rows.front() = first();
        m_size = 1;
        m_isFull = m_rows.size() == 1;
    }
    /// Whether a pass over the whole block is cheaper than one over these rows.
    [[nodiscard]] bool isDense() const { return m_isFull || m_size * 2 > m_rows.size(); }

    template <typename Visit>
    void forEach(Visit visit) const {
        if (m_isFull) {
            for (std::uint32_t row = 0; row < m_size; ++row)
                visit(row);
            return;
        }
        for (std::size_t i = 0; i < m_size; ++i)
            visit(m_rows[i]);
    }

    /// Keeps the rows for which `test` is true, without a branch on its result.
    template <typename Test>
    void keepIf(Test test) {
        std::uint32_t* const out = m_rows.data();
        std::size_t kept = 0;
        if (m_isFull) {
            const auto size = static_cast<std::uint32_t>(m_size);
            for (std::uint32_t row = 0; row < size; ++row) {
                out[kept] = row;
                kept += test(row) ? 1U : 0U;
            }
        } else {
            const std::size_t size = m_size;
            for (std::size_t i = 0; i < size; ++i) {
                const std::uint32_t row = out[i];
                out[kept] = row;
                kept += test(row) ? 1U : 0U;
            }
        }
        m_isFull = kept == m_rows.size();
        m_size = kept;
    }

    /// The rows as a list.
    [[nodiscard]] std::span<const std::uint32_t> list() {
        if (m_isFull) {
            for (std::uint32_t row = 0; row < m_size; ++row)
                m_rows[row] = row;
        }
        return {m_rows.data(), m_size};
    }

  private:
    std::vector<std::uint32_t> m_rows; ///< sized for all rows of the block; the first m_size are the set
    std::size_t m_size = 0;
    bool m_isFull = false;
};

} // namespace tavix::expression
