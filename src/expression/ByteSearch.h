#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace tavix::expression {

/// Finds a fixed byte string again and again. In time linear in the text, whatever the two are.
class ByteSearch {
  public:
    static constexpr std::size_t kNotFound = std::string_view::npos;

    explicit ByteSearch(std::string_view needle) : m_needle(needle) {}

    [[nodiscard]] const std::string& needle() const { return m_needle; }

    /// The first occurrence in `text` at or behind `from`.
    [[nodiscard]] std::size_t find(std::string_view text, std::size_t from = 0) const {
        const std::size_t size = m_needle.size();
        if (text.size() < size || from > text.size() - size)
            return kNotFound;
        if (size == 0)
            return from;
        if (size > kShort)
            return findLong(text, from);
        const std::size_t end = text.size() - size + 1; // behind the last place where it can begin
        std::size_t at = from;
#if defined(__SSE2__)
        // The first and the last byte are compared at sixteen places at once; what lies between decides few of them.
        const __m128i first = _mm_set1_epi8(m_needle.front());
        const __m128i last = _mm_set1_epi8(m_needle.back());
        for (; at + 16 <= end; at += 16) {
            const char* const place = text.data() + at;
            const __m128i begins = _mm_cmpeq_epi8(first, load(place));
            const __m128i ends = _mm_cmpeq_epi8(last, load(place + size - 1));
            auto hits = static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_and_si128(begins, ends)));
            for (; hits != 0; hits &= hits - 1) {
                const auto hit = static_cast<std::size_t>(__builtin_ctz(hits));
                if (isAt(place + hit))
                    return at + hit;
            }
        }
#endif
        for (; at < end; ++at) {
            if (text[at] == m_needle.front() && isAt(text.data() + at))
                return at;
        }
        return kNotFound;
    }

    /// Calls with each place of a needle that is a single byte.
    template <typename Visit>
    void forEachByte(std::string_view text, Visit visit) const {
        const char byte = m_needle.front();
        std::size_t at = 0;
#if defined(__SSE2__)
        const __m128i wanted = _mm_set1_epi8(byte);
        for (; at + 16 <= text.size(); at += 16) {
            auto hits = static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(wanted, load(text.data() + at))));
            for (; hits != 0; hits &= hits - 1)
                visit(at + static_cast<std::size_t>(__builtin_ctz(hits)));
        }
#endif
        for (; at < text.size(); ++at) {
            if (text[at] == byte)
                visit(at);
        }
    }

    /// The first occurrence in a text behind which, up to `readable`, lie bytes that may be read.
    [[nodiscard]] std::size_t findIn(std::string_view text, [[maybe_unused]] const char* readable) const {
        const std::size_t size = m_needle.size();
        if (text.size() < size || size == 0)
            return size == 0 ? 0 : kNotFound;
#if defined(__SSE2__)
        // Most values are short, and then all places are compared at once, without a loop.
        if (areComparedAtOnce(text, readable)) {
            for (std::uint32_t hits = placesIn(text); hits != 0; hits &= hits - 1) {
                const auto hit = static_cast<std::size_t>(__builtin_ctz(hits));
                if (size <= 2 || isAt(text.data() + hit))
                    return hit;
            }
            return kNotFound;
        }
#endif
        return find(text);
    }

    /// Whether it occurs there.
    [[nodiscard]] bool occursIn(std::string_view text, const char* readable) const {
#if defined(__SSE2__)
        const std::size_t size = m_needle.size();
        if (size > 0 && size <= 2 && text.size() >= size && areComparedAtOnce(text, readable))
            return placesIn(text) != 0;
#endif
        return findIn(text, readable) != kNotFound;
    }

  private:
    /// Up to here comparing at every place that looks right costs no more than a bounded number of steps a byte.
    static constexpr std::size_t kShort = 32;

#if defined(__SSE2__)
    static __m128i load(const char* bytes) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
    }
#endif
#if defined(__SSE2__)
    [[nodiscard]] bool areComparedAtOnce(std::string_view text, const char* readable) const {
        const std::size_t size = m_needle.size();
        return text.size() - size + 1 <= 16 && size <= kShort &&
               static_cast<std::size_t>(readable - text.data()) >= size + 15;
    }
    /// A bit for each place at which the first and the last byte are right.
    [[nodiscard]] std::uint32_t placesIn(std::string_view text) const {
        const std::size_t size = m_needle.size();
        const __m128i begins = _mm_cmpeq_epi8(_mm_set1_epi8(m_needle.front()), load(text.data()));
        const __m128i ends = _mm_cmpeq_epi8(_mm_set1_epi8(m_needle.back()), load(text.data() + size - 1));
        const auto hits = static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_and_si128(begins, ends)));
        return hits & ((1U << (text.size() - size + 1)) - 1);
    }
#endif
    [[nodiscard]] bool isAt(const char* place) const {
        return m_needle.size() <= 2 ? place[m_needle.size() - 1] == m_needle.back()
                                    : std::memcmp(place + 1, m_needle.data() + 1, m_needle.size() - 1) == 0;
    }
    [[nodiscard]] std::size_t findLong(std::string_view text, std::size_t from) const {
        const void* const found = memmem(text.data() + from, text.size() - from, m_needle.data(), m_needle.size());
        return found ? static_cast<std::size_t>(static_cast<const char*>(found) - text.data()) : kNotFound;
    }

    std::string m_needle;
};

} // namespace tavix::expression
