#include "repository/UnpackedBlock.h"

#include "repository/BlockFormat.h"
#include "repository/PackedBlock.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <bit>
#include <limits>

namespace tavix::repository {

namespace {

constexpr std::uint8_t kWithoutShared = 1; ///< the version before shared prefixes and columns of width 0
constexpr std::uint8_t kNewest = 2;

/// The first bytes of a text, in registers: memory that was just written in several pieces is slow to read.
class Beginning {
  public:
    static constexpr std::size_t kSize = 32;

    /// Keeps the prefix that a text shares with the one before it and appends the next bytes of the rests. kSize bytes
    /// must be readable from `rest` on, and as many as are shared before it; the rests of earlier texts provide them,
    /// because together they are at least as long as any of these texts.
    void change(std::size_t shared, const char* rest) {
        const std::size_t kept = std::min(shared, kSize);
        for (std::size_t i = 0; i < m_lanes.size(); ++i) {
            const auto mask = loadAs<Lane>(kMasks.data() + kSize - kept + i * sizeof(Lane));
            const auto fresh = loadAs<Lane>(rest - kept + i * sizeof(Lane));
            m_lanes[i] = (m_lanes[i] & mask) | (fresh & ~mask);
        }
    }
    void store(char* target) const { std::memcpy(target, m_lanes.data(), kSize); }

  private:
    using Lane [[gnu::vector_size(16)]] = std::uint64_t;

    /// Read from kSize - n on: n bytes of ones, then zeros.
    static constexpr std::array<std::uint8_t, 2 * kSize> kMasks = [] {
        std::array<std::uint8_t, 2 * kSize> masks{};
        std::fill(masks.begin(), masks.begin() + kSize, std::uint8_t{0xFF});
        return masks;
    }();
    std::array<Lane, kSize / sizeof(Lane)> m_lanes{};
};

bool isWidth(std::size_t width, std::size_t largest, std::uint8_t version) {
    return width == 0 ? version >= kNewest : std::has_single_bit(width) && width <= largest;
}

std::string_view asText(std::span<const std::byte> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

} // namespace

Result<UnpackedBlock> UnpackedBlock::parse(std::span<const std::byte> bytes) {
    const Error damaged{"A stored distribution is damaged."};
    BlockHeader header;
    if (bytes.size() < sizeof header)
        return damaged;
    std::memcpy(&header, bytes.data(), sizeof header);
    if (header.checksum != checksumOf(bytes))
        return damaged;
    if (header.version != kWithoutShared && header.version != kNewest)
        return Error{
            fmt::format("A stored distribution has the form {}, which this program does not know.", header.version)};
    if (header.version == kWithoutShared)
        header.hasShared = 0;
    if (!isWidth(header.countWidth, 8, header.version) || !isWidth(header.lengthWidth, 4, header.version) ||
        header.hasShared > 1 || header.rows > kRowsPerBlock)
        return damaged;
    const std::size_t rows = header.rows;
    const std::size_t countBytes = columnBytes<std::uint64_t>(rows, header.countWidth);
    const std::size_t lengthBytes = columnBytes<std::uint32_t>(rows, header.lengthWidth);
    const std::size_t sharedBytes = header.hasShared != 0 ? rows : 0;
    if (bytes.size() != sizeof header + countBytes + lengthBytes + sharedBytes + header.textBytes ||
        (header.nullRow != kNoNull && header.nullRow >= rows))
        return damaged;

    UnpackedBlock block;
    block.m_rows = rows;
    block.m_countWidth = header.countWidth;
    block.m_counts = bytes.subspan(sizeof header, countBytes);
    if (header.nullRow != kNoNull)
        block.m_nullRow = header.nullRow;
    if (!block.readLengths(bytes.data() + sizeof header + countBytes, header.lengthWidth))
        return damaged;
    const auto shared = bytes.subspan(sizeof header + countBytes + lengthBytes, sharedBytes);
    const std::string_view text = asText(bytes.last(header.textBytes));
    if (header.hasShared != 0) {
        if (!block.rebuildTexts(shared, text))
            return damaged;
    } else {
        if ((rows == 0 ? 0 : block.m_ends.back()) != text.size())
            return damaged;
        block.m_text = text;
    }
    return block;
}

bool UnpackedBlock::readLengths(const std::byte* lengths, std::size_t width) {
    m_ends.resize(m_rows);
    // Each length fits 32 bits and rows are few, so that the sum cannot overflow 64.
    std::uint64_t end = 0;
    if (width == 0) {
        const std::uint64_t length = loadAs<std::uint32_t>(lengths);
        for (std::uint32_t& textEnd : m_ends)
            textEnd = static_cast<std::uint32_t>(end += length);
    } else {
        withWidth(width, [&](auto narrow) {
            for (std::size_t row = 0; row < m_rows; ++row)
                m_ends[row] = static_cast<std::uint32_t>(end += loadAs<decltype(narrow)>(lengths, row));
        });
    }
    return end <= std::numeric_limits<std::uint32_t>::max();
}

bool UnpackedBlock::rebuildTexts(std::span<const std::byte> shared, std::string_view rests) {
    const std::size_t total = m_rows == 0 ? 0 : m_ends.back();
    if (total > rests.size() + m_rows * kLongestShared)
        return false;
    m_rebuilt = std::make_unique_for_overwrite<char[]>(total + 2 * kCopySlack);
    const char* rest = rests.data();
    std::size_t left = rests.size();
    char* text = m_rebuilt.get();
    std::size_t lengthBefore = 0;
    std::size_t begin = 0;
    Beginning beginning;
    for (std::size_t row = 0; row < m_rows; ++row) {
        const auto size = std::to_integer<std::size_t>(shared[row]);
        const std::size_t length = m_ends[row] - begin;
        const std::size_t restSize = length - size;
        if (size > std::min(length, lengthBefore) || left < restSize)
            return false;
        if (left >= restSize + kCopySlack) {
            beginning.change(size, rest);
            beginning.store(text);
            if (length > Beginning::kSize) {
                const std::size_t known = std::max(size, Beginning::kSize);
                if (size > Beginning::kSize)
                    copyWithSlack(text + Beginning::kSize, text - lengthBefore + Beginning::kSize,
                                  size - Beginning::kSize);
                copyWithSlack(text + known, rest + (known - size), length - known);
            }
        } else {
            // From this row on the block is near the end of the readable bytes, so the previous text is not kept in
            // registers.
            std::memcpy(text, text - lengthBefore, size);
            std::memcpy(text + size, rest, restSize);
        }
        rest += restSize;
        left -= restSize;
        text += length;
        lengthBefore = length;
        begin = m_ends[row];
    }
    m_text = {m_rebuilt.get(), total};
    return left == 0;
}

ValueCount UnpackedBlock::at(std::size_t row) const {
    const bool isNull = m_nullRow == row;
    return {isNull ? std::string_view() : valueAt(row), countAt(row), isNull};
}

void UnpackedBlock::readCounts(std::size_t first, std::span<std::uint64_t> counts) const {
    if (m_countWidth == 0) {
        std::fill(counts.begin(), counts.end(), countAt(0));
        return;
    }
    withWidth(m_countWidth, [&](auto narrow) {
        for (std::size_t row = 0; row < counts.size(); ++row)
            counts[row] = loadAs<decltype(narrow)>(m_counts.data(), first + row);
    });
}

} // namespace tavix::repository
