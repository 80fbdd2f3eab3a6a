#include "repository/UnpackedBlock.h"

#include "repository/BlockFormat.h"
#include "repository/PackedBlock.h"

#include <fmt/format.h>

#include <algorithm>
#include <bit>
#include <limits>

namespace tavix::repository {

namespace {

constexpr std::uint8_t kWithoutShared = 1; ///< the version before shared beginnings and numbers of no width
constexpr std::uint8_t kNewest = 2;
/// Most texts share less.
constexpr std::size_t kShortStep = 16;

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
    // Each length fits 32 bits and there are few rows, so that the sum cannot overflow 64.
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
    std::size_t sum = 0;
    std::uint32_t begin = 0;
    std::uint32_t lengthBefore = 0;
    bool fits = true;
    for (std::size_t row = 0; row < m_rows; ++row) {
        const auto size = std::to_integer<std::uint32_t>(shared[row]);
        const std::uint32_t length = m_ends[row] - begin;
        fits &= size <= std::min(length, lengthBefore);
        sum += size;
        begin = m_ends[row];
        lengthBefore = length;
    }
    // So every rest is no less than nothing and all together are what is stored: nothing below reads beyond it.
    if (!fits || begin != sum + rests.size())
        return false;

    m_rebuilt = std::make_unique_for_overwrite<char[]>(begin + 2 * kCopySlack);
    const char* rest = rests.data();
    const char* const restsEnd = rest + rests.size();
    char* text = m_rebuilt.get();
    const char* before = text;
    // Of the texts that have as much in common the first one, for bytes that were written just now are slow to read.
    const char* source = text;
    std::size_t sharedBefore = 0;
    std::uint32_t textBegin = 0;
    for (std::size_t row = 0; row < m_rows; ++row) {
        const auto size = std::to_integer<std::size_t>(shared[row]);
        const std::size_t length = m_ends[row] - textBegin;
        const std::size_t restSize = length - size;
        source = size > sharedBefore ? before : source;
        copyWithSlack<kShortStep>(text, source, size);
        if (static_cast<std::size_t>(restsEnd - rest) >= restSize + kCopySlack)
            copyWithSlack(text + size, rest, restSize);
        else
            std::memcpy(text + size, rest, restSize);
        rest += restSize;
        before = text;
        text += length;
        sharedBefore = size;
        textBegin = m_ends[row];
    }
    m_text = {m_rebuilt.get(), begin};
    return true;
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
