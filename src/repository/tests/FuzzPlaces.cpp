#include "repository/tests/FuzzPlaces.h"

#include "repository/PlacePages.h"
#include "repository/tests/HoldsOrAborts.h"

#include <xxhash.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <map>
#include <optional>
#include <utility>
#include <vector>

namespace tavix::repository {

namespace {

using Bytes = std::span<const std::byte>;
using List = std::vector<std::uint32_t>;

// As docs/formats/offset-index.md has it.
constexpr std::size_t kSeal = 8;
constexpr std::size_t kPage = std::size_t{32} << 10;

/// Numbers that the fuzzer chooses; 0 when its bytes are used up.
class Choices {
  public:
    explicit Choices(Bytes bytes) : m_bytes(bytes) {}

    [[nodiscard]] bool isEmpty() const { return m_bytes.empty(); }
    [[nodiscard]] Bytes rest() const { return m_bytes; }
    std::uint32_t byte() { return static_cast<std::uint32_t>(take<std::uint8_t>()); }
    std::uint32_t two() { return static_cast<std::uint32_t>(take<std::uint16_t>()); }
    std::uint64_t eight() { return take<std::uint64_t>(); }

  private:
    template <typename Number>
    Number take() {
        Number number = 0;
        const std::size_t size = std::min(sizeof number, m_bytes.size());
        if (size > 0)
            std::memcpy(&number, m_bytes.data(), size);
        m_bytes = m_bytes.subspan(size);
        return number;
    }

    Bytes m_bytes;
};

/// The bytes as they are, and behind the seal that they need.
void asTheyAreAndSealed(Bytes bytes, void (*check)(Bytes, Choices), Choices choices) {
    check(bytes, choices);
    std::vector<std::byte> sealed(kSeal);
    sealed.insert(sealed.end(), bytes.begin(), bytes.end());
    const std::uint64_t seal = XXH3_64bits(bytes.data(), bytes.size());
    std::memcpy(sealed.data(), &seal, kSeal);
    check(sealed, choices);
}

bool isSealed(Bytes bytes) {
    std::uint64_t seal = 0;
    if (bytes.size() < kSeal)
        return false;
    std::memcpy(&seal, bytes.data(), kSeal);
    return seal == XXH3_64bits(bytes.data() + kSeal, bytes.size() - kSeal);
}

/// The number at `at`, which is moved behind it; nothing when it does not end or does not fit.
std::optional<std::uint64_t> numberAt(Bytes bytes, std::size_t& at) {
    std::uint64_t number = 0;
    for (unsigned shift = 0; at < bytes.size(); shift += 7) {
        const auto byte = static_cast<std::uint64_t>(bytes[at++]);
        const std::uint64_t seven = byte & 0x7F;
        if (shift > 63 || seven << shift >> shift != seven)
            return std::nullopt;
        number |= seven << shift;
        if (byte < 0x80)
            return number;
    }
    return std::nullopt;
}

/// Nothing when they are not listed, or not in bounds.
std::optional<List> listIn(Bytes bytes, std::size_t ranges) {
    if (bytes.empty())
        return std::nullopt;
    List list;
    for (std::size_t at = 0; at < bytes.size();) {
        const auto distance = numberAt(bytes, at);
        const std::size_t first = list.empty() ? 0 : std::size_t{list.back()} + 1;
        if (!distance || first >= ranges || *distance >= ranges - first)
            return std::nullopt;
        list.push_back(static_cast<std::uint32_t>(first + *distance));
    }
    return list;
}

/// All lists of a page, as far as it can be read.
struct SlowPage {
    std::map<std::uint32_t, std::optional<List>> lists;
    bool isWhole = false;

