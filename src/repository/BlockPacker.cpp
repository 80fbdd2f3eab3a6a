#include "repository/BlockPacker.h"

#include "repository/BlockFormat.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <span>
#include <utility>

namespace tavix::repository {

namespace {

/// findShared() compares 8 bytes at a time, past the end of a text if necessary.
constexpr std::size_t kSlack = kCopySlack;

/// The width of a column of numbers: 0 if all are equal and one `Full` takes less.
template <typename Full>
std::uint8_t widthFor(std::span<const Full> numbers) {
    Full all = 0;
    Full common = static_cast<Full>(~Full{0});
    for (const Full number : numbers) {
        all |= number;
        common &= number;
    }
    const std::size_t bytes = (static_cast<std::size_t>(std::bit_width(all)) + 7) / 8;
    const std::size_t width = std::bit_ceil(std::max(bytes, std::size_t{1}));
    return all == common && sizeof(Full) < numbers.size() * width ? std::uint8_t{0} : static_cast<std::uint8_t>(width);
}

/// Stores a column and returns its end.
template <typename Full>
std::byte* storeColumn(std::byte* target, std::span<const Full> numbers, std::size_t width) {
    if (width == 0)
        storeAs<Full>(target, 0, numbers.front());
    else
        withWidth(width, [&](auto narrow) {
            for (std::size_t row = 0; row < numbers.size(); ++row)
                storeAs<decltype(narrow)>(target, row, numbers[row]);
        });
    return target + columnBytes<Full>(numbers.size(), width);
}

/// The length of the common prefix of two texts, at most `limit`; bytes after both must be readable.
std::size_t commonBytes(const char* one, const char* other, std::size_t limit) {
    for (std::size_t done = 0; done < limit; done += sizeof(std::uint64_t)) {
        const std::uint64_t differs = loadAs<std::uint64_t>(one + done) ^ loadAs<std::uint64_t>(other + done);
        if (differs != 0)
            return std::min(limit, done + static_cast<std::size_t>(std::countr_zero(differs)) / 8);
    }
    return limit;
}

BytePresence presenceOf(const char* text, std::size_t size) {
    std::array<bool, 256> present{};
    const auto mark = [&](std::size_t place) { present[static_cast<unsigned char>(text[place])] = true; };
    std::size_t place = 0;
    // Four at a time saves 2 to 4 % of all packing, measured.
    for (; place + 4 <= size; place += 4) {
        mark(place);
        mark(place + 1);
        mark(place + 2);
        mark(place + 3);
    }
    for (; place < size; ++place)
        mark(place);
    BytePresence presence{};
    for (std::size_t value = 0; value < present.size(); ++value)
        if (present[value])
            presence[value / 8] |= std::byte{1} << (value % 8);
    return presence;
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
        m_nullRow = static_cast<std::uint32_t>(m_rows);
    }
    if (m_textRoom < m_textSize + length + kSlack)
        growText(m_textSize + length + kSlack);
    if (m_rows == m_counts.size())
        growRows();
    m_counts[m_rows] = row.count;
    m_lengths[m_rows] = static_cast<std::uint32_t>(length);
    ++m_rows;
    if (length > 0)
        std::memcpy(m_text.get() + m_textSize, row.value.data(), length);
    m_textSize += length;
    return {};
}

void BlockPacker::growRows() {
    constexpr std::size_t kFirst = 64;
    const std::size_t room = std::max(kFirst, 2 * m_rows);
    m_counts.resize(room);
    m_lengths.resize(room);
    m_shared.resize(room);
}

void BlockPacker::growText(std::size_t size) {
    constexpr std::size_t kFirst = std::size_t{16} << 10;
    const std::size_t room = std::max({kFirst, size, 2 * m_textRoom});
    auto text = std::make_unique_for_overwrite<char[]>(room);
    if (m_textSize > 0)
        std::memcpy(text.get(), m_text.get(), m_textSize);
    m_text = std::move(text);
    m_textRoom = room;
}

/// Returns the bytes that all texts share in total.
std::size_t BlockPacker::findShared() {
    std::memset(m_text.get() + m_textSize, 0, kSlack);
    std::size_t sum = 0;
    std::size_t lengthBefore = 0;
    const char* before = m_text.get();
    for (std::size_t row = 0; row < m_rows; ++row) {
        const char* const text = before + lengthBefore;
        const std::size_t length = m_lengths[row];
        const std::size_t shared = commonBytes(before, text, std::min({lengthBefore, length, kLongestShared}));
        m_shared[row] = static_cast<std::uint8_t>(shared);
        sum += shared;
        before = text;
        lengthBefore = length;
    }
    return sum;
}

void BlockPacker::writeRests(char* target) const {
    const char* text = m_text.get();
    for (std::size_t row = 0; row < m_rows; ++row) {
        const std::size_t rest = m_lengths[row] - std::size_t{m_shared[row]};
        copyWithSlack(target, text + m_shared[row], rest);
        target += rest;
        text += m_lengths[row];
    }
}

PackedBlock BlockPacker::finish() {
    const std::size_t rows = m_rows;
    const auto counts = std::span<const std::uint64_t>(m_counts).first(rows);
    const auto lengths = std::span<const std::uint32_t>(m_lengths).first(rows);
    const std::size_t shared = findShared();
    BlockHeader header;
    header.countWidth = widthFor(counts);
    header.lengthWidth = widthFor(lengths);
    header.hasShared = shared > rows ? 1 : 0; // Each row pays a byte for it.
    header.rows = static_cast<std::uint32_t>(rows);
    const std::size_t textBytes = header.hasShared != 0 ? m_textSize - shared : m_textSize;
    header.textBytes = static_cast<std::uint32_t>(textBytes);
    if (m_hasNull)
        header.nullRow = m_nullRow;

    const std::size_t sharedBytes = header.hasShared != 0 ? rows : 0;
    const std::size_t size = kHeaderSize + columnBytes<std::uint64_t>(rows, header.countWidth) +
                             columnBytes<std::uint32_t>(rows, header.lengthWidth) + sharedBytes + textBytes;
    if (m_payload.size() < size + kCopySlack)
        m_payload.resize(size + kCopySlack);
    const std::span<std::byte> payload = std::span(m_payload).first(size);
    std::byte* place = storeColumn(payload.data() + kHeaderSize, counts, header.countWidth);
    place = storeColumn(place, lengths, header.lengthWidth);
    std::memcpy(place, m_shared.data(), sharedBytes);
    char* const text = reinterpret_cast<char*>(place + sharedBytes);
    if (header.hasShared != 0)
        writeRests(text);
    else
        std::memcpy(text, m_text.get(), m_textSize);
    std::memcpy(payload.data(), &header, sizeof header);
    header.checksum = checksumOf(payload);
    std::memcpy(payload.data(), &header, sizeof header);

    PackedBlock block;
    block.firstRow = m_firstRow;
    block.rows = static_cast<std::int64_t>(rows);
    for (const std::uint64_t count : counts)
        block.sum += count;
    // A shared prefix also occurs in the text before, and so in the rest of some text.
    block.presence = presenceOf(text, textBytes);
    block.payload = payload;
    beginNext();
    return block;
}

void BlockPacker::beginNext() {
    m_firstRow += static_cast<std::int64_t>(m_rows);
    m_rows = 0;
    m_textSize = 0;
    m_hasNull = false;
}

} // namespace tavix::repository
