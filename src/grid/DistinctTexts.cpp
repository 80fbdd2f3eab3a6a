#include "grid/DistinctTexts.h"

#include "grid/FoldCase.h"
#include "grid/RadixSort.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <deque>
#include <span>
#include <string>
#include <tuple>

namespace tavix {

namespace {

constexpr std::size_t kKeyBytes = 8;
// Shorter runs of equal keys are sorted by comparing whole texts.
constexpr std::size_t kFewTexts = 32;

std::uint64_t load(const char* bytes, std::size_t count) {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, count);
    return word;
}

std::uint64_t mix(std::uint64_t a, std::uint64_t b) {
    // The halves of a 128-bit product: every bit of both depends on every bit of the factors.
    __extension__ using Wide = unsigned __int128;
    const Wide product = static_cast<Wide>(a) * b;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

std::uint64_t hashOf(std::string_view text) {
    constexpr std::uint64_t kFirst = 0x9E3779B97F4A7C15;
    constexpr std::uint64_t kSecond = 0xD6E8FEB86659FD93;
    std::uint64_t hash = mix(text.size() ^ kFirst, kSecond);
    const char* at = text.data();
    std::size_t left = text.size();
    for (; left > kKeyBytes; left -= kKeyBytes, at += kKeyBytes)
        hash = mix(hash ^ load(at, kKeyBytes), kFirst);
    if (left > 0)
        hash = mix(hash ^ load(at, left), kSecond);
    return hash;
}

bool isFolded(std::string_view text) {
    return std::none_of(text.begin(), text.end(),
                        [](char c) { return (c >= 'A' && c <= 'Z') || static_cast<unsigned char>(c) >= 0x80; });
}

// Eight bytes of the text from an offset on, the first the most significant; zeros after the text's end.
std::uint64_t keyAt(std::string_view text, std::size_t offset) {
    if (offset >= text.size())
        return 0;
    const std::uint64_t word = load(text.data() + offset, std::min(kKeyBytes, text.size() - offset));
    if constexpr (std::endian::native == std::endian::little)
        return __builtin_bswap64(word);
    else
        return word;
}

// Sorts text numbers by eight bytes at a time: runs that share them are sorted by the next eight.
class TextSorter {
  public:
    TextSorter(const std::vector<std::string_view>& folded, const std::vector<std::string_view>& texts)
        : m_folded(folded), m_texts(texts) {}

    std::vector<RadixItem> sort() {
        std::vector<RadixItem> items(m_texts.size());
        for (std::uint32_t i = 0; i < items.size(); ++i)
            items[i].id = i;
        std::vector<Run> runs = {{0, items.size(), 0}};
        while (!runs.empty()) {
            const Run run = runs.back();
            runs.pop_back();
            sortRun(std::span(items).subspan(run.begin, run.size), run, runs);
        }
        return items;
    }

  private:
    struct Run {
        std::size_t begin;
        std::size_t size;
        std::size_t offset; ///< bytes that all texts of the run share
    };

    void sortRun(std::span<RadixItem> items, const Run& run, std::vector<Run>& further) {
        const bool ended = std::all_of(items.begin(), items.end(), [this, &run](const RadixItem& item) {
            return m_folded[item.id].size() <= run.offset;
        });
        if (items.size() < kFewTexts || ended) {
            std::sort(items.begin(), items.end(), [this, &run](const RadixItem& a, const RadixItem& b) {
                const std::string_view left = m_folded[a.id].substr(std::min(run.offset, m_folded[a.id].size()));
                const std::string_view right = m_folded[b.id].substr(std::min(run.offset, m_folded[b.id].size()));
                return left != right
                           ? left < right
                           : std::tie(m_folded[a.id], m_texts[a.id]) < std::tie(m_folded[b.id], m_texts[b.id]);
            });
            return;
        }
        for (RadixItem& item : items)
            item.key = keyAt(m_folded[item.id], run.offset);
        radixSort(items, m_spare);
        for (std::size_t begin = 0; begin < items.size();) {
            std::size_t end = begin + 1;
            while (end < items.size() && items[end].key == items[begin].key)
                ++end;
            if (end - begin > 1)
                further.push_back({run.begin + begin, end - begin, run.offset + kKeyBytes});
            begin = end;
        }
    }

    const std::vector<std::string_view>& m_folded;
    const std::vector<std::string_view>& m_texts;
    std::vector<RadixItem> m_spare;
};

} // namespace

std::uint32_t DistinctTexts::add(std::string_view text) {
    // At most half full, which keeps probes short.
    if (m_entries.size() * 2 >= m_slots.size())
        grow();
    const std::uint64_t hash = hashOf(text);
    const std::size_t mask = m_slots.size() - 1;
    std::size_t slot = static_cast<std::size_t>(hash) & mask;
    for (; m_slots[slot] != 0; slot = (slot + 1) & mask) {
        const Entry& entry = m_entries[m_slots[slot] - 1];
        if (entry.hash == hash && entry.text == text)
            return m_slots[slot] - 1;
    }
    m_entries.push_back({text, hash});
    m_slots[slot] = static_cast<std::uint32_t>(m_entries.size());
    return static_cast<std::uint32_t>(m_entries.size() - 1);
}

void DistinctTexts::grow() {
    m_slots.assign(std::max<std::size_t>(1024, m_slots.size() * 4), 0);
    const std::size_t mask = m_slots.size() - 1;
    for (std::uint32_t number = 0; number < m_entries.size(); ++number) {
        std::size_t slot = static_cast<std::size_t>(m_entries[number].hash) & mask;
        while (m_slots[slot] != 0)
            slot = (slot + 1) & mask;
        m_slots[slot] = number + 1;
    }
}

std::vector<std::uint32_t> DistinctTexts::ranks() const {
    std::deque<std::string> made;
    std::vector<std::string_view> texts;
    std::vector<std::string_view> folded;
    texts.reserve(m_entries.size());
    folded.reserve(m_entries.size());
    for (const Entry& entry : m_entries) {
        texts.push_back(entry.text);
        folded.push_back(isFolded(entry.text) ? entry.text : std::string_view(made.emplace_back(foldCase(entry.text))));
    }
    std::vector<std::uint32_t> ranks(m_entries.size());
    std::uint32_t rank = 0;
    for (const RadixItem& item : TextSorter(folded, texts).sort())
        ranks[item.id] = rank++;
    return ranks;
}

} // namespace tavix
