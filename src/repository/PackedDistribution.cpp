#include "repository/PackedDistribution.h"

#include <fmt/format.h>
#include <xxhash.h>

#include <algorithm>
#include <bit>
#include <cstring>

namespace tavix::repository {

namespace {

static_assert(std::endian::native == std::endian::little, "numbers are stored as they lie in memory");

constexpr std::uint8_t kVersion = 1;
constexpr std::uint32_t kNoNull = 0xFFFFFFFF;

/// What a block begins with; then the counts, the lengths and the text.
struct BlockHeader {
    std::uint8_t version = kVersion;
    std::uint8_t countWidth = 1;  ///< bytes: 1, 2, 4 or 8
    std::uint8_t lengthWidth = 1; ///< bytes: 1, 2 or 4
    std::uint8_t reserved = 0;
    std::uint32_t rows = 0;
    std::uint32_t nullRow = kNoNull;
    std::uint32_t textBytes = 0;
    std::uint64_t checksum = 0; ///< over everything before and after it
};
static_assert(sizeof(BlockHeader) == 24);
constexpr std::size_t kChecked = offsetof(BlockHeader, checksum);

std::uint64_t checksum(std::span<const std::byte> block) {
    std::uint64_t seed = XXH3_64bits(block.data(), kChecked);
    return XXH3_64bits_withSeed(block.data() + sizeof(BlockHeader), block.size() - sizeof(BlockHeader), seed);
}

std::uint8_t widthFor(std::uint64_t largest) {
    if (largest <= 0xFF)
        return 1;
    if (largest <= 0xFFFF)
        return 2;
    return largest <= 0xFFFFFFFF ? 4 : 8;
}

void store(std::byte* target, std::size_t width, std::uint64_t number) {
    std::memcpy(target, &number, width);
}

/// Calls with a number of the type that has this width, so that each loop is compiled for one of them.
template <typename Use>
void withWidth(std::size_t width, Use use) {
    switch (width) {
    case 1:
        return use(std::uint8_t{});
    case 2:
        return use(std::uint16_t{});
    case 4:
        return use(std::uint32_t{});
    default:
        return use(std::uint64_t{});
    }
}

template <typename Number>
Number loadAs(const std::byte* source, std::size_t position) {
    Number number = 0;
    std::memcpy(&number, source + position * sizeof number, sizeof number);
    return number;
}

bool isWidth(std::size_t width, std::size_t largest) {
    return std::has_single_bit(width) && width <= largest;
}

} // namespace

Result<bool> DistributionPacker::next() {
    m_first = m_next;
    if (m_first == m_rows.size())
        return false;
    BlockHeader header;
    std::array<bool, 256> present{};
    std::uint64_t largestCount = 0;
    std::size_t longest = 0;
    std::size_t text = 0;
    m_sum = 0;
    for (; m_next < m_rows.size() && m_next - m_first < kRowsPerBlock; ++m_next) {
        const ValueCount& row = m_rows[m_next];
        std::size_t length = row.isNull ? 0 : row.value.size();
        if (length > kLongestValue)
            return Error{fmt::format("A value of {} bytes is too long to be stored.", length)};
        if (m_next > m_first && text + length > kTextPerBlock)
            break;
        if (row.isNull) {
            if (m_sawNull)
                return Error{"A distribution has null twice."};
            m_sawNull = true;
            header.nullRow = static_cast<std::uint32_t>(m_next - m_first);
        }
        for (std::size_t position = 0; position < length; ++position)
            present[static_cast<unsigned char>(row.value[position])] = true;
        text += length;
        longest = std::max(longest, length);
        largestCount = std::max(largestCount, row.count);
        m_sum += row.count;
    }
    header.countWidth = widthFor(largestCount);
    header.lengthWidth = widthFor(longest);
    header.rows = static_cast<std::uint32_t>(rowCount());
    header.textBytes = static_cast<std::uint32_t>(text);

    m_presence.fill(std::byte{0});
    for (std::size_t value = 0; value < present.size(); ++value) {
        if (present[value])
            m_presence[value / 8] |= std::byte{1} << (value % 8);
    }
    m_payload.resize(sizeof(BlockHeader) + rowCount() * (header.countWidth + std::size_t{header.lengthWidth}) + text);
    std::byte* counts = m_payload.data() + sizeof(BlockHeader);
    std::byte* lengths = counts + rowCount() * header.countWidth;
    std::byte* bytes = lengths + rowCount() * header.lengthWidth;
    for (const ValueCount& row : m_rows.subspan(m_first, rowCount())) {
        std::size_t length = row.isNull ? 0 : row.value.size();
        store(counts, header.countWidth, row.count);
        store(lengths, header.lengthWidth, length);
        counts += header.countWidth;
        lengths += header.lengthWidth;
        if (length != 0)
            std::memcpy(bytes, row.value.data(), length);
        bytes += length;
    }
    std::memcpy(m_payload.data(), &header, sizeof header);
    header.checksum = checksum(m_payload);
    std::memcpy(m_payload.data(), &header, sizeof header);
    return true;
}

Result<UnpackedBlock> UnpackedBlock::parse(std::span<const std::byte> bytes) {
    const Error damaged{"A stored distribution is damaged."};
    BlockHeader header;
    if (bytes.size() < sizeof header)
        return damaged;
    std::memcpy(&header, bytes.data(), sizeof header);
    if (header.checksum != checksum(bytes))
        return damaged;
    if (header.version != kVersion)
        return Error{
            fmt::format("A stored distribution has the form {}, which this program does not know.", header.version)};
    if (!isWidth(header.countWidth, 8) || !isWidth(header.lengthWidth, 4) || header.rows > kRowsPerBlock)
        return damaged;
    std::size_t rows = header.rows;
    std::size_t countBytes = rows * header.countWidth;
    std::size_t lengthBytes = rows * header.lengthWidth;
    if (bytes.size() != sizeof header + countBytes + lengthBytes + header.textBytes ||
        (header.nullRow != kNoNull && header.nullRow >= rows))
        return damaged;

    UnpackedBlock block;
    block.m_rows = rows;
    block.m_countWidth = header.countWidth;
    block.m_counts = bytes.subspan(sizeof header, countBytes);
    block.m_text = bytes.subspan(sizeof header + countBytes + lengthBytes);
    if (header.nullRow != kNoNull)
        block.m_nullRow = header.nullRow;
    const std::byte* lengths = bytes.data() + sizeof header + countBytes;
    block.m_ends.resize(rows);
    std::uint64_t end = 0;
    withWidth(header.lengthWidth, [&](auto width) {
        for (std::size_t row = 0; row < rows; ++row) {
            end += loadAs<decltype(width)>(lengths, row);
            // Each length fits 32 bits and there are few rows, so that the sum cannot overflow 64; it is checked below.
            block.m_ends[row] = static_cast<std::uint32_t>(end);
        }
    });
    if (end != header.textBytes)
        return damaged;
    return block;
}

ValueCount UnpackedBlock::at(std::size_t row) const {
    const bool isNull = m_nullRow == row;
    return {isNull ? std::string_view() : valueAt(row), countAt(row), isNull};
}

void UnpackedBlock::readCounts(std::size_t first, std::span<std::uint64_t> counts) const {
    withWidth(m_countWidth, [&](auto width) {
        for (std::size_t row = 0; row < counts.size(); ++row)
            counts[row] = loadAs<decltype(width)>(m_counts.data(), first + row);
    });
}

std::uint64_t hashValue(std::string_view value) {
    return XXH3_64bits(value.data(), value.size());
}

std::vector<std::uint64_t> sortedHashes(std::span<const ValueCount> rows) {
    std::vector<std::uint64_t> hashes;
    hashes.reserve(rows.size());
    for (const ValueCount& row : rows) {
        if (!row.isNull)
            hashes.push_back(hashValue(row.value));
    }
    std::sort(hashes.begin(), hashes.end());
    return hashes;
}

} // namespace tavix::repository