    [[nodiscard]] std::optional<List> listOf(std::uint32_t bucket) const {
        const auto next = lists.lower_bound(bucket);
        if (next == lists.end())
            return isWhole ? std::optional(List()) : std::nullopt;
        return next->first == bucket ? next->second : List();
    }
};

SlowPage readSlowly(Bytes page, std::uint32_t firstBucket, std::size_t ranges) {
    SlowPage result;
    std::uint64_t next = firstBucket;
    for (std::size_t at = kSeal; at < page.size();) {
        const auto distance = numberAt(page, at);
        const auto size = distance ? numberAt(page, at) : std::nullopt;
        if (!size || next >= kPlaceBuckets || *distance >= kPlaceBuckets - next || *size > page.size() - at)
            return result;
        next += *distance;
        const auto taken = static_cast<std::size_t>(*size);
        result.lists[static_cast<std::uint32_t>(next++)] = listIn(page.subspan(at, taken), ranges);
        at += taken;
    }
    result.isWhole = true;
    return result;
}

void checkPage(Bytes page, Choices choices) {
    const std::uint32_t firstBucket = choices.two();
    const std::size_t ranges = choices.two();
    const bool isGood = isSealed(page);
    const SlowPage slow = isGood ? readSlowly(page, firstBucket, ranges) : SlowPage();
    const auto check = [&](std::uint32_t bucket) {
        const auto list = rangesOfBucket(page, firstBucket, bucket, ranges);
        const bool isBefore = bucket < firstBucket;
        holdsOrAborts(list == (isGood && !isBefore ? slow.listOf(bucket) : std::nullopt),
                      "a list is not what the slow reader reads");
        holdsOrAborts(!list || list->empty() || list->back() < ranges, "a range that there is not");
        holdsOrAborts(!list || std::adjacent_find(list->begin(), list->end(), std::greater_equal()) == list->end(),
                      "ranges do not ascend");
    };
    check(0);
    check(firstBucket);
    check(kPlaceBuckets - 1);
    constexpr std::size_t kMostChecked = 32;
    const std::size_t step = slow.lists.size() / kMostChecked + 1;
    std::size_t i = 0;
    for (auto list = slow.lists.begin(); list != slow.lists.end(); ++list, ++i)
        if (i % step == 0 || std::next(list) == slow.lists.end()) {
            check(list->first);
            check(std::min(list->first + 1, kPlaceBuckets - 1));
        }
}

void checkOffsets(Bytes bytes, Choices) {
    const auto offsets = unpackOffsets(bytes);
    std::optional<std::vector<std::int64_t>> expected;
    if (isSealed(bytes))
        expected.emplace();
    for (std::size_t at = kSeal; expected && at < bytes.size();) {
        const auto distance = numberAt(bytes, at);
        const std::int64_t before = expected->empty() ? 0 : expected->back();
        if (distance && *distance <= static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max() - before))
            expected->push_back(before + static_cast<std::int64_t>(*distance));
        else
            expected.reset();
    }
    holdsOrAborts(offsets == expected, "offsets are not what the slow reader reads");
    if (!offsets)
        return;
    holdsOrAborts(std::is_sorted(offsets->begin(), offsets->end()) && (offsets->empty() || offsets->front() >= 0),
                  "offsets do not ascend");
    const std::vector<std::byte> again = packOffsets(*offsets);
    holdsOrAborts(again.size() <= bytes.size() && unpackOffsets(again) == offsets, "offsets changed by packing");
}

/// The ranges of buckets; nothing for those that are to be packed as not listed.
using Lists = std::map<std::uint32_t, std::optional<List>>;

/// A list is repeated for some following buckets, so that few bytes fill pages.
Lists chosenLists(Choices choices, std::size_t ranges) {
    constexpr std::size_t kMostNumbers = 200'000;
    Lists lists;
    std::size_t numbers = 0;
    for (std::uint64_t bucket = 0; !choices.isEmpty() && numbers < kMostNumbers;) {
        bucket += std::uint64_t{choices.byte()} * choices.byte();
        const std::uint32_t size = choices.byte();
        std::optional<List> list;
        if (size < 0xFF)
            list.emplace();
        std::size_t next = 0;
        for (std::uint32_t i = 0; list && i < size; ++i) {
            next += std::size_t{choices.byte()} * (i % 8 == 0 ? 16U : 1U);
            if (next < ranges)
                list->push_back(static_cast<std::uint32_t>(next++));
        }
        const std::uint32_t last = choices.byte();
        for (std::uint32_t i = 0; i <= last && bucket < kPlaceBuckets; ++i, ++bucket) {
            lists.emplace_hint(lists.end(), static_cast<std::uint32_t>(bucket), list);
            numbers += 1 + (list ? list->size() : 0);
        }
    }
    return lists;
}

/// Whether the pages say of the bucket what was packed.
void checkPacked(const std::vector<PlacePage>& pages, const Lists& lists, std::uint32_t bucket, std::size_t ranges) {
    const auto behind = std::upper_bound(pages.begin(), pages.end(), bucket,
                                         [](std::uint32_t b, const PlacePage& page) { return b < page.firstBucket; });
    const PlacePage& page = *std::prev(behind);
    const auto list = rangesOfBucket(page.bytes, page.firstBucket, bucket, ranges);
    const auto packed = lists.find(bucket);
    if (packed == lists.end())
        holdsOrAborts(list == List(), "a bucket without a list has one");
    else if (!packed->second)
        holdsOrAborts(!list, "a list where there is none");
    else if (packed->second->size() <= ranges / 4)
        holdsOrAborts(list == packed->second, "a list changed by packing");
    else
        holdsOrAborts(!list, "a long list is listed");
}

void packLists(Choices choices) {
    const std::size_t ranges = choices.two() % 4096 + std::size_t{1};
    const Lists lists = chosenLists(choices, ranges);
    PlacePacker packer(ranges);
    for (const auto& [bucket, list] : lists)
        if (list)
            packer.add(bucket, *list);
        else
            packer.addUnlisted(bucket);
    const std::vector<PlacePage> pages = packer.finish();
    holdsOrAborts(!pages.empty() && pages.front().firstBucket == 0, "the first page is not that of bucket 0");
    for (std::size_t i = 0; i < pages.size(); ++i) {
        holdsOrAborts(pages[i].bytes.size() < 2 * kPage && (i + 1 == pages.size() || pages[i].bytes.size() >= kPage),
                      "a page of another size");
        holdsOrAborts(i == 0 || pages[i - 1].firstBucket < pages[i].firstBucket, "pages do not ascend");
        checkPacked(pages, lists, pages[i].firstBucket, ranges);
        if (i > 0)
            checkPacked(pages, lists, pages[i].firstBucket - 1, ranges);
    }
    constexpr std::size_t kMostChecked = 64;
    const std::size_t step = lists.size() / kMostChecked + 1;
    std::size_t i = 0;
    for (const auto& [bucket, list] : lists)
        if (i++ % step == 0) {
            checkPacked(pages, lists, bucket, ranges);
            checkPacked(pages, lists, std::min(bucket + 1, kPlaceBuckets - 1), ranges);
        }
    checkPacked(pages, lists, kPlaceBuckets - 1, ranges);
}

void packChosenOffsets(Choices choices) {
    std::vector<std::int64_t> offsets;
    while (!choices.isEmpty())
        offsets.push_back(static_cast<std::int64_t>(choices.eight() >> 1));
    std::sort(offsets.begin(), offsets.end());
    holdsOrAborts(unpackOffsets(packOffsets(offsets)) == offsets, "offsets do not come back");
}

} // namespace

void fuzzPlaces(std::span<const std::byte> bytes) {
    Choices choices(bytes);
    constexpr std::uint32_t kUses = 4;
    constexpr std::size_t kPageHeader = 4; // first bucket and number of ranges, not stored with it
    switch (choices.byte() % kUses) {
    case 0: {
        const Bytes rest = choices.rest();
        asTheyAreAndSealed(rest.subspan(std::min(kPageHeader, rest.size())), checkPage, choices);
        break;
    }
    case 1:
        asTheyAreAndSealed(choices.rest(), checkOffsets, choices);
        break;
    case 2:
        packLists(choices);
        break;
    default:
        packChosenOffsets(choices);
    }
}

} // namespace tavix::repository
