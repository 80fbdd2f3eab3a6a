#include "profiling/ValueOrder.h"

#include <algorithm>
#include <array>
#include <bit>

namespace tavix::profiling {

namespace {

/// A value's index with its place in the order as far as 64 bits tell it.
struct Keyed {
    std::uint64_t key = 0;
    std::uint32_t index = 0;
};

constexpr std::uint64_t kSignBit = std::uint64_t{1} << 63;

std::uint64_t keyOf(std::int64_t value) {
    return static_cast<std::uint64_t>(value) ^ kSignBit;
}

std::uint64_t keyOf(double value) {
    const auto bits = std::bit_cast<std::uint64_t>(value == 0.0 ? 0.0 : value);
    return (bits & kSignBit) != 0 ? ~bits : bits | kSignBit;
}

/// The first eight bytes, so that most comparisons never touch the text.
std::uint64_t prefixOf(std::string_view text) {
    std::array<char, 8> bytes{};
    std::copy_n(text.data(), std::min(text.size(), bytes.size()), bytes.data());
    std::uint64_t word = 0;
    for (const char byte : bytes)
        word = word << 8 | static_cast<unsigned char>(byte);
    return word;
}

std::vector<std::uint32_t> indexesOf(const std::vector<Keyed>& keyed) {
    std::vector<std::uint32_t> order(keyed.size());
    std::transform(keyed.begin(), keyed.end(), order.begin(), [](const Keyed& k) { return k.index; });
    return order;
}

std::vector<std::uint32_t> participants(Entries entries, std::span<const std::uint32_t> byText) {
    std::vector<std::uint32_t> order;
    order.reserve(byText.size());
    for (const std::uint32_t index : byText)
        if (const auto text = entries[index].text(); !text.empty() && !isBlank(text))
            order.push_back(index);
    return order;
}

template <typename KeyOfText>
std::vector<std::uint32_t> orderByKey(Entries entries, const std::vector<std::uint32_t>& byText,
                                      const KeyOfText& keyOfText) {
    std::vector<Keyed> keyed(byText.size());
    for (std::size_t i = 0; i < byText.size(); ++i)
        keyed[i] = {keyOfText(entries[byText[i]].text()), static_cast<std::uint32_t>(i)};
    // Equal keys stay in the order of the texts.
    std::sort(keyed.begin(), keyed.end(),
              [](const Keyed& a, const Keyed& b) { return a.key != b.key ? a.key < b.key : a.index < b.index; });
    std::vector<std::uint32_t> order(keyed.size());
    std::transform(keyed.begin(), keyed.end(), order.begin(), [&](const Keyed& k) { return byText[k.index]; });
    return order;
}

std::vector<std::uint32_t> orderIntegers(Entries entries, std::vector<std::uint32_t> byText) {
    const bool fit = std::all_of(byText.begin(), byText.end(),
                                 [&](std::uint32_t i) { return integerValue(entries[i].text()).has_value(); });
    if (fit)
        return orderByKey(entries, byText, [](std::string_view text) { return keyOf(*integerValue(text)); });
    std::stable_sort(byText.begin(), byText.end(), [&](std::uint32_t a, std::uint32_t b) {
        return compareIntegers(entries[a].text(), entries[b].text()) < 0;
    });
    return byText;
}

} // namespace

std::vector<std::uint32_t> orderByText(Entries entries) {
    std::vector<Keyed> keyed(entries.size());
    for (std::size_t i = 0; i < entries.size(); ++i)
        keyed[i] = {prefixOf(entries[i].text()), static_cast<std::uint32_t>(i)};
    std::sort(keyed.begin(), keyed.end(), [&](const Keyed& a, const Keyed& b) {
        return a.key != b.key ? a.key < b.key : entries[a.index].text() < entries[b.index].text();
    });
    return indexesOf(keyed);
}

std::vector<std::uint32_t> orderByCount(Entries entries, std::span<const std::uint32_t> byText) {
    // Most counts are small: those are dealt into buckets, and only the few large ones sorted.
    constexpr std::uint64_t kBuckets = 256;
    std::array<std::size_t, kBuckets> starts{};
    std::vector<std::uint32_t> order;
    order.reserve(byText.size());
    for (const std::uint32_t index : byText) {
        const std::uint64_t count = entries[index].count;
        if (count < kBuckets)
            ++starts[kBuckets - 1 - count];
        else
            order.push_back(index);
    }
    std::stable_sort(order.begin(), order.end(),
                     [&](std::uint32_t a, std::uint32_t b) { return entries[a].count > entries[b].count; });
    std::size_t next = order.size();
    for (std::size_t& start : starts) {
        const std::size_t size = start;
        start = next;
        next += size;
    }
    order.resize(byText.size());
    for (const std::uint32_t index : byText)
        if (const std::uint64_t count = entries[index].count; count < kBuckets)
            order[starts[kBuckets - 1 - count]++] = index;
    return order;
}

std::vector<std::uint32_t> orderByValue(Entries entries, std::span<const std::uint32_t> byText, ValueKind kind) {
    switch (kind) {
    case ValueKind::Boolean:
        return orderByKey(entries, participants(entries, byText),
                          [](std::string_view text) { return booleanValue(text) ? std::uint64_t{1} : 0; });
    case ValueKind::Integer:
        return orderIntegers(entries, participants(entries, byText));
    case ValueKind::Real:
        return orderByKey(entries, participants(entries, byText),
                          [](std::string_view text) { return keyOf(realValue(text)); });
    case ValueKind::Date:
        return orderByKey(entries, participants(entries, byText),
                          [](std::string_view text) { return keyOf(dateValue(text)); });
    case ValueKind::None:
    case ValueKind::Text:
        break;
    }
    return {byText.begin(), byText.end()};
}

} // namespace tavix::profiling
