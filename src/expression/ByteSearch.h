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

/// Searches many texts for a fixed byte string, in time linear in the text.
class ByteSearch {
  public:
    static constexpr std::size_t kNotFound = std::string_view::npos;

    explicit ByteSearch(std::string_view needle) : m_needle(needle) {
#if defined(__SSE2__)
        if (!m_needle.empty()) {
            m_first = _mm_set1_epi8(m_needle.front());
            m_last = _mm_set1_epi8(m_needle.back());
        }
#endif
    }

    [[nodiscard]] const std::string& needle() const {
        return m_needle;
    }

    /// The first occurrence in `text` at `from` or later.
    [[nodiscard]] std::size_t find(std::string_view text, std::size_t from = 0) const {
        const std::size_t size = m_needle.size();
        if (text.size() < size || from > text.size() - size)
            return kNotFound;
        if (size == 0)
            return from;
        if (size > kShort)
            return findLong(text, from);
        const std::size_t end = text.size() - size + 1; // one past the last possible beginning
        std::size_t at = from;
#if defined(__SSE2__)
        // Compare the first and the last byte at sixteen offsets at once; few of the hits need the bytes between.
        const __m128i first = m_first;
        const __m128i last = m_last;
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

    /// Calls `visit` with each offset of a needle that is a single byte.
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

    /// Searches many texts within readable memory. Most values are short: all their offsets are compared at once,
    /// without a loop. A copy on the stack keeps the members in registers in a loop.
    class ShortTexts {
      public:
        [[nodiscard]] std::size_t find(std::string_view text) const {
#if defined(__SSE2__)
            if (fits(text)) {
                std::uint32_t hits = places(text);
                if (m_size > 2) {
                    while (hits != 0 && !m_search.isAt(text.data() + __builtin_ctz(hits)))
                        hits &= hits - 1;
                }
                // Branch-free, since hits are unpredictable.
                static_assert(kNotFound + 1 == 0);
                const std::size_t isFound = hits != 0 ? 1 : 0;
                return ((static_cast<std::size_t>(__builtin_ctz(hits | 0x10000U)) + 1) & (0 - isFound)) - 1;
            }
#endif
            return findElsewhere(text);
        }
        [[nodiscard]] bool occursIn(std::string_view text) const {
#if defined(__SSE2__)
            if (m_size <= 2 && fits(text))
                return places(text) != 0;
#endif
            return find(text) != kNotFound;
        }

      private:
        friend class ByteSearch;
        /// Not inlined, to leave the registers to the loops.
        [[nodiscard, gnu::noinline]] std::size_t findElsewhere(std::string_view text) const {
            return m_search.find(text);
        }
#if defined(__SSE2__)
        ShortTexts(const ByteSearch& search, const char* readable)
            : m_search(search),
              m_first(search.m_first),
              m_last(search.m_last),
              m_size(search.m_needle.size()),
              m_most(m_size > 0 && m_size <= kShort ? 16 : 0),
              m_readable(readable),
              m_reach(static_cast<std::ptrdiff_t>(m_size) + 15) {}

        [[nodiscard]] bool fits(std::string_view text) const {
            // `size - needle + 1` is 0 or wraps around for a text shorter than the needle.
            return text.size() - m_size + 1 <= m_most && m_readable - text.data() >= m_reach;
        }
        /// A bit for each offset where the first and the last byte match, which is all of a needle of up to two bytes.
        [[nodiscard]] std::uint32_t places(std::string_view text) const {
            const __m128i begins = _mm_cmpeq_epi8(m_first, load(text.data()));
            const __m128i ends = _mm_cmpeq_epi8(m_last, load(text.data() + m_size - 1));
            const auto hits = static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_and_si128(begins, ends)));
            return hits & ((1U << (text.size() - m_size + 1)) - 1);
        }

        const ByteSearch& m_search;
        __m128i m_first;
        __m128i m_last;
        std::size_t m_size;
        std::size_t m_most;
        const char* m_readable;
        std::ptrdiff_t m_reach;
#else
        ShortTexts(const ByteSearch& search, const char* /*readable*/) : m_search(search) {}

        const ByteSearch& m_search;
#endif
    };
    /// `readable`: the end of the memory after the texts that may be read. Must not outlive the search.
    [[nodiscard]] ShortTexts inShortTexts(const char* readable) const {
        return {*this, readable};
    }

  private:
    /// For needles up to this length, verifying every candidate costs a bounded number of steps for each byte.
    static constexpr std::size_t kShort = 32;

#if defined(__SSE2__)
    static __m128i load(const char* bytes) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
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
#if defined(__SSE2__)
    __m128i m_first{};
    __m128i m_last{};
#endif
};

} // namespace tavix::expression
