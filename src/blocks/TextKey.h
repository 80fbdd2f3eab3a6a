#pragma once

#include "blocks/RowSet.h"
#include "blocks/Vector.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace tavix::expression {

/// The first eight bytes of a text as a number, padded with zeros: the numbers have the order of the texts, and texts
/// with equal numbers must be compared further. `readable`: the end of the memory after the text that may be read; null
/// when unknown.
inline std::uint64_t textKey(std::string_view text, const char* readable) {
    constexpr std::size_t kBytes = 8;
    static_assert(std::endian::native == std::endian::little);
    std::uint64_t bytes = 0;
    // Branch-free, since it is unpredictable whether a text has eight bytes.
    if (text.data() && readable && readable - text.data() >= static_cast<std::ptrdiff_t>(kBytes)) {
        static constexpr std::uint64_t kAll = ~std::uint64_t{0};
        static constexpr std::array<std::uint64_t, kBytes + 1> kKept{
            0, kAll << 56, kAll << 48, kAll << 40, kAll << 32, kAll << 24, kAll << 16, kAll << 8, kAll};
        std::memcpy(&bytes, text.data(), kBytes);
        return __builtin_bswap64(bytes) & kKept[std::min(text.size(), kBytes)];
    }
    if (text.size() >= kBytes) {
        std::memcpy(&bytes, text.data(), kBytes);
        return __builtin_bswap64(bytes);
    }
    for (std::size_t i = 0; i < text.size(); ++i)
        bytes |= std::uint64_t{static_cast<unsigned char>(text[i])} << (kBytes - 1 - i) * 8;
    return bytes;
}

/// The last eight bytes of a text as a number, for equality only; 0 for a shorter text.
inline std::uint64_t textTail(std::string_view text, const char* readable) {
    constexpr std::size_t kBytes = 8;
    std::uint64_t bytes = 0;
    if (text.data() && readable && readable - text.data() >= static_cast<std::ptrdiff_t>(kBytes)) {
        std::memcpy(&bytes, text.data() + (std::max(text.size(), kBytes) - kBytes), kBytes);
        return bytes & (std::uint64_t{0} - (text.size() >= kBytes ? 1U : 0U));
    }
    if (text.size() >= kBytes)
        std::memcpy(&bytes, text.data() + (text.size() - kBytes), kBytes);
    return bytes;
}

/// A constant that many texts are compared with.
class KeyedText {
  public:
    explicit KeyedText(std::string_view text) : m_text(text), m_key(textKey(text, nullptr)) {}

    [[nodiscard]] std::uint64_t key() const { return m_key; }
    [[nodiscard]] std::size_t size() const { return m_text.size(); }
    [[nodiscard]] bool equals(std::string_view text, std::uint64_t key) const {
        return static_cast<int>(key == m_key) + static_cast<int>(text.size() == m_text.size()) == 2 &&
               (text.size() <= 8 || std::memcmp(text.data() + 8, m_text.data() + 8, text.size() - 8) == 0);
    }
    /// Below zero when `text` comes before the constant.
    [[nodiscard]] int order(std::string_view text, std::uint64_t key) const {
        return key != m_key ? (key < m_key ? -1 : 1) : text.compare(m_text);
    }

  private:
    std::string_view m_text;
    std::uint64_t m_key;
};

/// Whether any of the rows may have a text of this size: false for many blocks when the size is rare. Reads no text.
[[nodiscard]] inline bool mayHaveSize(const Vector& vector, const RowSet& rows, std::size_t blockRows,
                                      std::size_t size) {
    if (!vector.ends || !rows.isDense())
        return true;
    // A loop without branches, which the compiler vectorizes.
    const std::uint32_t* const ends = vector.ends;
    bool isFound = blockRows > 0 && ends[0] == size;
    for (std::size_t row = 1; row < blockRows; ++row)
        isFound |= ends[row] - ends[row - 1] == size;
    return isFound;
}

} // namespace tavix::expression
