#pragma once

#include "base/Result.h"
#include "repository/Facts.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace tavix::repository {

/// The rows of one packed block; movable, not copyable. Accepts any bytes: all but a whole, undamaged block of a known
/// version are an error.
class UnpackedBlock {
  public:
    /// `bytes` are borrowed and must outlive the block. Allocates 4 bytes a row and, if shared prefixes were left out,
    /// the texts, at most 255 bytes a row more than `bytes`.
    [[nodiscard]] static Result<UnpackedBlock> parse(std::span<const std::byte> bytes);

    [[nodiscard]] std::size_t rowCount() const { return m_rows; }
    /// `row` must be below rowCount(). The text refers to the bytes or to the block's own memory; it stays valid when
    /// the block is moved.
    [[nodiscard]] ValueCount at(std::size_t row) const;

    // The block as columns, for operators on all rows at once. Borrowed like the texts of at().
    /// The concatenated texts, and where each ends; null is an empty text here.
    [[nodiscard]] std::string_view text() const { return m_text; }
    [[nodiscard]] std::span<const std::uint32_t> ends() const { return m_ends; }
    [[nodiscard]] std::optional<std::size_t> nullRow() const { return m_nullRow; }
    [[nodiscard]] std::uint64_t countAt(std::size_t row) const {
        const std::byte* const place = m_counts.data() + row * m_countWidth;
        // A width known at compile time makes each of these one load.
        switch (m_countWidth) {
        case 1:
            return load<std::uint8_t>(place);
        case 2:
            return load<std::uint16_t>(place);
        case 4:
            return load<std::uint32_t>(place);
        default: // Width 0 maps each row to the one number of 8 bytes.
            return load<std::uint64_t>(place);
        }
    }
    [[nodiscard]] std::string_view valueAt(std::size_t row) const {
        const std::size_t begin = row == 0 ? 0 : m_ends[row - 1];
        return m_text.substr(begin, m_ends[row] - begin);
    }
    /// Writes the counts of the rows from `first` on; `counts` has their number.
    void readCounts(std::size_t first, std::span<std::uint64_t> counts) const;

  private:
    template <typename Number>
    static std::uint64_t load(const std::byte* place) {
        Number number = 0;
        std::memcpy(&number, place, sizeof number);
        return number;
    }
    /// Computes where each text ends; false if the texts exceed 32 bits.
    bool readLengths(const std::byte* lengths, std::size_t width);
    /// Restores the texts from their prefix lengths and rests; false if these are inconsistent.
    bool rebuildTexts(std::span<const std::byte> shared, std::string_view rests);

    std::span<const std::byte> m_counts;
    std::string_view m_text;
    std::unique_ptr<char[]> m_rebuilt; ///< storage of m_text unless it is borrowed
    std::size_t m_countWidth = 1;
    std::size_t m_rows = 0;
    std::optional<std::size_t> m_nullRow;
    std::vector<std::uint32_t> m_ends; ///< where each text ends
};

} // namespace tavix::repository
