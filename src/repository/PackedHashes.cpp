#include "repository/PackedHashes.h"

#include "repository/BlockFormat.h"
#include "repository/PackedField.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <bit>

namespace tavix::repository {

namespace {

constexpr std::uint8_t kVersion = 1;
/// Measured on random hashes: groups of 32 save half a percent for four times as many loops; groups of 256 take a
/// thousandth more.
constexpr std::size_t kGroup = 128;
constexpr std::size_t kWord = sizeof(std::uint64_t);

struct HashesHeader {
    std::uint8_t version = kVersion;
    std::array<std::uint8_t, 3> reserved{};
    std::uint32_t count = 0;
    std::uint64_t first = 0;
    std::uint64_t checksum = 0;
};
static_assert(sizeof(HashesHeader) == kHeaderSize && offsetof(HashesHeader, checksum) == kChecked);

std::size_t bytesOf(std::size_t numbers, std::size_t width) {
    return (numbers * width + 7) / 8;
}

/// Writes numbers of `width` bits one after the other, starting at the lowest bit of a byte. Writes up to a word beyond
/// the end.
void packBits(std::span<const std::uint64_t> numbers, unsigned width, std::byte* target) {
    std::uint64_t word = 0;
    unsigned filled = 0;
    for (const std::uint64_t number : numbers) {
        word |= number << filled;
        filled += width;
        if (filled < 64)
            continue;
        storeAs<std::uint64_t>(target, 0, word);
        target += kWord;
        filled -= 64;
        // The rest that did not fit; shifting by all 64 bits would be undefined.
        word = filled == 0 ? 0 : number >> (width - filled);
    }
    storeAs<std::uint64_t>(target, 0, word);
}

/// Reads these numbers; a word after the last one must be readable.
void unpackBits(const std::byte* source, unsigned width, std::span<std::uint64_t> numbers) {
    const std::uint64_t mask = width == 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << width) - 1;
    std::size_t bit = 0;
    for (std::uint64_t& number : numbers) {
        const std::byte* const place = source + bit / 8;
        const unsigned shift = bit % 8;
        std::uint64_t word = loadAs<std::uint64_t>(place) >> shift;
        if (shift + width > 64)
            word |= loadAs<std::uint64_t>(place + kWord) << (64 - shift);
        number = word & mask;
        bit += width;
    }
}

Error damaged() {
    return Error{"Stored hashes are damaged."};
}

Result<std::vector<std::uint64_t>> readPlain(std::span<const std::byte> bytes) {
    std::vector<std::uint64_t> hashes(bytes.size() / kWord);
    if (hashes.size() > kHashesPerChunk)
        return damaged();
    if (!hashes.empty())
        std::memcpy(hashes.data(), bytes.data(), bytes.size());
    if (!std::is_sorted(hashes.begin(), hashes.end()))
        return damaged();
    return hashes;
}

} // namespace

std::vector<std::byte> packSortedHashes(std::span<const std::uint64_t> hashes) {
    HashesHeader header;
    header.count = static_cast<std::uint32_t>(hashes.size());
    header.first = hashes.empty() ? 0 : hashes.front();
    const std::size_t differences = hashes.empty() ? 0 : hashes.size() - 1;
    // Space for the widest groups: 64 bits each, a width each, and a word after the last.
    std::vector<std::byte> packed(sizeof header + differences * kWord + differences / kGroup + 1 + 2 * kWord);
    std::byte* place = packed.data() + sizeof header;
    std::array<std::uint64_t, kGroup> group{};
    for (std::size_t done = 0; done < differences; done += kGroup) {
        const std::size_t size = std::min(kGroup, differences - done);
        std::uint64_t all = 0;
        for (std::size_t i = 0; i < size; ++i) {
            group[i] = hashes[done + i + 1] - hashes[done + i];
            all |= group[i];
        }
        const auto width = static_cast<unsigned>(std::bit_width(all));
        *place++ = static_cast<std::byte>(width);
        packBits(std::span(group).first(size), width, place);
        place += bytesOf(size, width);
    }
    auto size = static_cast<std::size_t>(place - packed.data());
    if (size % kWord == 0)
        packed[size++] = std::byte{0};
    packed.resize(size);
    std::memcpy(packed.data(), &header, sizeof header);
    header.checksum = checksumOf(packed);
    std::memcpy(packed.data(), &header, sizeof header);
    return packed;
}

Result<std::vector<std::uint64_t>> unpackHashes(std::span<const std::byte> bytes) {
    if (bytes.size() % kWord == 0)
        return readPlain(bytes);
    HashesHeader header;
    if (bytes.size() < sizeof header)
        return damaged();
    std::memcpy(&header, bytes.data(), sizeof header);
    if (header.checksum != checksumOf(bytes))
        return damaged();
    if (header.version != kVersion)
        return Error{fmt::format("Stored hashes have the form {}, which this program does not know.", header.version)};
    // A group takes at least a byte.
    if (header.count > kHashesPerChunk || header.count > 1 + (bytes.size() - sizeof header) * kGroup)
        return damaged();

    std::vector<std::uint64_t> hashes(header.count);
    if (!hashes.empty())
        hashes.front() = header.first;
    std::array<std::uint64_t, kGroup> group{};
    std::array<std::byte, (kGroup + 2) * kWord> copy{};
    std::span<const std::byte> rest = bytes.subspan(sizeof header);
    for (std::size_t done = 1; done < hashes.size(); done += kGroup) {
        const std::size_t size = std::min(kGroup, hashes.size() - done);
        if (rest.empty())
            return damaged();
        const auto width = std::to_integer<unsigned>(rest.front());
        rest = rest.subspan(1);
        const std::size_t stored = bytesOf(size, width);
        if (width > 64 || stored > rest.size())
            return damaged();
        // If two words after the group are not readable, decode a padded copy.
        const std::byte* source = rest.data();
        if (rest.size() < stored + 2 * kWord) {
            std::memcpy(copy.data(), source, stored);
            source = copy.data();
        }
        unpackBits(source, width, std::span(group).first(size));
        std::uint64_t hash = hashes[done - 1];
        for (std::size_t i = 0; i < size; ++i) {
            hash += group[i];
            if (hash < group[i])
                return damaged();
            hashes[done + i] = hash;
        }
        rest = rest.subspan(stored);
    }
    const std::size_t end = bytes.size() - rest.size();
    if (rest.size() != (end % kWord == 0 ? 1U : 0U))
        return damaged();
    return hashes;
}

} // namespace tavix::repository
