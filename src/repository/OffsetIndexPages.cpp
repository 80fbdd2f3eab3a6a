#include "repository/OffsetIndexPages.h"

#include <xxhash.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <limits>
#include <utility>

namespace tavix::repository {

namespace {

static_assert(std::endian::native == std::endian::little, "checksums are stored as they lie in memory");

constexpr std::size_t kPageBytes = std::size_t{32} << 10;
constexpr std::size_t kChecksumBytes = sizeof(std::uint64_t);
/// Searching all ranges takes little longer than searching this share of them.
constexpr std::size_t kListedShare = 4;
/// The size of an unlisted list.
constexpr std::uint64_t kUnlisted = 0;

constexpr std::size_t kLongestNumber = 10;

/// LEB128: seven bits a byte, the lowest first; all bytes but the last have the highest bit set. Returns the end.
std::byte* put(std::byte* at, std::uint64_t number) {
    for (; number >= 0x80; number >>= 7)
        *at++ = static_cast<std::byte>(number | 0x80);
    *at++ = static_cast<std::byte>(number);
    return at;
}

void append(std::vector<std::byte>& bytes, std::uint64_t number) {
    if (number < 0x80) { // as nearly all: a call would cost more than the byte
        bytes.push_back(static_cast<std::byte>(number));
        return;
    }
    std::array<std::byte, kLongestNumber> packed;
    bytes.insert(bytes.end(), packed.data(), put(packed.data(), number));
}

/// Writes the checksum into the space reserved before the bytes.
void seal(std::vector<std::byte>& bytes) {
    const std::uint64_t checksum = XXH3_64bits(bytes.data() + kChecksumBytes, bytes.size() - kChecksumBytes);
    std::memcpy(bytes.data(), &checksum, kChecksumBytes);
}

/// Reads numbers one after the other; safe for any bytes.
class NumberReader {
  public:
    explicit NumberReader(std::span<const std::byte> bytes) : m_bytes(bytes) {}

    /// Starts after the checksum of sealed bytes; nothing if it is wrong.
    static std::optional<NumberReader> open(std::span<const std::byte> sealed) {
        if (sealed.size() < kChecksumBytes)
            return std::nullopt;
        std::uint64_t checksum = 0;
        std::memcpy(&checksum, sealed.data(), kChecksumBytes);
        const auto bytes = sealed.subspan(kChecksumBytes);
        if (XXH3_64bits(bytes.data(), bytes.size()) != checksum)
            return std::nullopt;
        return NumberReader(bytes);
    }

    [[nodiscard]] bool isAtEnd() const { return m_bytes.empty(); }

    std::optional<std::uint64_t> next() {
        std::uint64_t number = 0;
        for (unsigned shift = 0; shift < 64 && !m_bytes.empty(); shift += 7) {
            const auto byte = static_cast<std::uint64_t>(m_bytes.front());
            m_bytes = m_bytes.subspan(1);
            if (shift == 63 && byte > 1)
                return std::nullopt;
            number |= (byte & 0x7F) << shift;
            if ((byte & 0x80) == 0)
                return number;
        }
        return std::nullopt;
    }

    /// Skips the next bytes and returns a reader of them.
    std::optional<NumberReader> take(std::uint64_t size) {
        if (size > m_bytes.size())
            return std::nullopt;
        const NumberReader taken(m_bytes.first(static_cast<std::size_t>(size)));
        m_bytes = m_bytes.subspan(static_cast<std::size_t>(size));
        return taken;
    }

