#pragma once

#include "base/Result.h"
#include "repository/Facts.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// The packed form of a distribution: blocks of rows as docs/formats/distribution.md describes them.
namespace tavix::repository {

inline constexpr std::size_t kRowsPerBlock = 4096;
/// A block ends early rather than hold more text than this; only a single longer value may exceed it.
inline constexpr std::size_t kTextPerBlock = std::size_t{1} << 20;
inline constexpr std::size_t kLongestValue = std::size_t{256} << 20;

/// One bit for each byte that occurs in a text of the block: byte b is bit b % 8 of entry b / 8.
using BytePresence = std::array<std::byte, 32>;

/// A block with what stands beside it in the repository.
struct PackedBlock {
    std::int64_t firstRow = 0; ///< its first row's number in the distribution, from 0
    std::int64_t rows = 0;
    std::uint64_t sum = 0; ///< of the counts
    BytePresence presence{};
    std::span<const std::byte> payload; ///< borrowed
};

/// Packs rows that come one by one, in the order in which they are shown. What a block holds depends on the rows alone.
class BlockPacker {
  public:
    /// Whether a text of this length goes into the block that is being filled; when not, finish() has to come first.
    [[nodiscard]] bool hasRoomFor(std::size_t length) const {
        return m_counts.size() < kRowsPerBlock && (m_counts.empty() || m_text.size() + length <= kTextPerBlock);
    }
    [[nodiscard]] bool isEmpty() const { return m_counts.empty(); }
    /// Copies the row. Fails on a value beyond kLongestValue and on a second null.
    [[nodiscard]] Status add(const ValueCount& row);
    /// Packs the rows and begins the next block. The payload lives until the next call.
    [[nodiscard]] PackedBlock finish();

  private:
    std::vector<std::uint64_t> m_counts;
    std::vector<std::uint32_t> m_lengths;
    std::string m_text;
    std::int64_t m_firstRow = 0;
    std::uint64_t m_largestCount = 0;
    std::uint32_t m_longest = 0;
    std::uint32_t m_nullRow = 0;
    bool m_hasNull = false; ///< in this block
    bool m_sawNull = false;
    std::vector<std::byte> m_payload;
};

/// Cuts a distribution into blocks, one after the other. The rows are borrowed, never copied as a whole.
class DistributionPacker {
  public:
    explicit DistributionPacker(std::span<const ValueCount> rows) : m_rows(rows) {}

    /// Packs the next block; false at the end. Fails on a value beyond kLongestValue and on a second null.
    [[nodiscard]] Result<bool> next();

    /// What next() made; valid until the next call.
    [[nodiscard]] const PackedBlock& block() const { return m_block; }

  private:
    std::span<const ValueCount> m_rows;
    std::size_t m_next = 0;
    BlockPacker m_packer;
    PackedBlock m_block;
};

/// The rows of one packed block. Any bytes may be given: what is no whole, unharmed block of this version is an error.
class UnpackedBlock {
  public:
    /// `bytes` are borrowed and must live as long as the block is read.
    [[nodiscard]] static Result<UnpackedBlock> parse(std::span<const std::byte> bytes);

    [[nodiscard]] std::size_t rowCount() const { return m_rows; }
    /// `row` must be below rowCount(). The text is borrowed from the bytes.
    [[nodiscard]] ValueCount at(std::size_t row) const;

    // The block as columns, for operators that look at all rows at once. Borrowed like the texts of at().
    /// The texts one after the other, and where each ends; null is an empty text here.
    [[nodiscard]] std::string_view text() const {
        return {reinterpret_cast<const char*>(m_text.data()), m_text.size()};
    }
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
        default:
            return load<std::uint64_t>(place);
        }
    }
    [[nodiscard]] std::string_view valueAt(std::size_t row) const {
        const std::size_t begin = row == 0 ? 0 : m_ends[row - 1];
        return text().substr(begin, m_ends[row] - begin);
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

    std::span<const std::byte> m_counts;
    std::span<const std::byte> m_text;
    std::size_t m_countWidth = 1;
    std::size_t m_rows = 0;
    std::optional<std::size_t> m_nullRow;
    std::vector<std::uint32_t> m_ends; ///< where each text ends
};

/// The 64-bit hash by which values are matched without their texts.
[[nodiscard]] std::uint64_t hashValue(std::string_view value);

/// The hashes of all values but null, ascending.
[[nodiscard]] std::vector<std::uint64_t> sortedHashes(std::span<const ValueCount> rows);

} // namespace tavix::repository
