#pragma once

#include <cstddef>
#include <cstdint>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace tavix::source {

/// 64 bytes of text, for finding the positions of a byte in them.
class ByteWindow {
  public:
    static constexpr std::size_t kSize = 64;

    /// Reads the 64 bytes at `p`.
    explicit ByteWindow(const char* p) {
#ifdef __SSE2__
        for (unsigned i = 0; i < 4; ++i)
            m_parts[i] = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + i * std::size_t{16}));
#else
        m_text = p;
#endif
    }

    /// Bit i: byte i is `byte`.
    [[nodiscard]] std::uint64_t positionsOf(char byte) const {
        std::uint64_t mask = 0;
#ifdef __SSE2__
        const __m128i wanted = _mm_set1_epi8(byte);
        for (unsigned i = 0; i < 4; ++i) {
            const auto part = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(m_parts[i], wanted)));
            mask |= static_cast<std::uint64_t>(part) << (i * 16);
        }
#else
        for (unsigned i = 0; i < kSize; ++i)
            mask |= static_cast<std::uint64_t>(m_text[i] == byte) << i;
#endif
        return mask;
    }

    /// Bit i: byte i of this window is `byte` and byte i of the other is `otherByte`.
    [[nodiscard]] std::uint64_t positionsOf(char byte, const ByteWindow& other, char otherByte) const {
#ifdef __SSE2__
        std::uint64_t mask = 0;
        const __m128i wanted = _mm_set1_epi8(byte);
        const __m128i otherWanted = _mm_set1_epi8(otherByte);
        for (unsigned i = 0; i < 4; ++i) {
            const __m128i both =
                _mm_and_si128(_mm_cmpeq_epi8(m_parts[i], wanted), _mm_cmpeq_epi8(other.m_parts[i], otherWanted));
            mask |= static_cast<std::uint64_t>(static_cast<unsigned>(_mm_movemask_epi8(both))) << (i * 16);
        }
        return mask;
#else
        return positionsOf(byte) & other.positionsOf(otherByte);
#endif
    }

  private:
#ifdef __SSE2__
    __m128i m_parts[4];
#else
    const char* m_text;
#endif
};

} // namespace tavix::source