  private:
    std::span<const std::byte> m_bytes;
};

std::optional<std::vector<std::uint32_t>> listOf(NumberReader reader, std::size_t ranges) {
    std::vector<std::uint32_t> list;
    std::uint64_t next = 0;
    while (!reader.isAtEnd()) {
        const auto distance = reader.next();
        if (!distance || *distance >= ranges || next + *distance >= ranges)
            return std::nullopt;
        next += *distance;
        list.push_back(static_cast<std::uint32_t>(next++));
    }
    return list;
}

} // namespace

OffsetIndexPacker::OffsetIndexPacker(std::size_t ranges) : m_ranges(ranges) {
    begin(0);
}

void OffsetIndexPacker::begin(std::uint32_t bucket) {
    m_pages.push_back({bucket, {}});
    m_pages.back().bytes.reserve(kPageBytes + kPageBytes / 4);
    m_pages.back().bytes.resize(kChecksumBytes);
    m_nextBucket = bucket;
}

void OffsetIndexPacker::end() {
    seal(m_pages.back().bytes);
    m_pages.back().bytes.shrink_to_fit();
}

std::vector<std::byte>& OffsetIndexPacker::pageFor(std::uint32_t bucket) {
    if (m_pages.back().bytes.size() >= kPageBytes) {
        end();
        begin(bucket);
    }
    std::vector<std::byte>& page = m_pages.back().bytes;
    append(page, bucket - std::exchange(m_nextBucket, bucket + 1));
    return page;
}

void OffsetIndexPacker::addUnlisted(std::uint32_t bucket) {
    append(pageFor(bucket), kUnlisted);
}

void OffsetIndexPacker::add(std::uint32_t bucket, std::span<const std::uint32_t> ranges) {
    if (ranges.empty())
        return;
    if (ranges.size() > m_ranges / kListedShare)
        return addUnlisted(bucket);
    std::vector<std::byte>& page = pageFor(bucket);
    m_list.resize(std::max(m_list.size(), ranges.size() * kLongestNumber));
    std::byte* end = m_list.data();
    std::uint32_t next = 0;
    for (const std::uint32_t range : ranges)
        end = put(end, range - std::exchange(next, range + 1));
    append(page, static_cast<std::uint64_t>(end - m_list.data()));
    page.insert(page.end(), m_list.data(), end);
}

std::vector<OffsetIndexPage> OffsetIndexPacker::finish() {
    end();
    return std::move(m_pages);
}

std::optional<std::vector<std::uint32_t>> rangesOfBucket(std::span<const std::byte> page, std::uint32_t firstBucket,
                                                         std::uint32_t bucket, std::size_t ranges) {
    auto reader = NumberReader::open(page);
    if (!reader || firstBucket > bucket)
        return std::nullopt;
    std::uint64_t current = firstBucket;
    while (!reader->isAtEnd()) {
        const auto distance = reader->next();
        const auto size = reader->next();
        if (!distance || !size || *distance >= kOffsetIndexBuckets - current)
            return std::nullopt;
        current += *distance;
        const auto list = reader->take(*size);
        if (!list)
            return std::nullopt;
        if (current == bucket && *size == kUnlisted)
            return std::nullopt;
        if (current == bucket)
            return listOf(*list, ranges);
        if (current > bucket)
            break;
        ++current;
    }
    return std::vector<std::uint32_t>();
}

std::vector<std::byte> packOffsets(std::span<const std::int64_t> offsets) {
    std::vector<std::byte> bytes(kChecksumBytes);
    std::int64_t before = 0;
    for (const std::int64_t offset : offsets)
        append(bytes, static_cast<std::uint64_t>(offset - std::exchange(before, offset)));
    seal(bytes);
    return bytes;
}

std::optional<std::vector<std::int64_t>> unpackOffsets(std::span<const std::byte> bytes) {
    auto reader = NumberReader::open(bytes);
    if (!reader)
        return std::nullopt;
    std::vector<std::int64_t> offsets;
    std::uint64_t offset = 0;
    while (!reader->isAtEnd()) {
        const auto distance = reader->next();
        constexpr auto kMost = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
        if (!distance || *distance > kMost - offset)
            return std::nullopt;
        offset += *distance;
        offsets.push_back(static_cast<std::int64_t>(offset));
    }
    return offsets;
}

} // namespace tavix::repository
