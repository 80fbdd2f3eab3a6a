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

/// The rows of one packed block, which is moved and not copied. Any bytes may be given: what is no whole, unharmed
/// block of a known version is an error.
class UnpackedBlock {
  public:
    /// `bytes` are borrowed and must live as long as the block is read. Takes memory for 4 bytes a row and, where
    /// shared beginnings were left out, for the texts, which are at most 255 bytes a row longer than `bytes`.
    [[nodiscard]] static Result<UnpackedBlock> parse(std::span<const std::byte> bytes);

    [[nodiscard]] std::size_t rowCount() const { return m_rows; }
    /// `row` must be below rowCount(). The text is borrowed from the bytes or from the block; moving the block leaves
    /// it where it is.
    [[nodiscard]] ValueCount at(std::size_t row) const;

    // The block as columns, for operators that look at all rows at once. Borrowed like the texts of at().
    /// The texts one after the other, and where each ends; null is an empty text here.
    [[nodiscard]] std::string_view text() const { return m_text; }
    [[nodiscard]] std::span<const std::uint32_t> ends() const { return m_ends; }
    [[nodiscard]] std::optional<std::size_t> nullRow() const { return m_nullRow; }
    [[nodiscard]] std::uint64_t countAt(std::size_t row) const {
        const std::byte* const place = m_counts.data() + row * m_countWidth;
        // A width known to the compiler makes each of these one load.
        switch (m_countWidth) {
        case 1:
            return load<std::uint8_t>(place);
        case 2:
            return load<std::uint16_t>(place);
        case 4:
            return load<std::uint32_t>(place);
        default: // A width of 0 leads each row to the one number of 8 bytes.
            return load<std::uint64_t>(place);
        }
    }
    [[nodiscard]] std::string_view valueAt(std::size_t row) const {
        const std::size_t begin = row == 0 ? 0 : m_ends[row - 1];
        return m_text.substr(begin, m_ends[row] - begin);
    }
    /// Writes the counts of the rows from `first` on, as many as `counts` is long.
    void readCounts(std::size_t first, std::span<std::uint64_t> counts) const;

  private:
    template <typename Number>
    static std::uint64_t load(const std::byte* place) {
        Number number = 0;
        std::memcpy(&number, place, sizeof number);
        return number;
    }
    /// Where each text ends; false when they come to more than 32 bits can say.
    bool readLengths(const std::byte* lengths, std::size_t width);
    /// The texts from what they share with the one before and the rest; false when they do not agree.
    bool rebuildTexts(std::span<const std::byte> shared, std::string_view rests);

    std::span<const std::byte> m_counts;
    std::string_view m_text;
    std::unique_ptr<char[]> m_rebuilt; ///< m_text, where it is not borrowed
    std::size_t m_countWidth = 1;
    std::size_t m_rows = 0;
    std::optional<std::size_t> m_nullRow;
    std::vector<std::uint32_t> m_ends; ///< where each text ends
};

} // namespace tavix::repository
