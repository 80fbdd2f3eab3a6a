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

template <typename Number>
void storeAs(std::byte* target, std::size_t position, std::uint64_t number) {
    const auto narrow = static_cast<Number>(number);
    std::memcpy(target + position * sizeof narrow, &narrow, sizeof narrow);
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

Status BlockPacker::add(const ValueCount& row) {
    const std::size_t length = row.isNull ? 0 : row.value.size();
    if (length > kLongestValue)
        return Error{fmt::format("A value of {} bytes is too long to be stored.", length)};
    if (row.isNull) {
        if (m_sawNull)
            return Error{"A distribution has null twice."};
        m_sawNull = true;
        m_hasNull = true;
        m_nullRow = static_cast<std::uint32_t>(m_counts.size());
    }
    m_counts.push_back(row.count);
    m_lengths.push_back(static_cast<std::uint32_t>(length));
    if (length > 0)
        m_text.append(row.value.data(), length);
    m_largestCount = std::max(m_largestCount, row.count);
    m_longest = std::max(m_longest, m_lengths.back());
    return {};
}

PackedBlock BlockPacker::finish() {
    BlockHeader header;
    header.countWidth = widthFor(m_largestCount);
    header.lengthWidth = widthFor(m_longest);
    header.rows = static_cast<std::uint32_t>(m_counts.size());
    header.textBytes = static_cast<std::uint32_t>(m_text.size());
    if (m_hasNull)
        header.nullRow = m_nullRow;

    PackedBlock block;
    block.firstRow = m_firstRow;
    block.rows = static_cast<std::int64_t>(m_counts.size());
    std::array<bool, 256> present{};
    for (const char byte : m_text)
        present[static_cast<unsigned char>(byte)] = true;
    for (std::size_t value = 0; value < present.size(); ++value)
        if (present[value])
            block.presence[value / 8] |= std::byte{1} << (value % 8);

    const std::size_t rows = m_counts.size();
    m_payload.resize(sizeof header + rows * (header.countWidth + std::size_t{header.lengthWidth}) + m_text.size());
    std::byte* const counts = m_payload.data() + sizeof header;
    std::byte* const lengths = counts + rows * header.countWidth;
    withWidth(header.countWidth, [&](auto width) {
        for (std::size_t row = 0; row < rows; ++row) {
            block.sum += m_counts[row];
            storeAs<decltype(width)>(counts, row, m_counts[row]);
        }
    });
    withWidth(header.lengthWidth, [&](auto width) {
        for (std::size_t row = 0; row < rows; ++row)
            storeAs<decltype(width)>(lengths, row, m_lengths[row]);
    });
    if (!m_text.empty())
        std::memcpy(lengths + rows * header.lengthWidth, m_text.data(), m_text.size());
    std::memcpy(m_payload.data(), &header, sizeof header);
    header.checksum = checksum(m_payload);
    std::memcpy(m_payload.data(), &header, sizeof header);
    block.payload = m_payload;

    m_firstRow += block.rows;
    m_counts.clear();
    m_lengths.clear();
    m_text.clear();
    m_largestCount = 0;
    m_longest = 0;
    m_hasNull = false;
    return block;
}

Result<bool> DistributionPacker::next() {
    for (; m_next < m_rows.size(); ++m_next) {
        const ValueCount& row = m_rows[m_next];
        if (!m_packer.hasRoomFor(row.isNull ? 0 : row.value.size()))
            break;
        if (Status status = m_packer.add(row); !status)
            return status.error();
    }
    if (m_packer.isEmpty())
        return false;
    m_block = m_packer.finish();
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
