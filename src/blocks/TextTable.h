#pragma once

#include "blocks/TextKey.h"
#include "expression/Node.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace tavix::expression {

/// A set of constant texts for lookups, most of which fail.
class TextTable {
  public:
    /// The members must outlive the table.
    explicit TextTable(const TextSet& members) : m_members(members) {
        m_shift = 64 - static_cast<int>(std::bit_width(std::bit_ceil(members.size() * kBitsPerMember) - 1));
        m_shift = std::min(m_shift, 64 - kLeastBits);
        m_bits.resize((std::size_t{1} << (64 - m_shift)) / 64);
        for (const std::string_view member : members) {
            const std::uint64_t place = filter().placeOf(member, nullptr);
            m_bits[place / 64] |= std::uint64_t{1} << place % 64;
            m_few.emplace_back(member);
        }
        if (m_few.size() > kFew)
            m_few = {};
    }

    /// Rules out most texts that are not members by their first and last bytes. A copy on the stack of a loop stays in
    /// registers.
    class Filter {
      public:
        /// False only for a text that is not a member; branch-free. `readable`: as for textKey().
        [[nodiscard]] bool mayHold(std::string_view text, const char* readable) const {
            const std::uint64_t place = placeOf(text, readable);
            return ((m_bits[place / 64] >> place % 64) & 1U) != 0;
        }

      private:
        friend class TextTable;
        Filter(const std::uint64_t* bits, int shift) : m_bits(bits), m_shift(shift) {}

        [[nodiscard]] std::uint64_t placeOf(std::string_view text, const char* readable) const {
            // Customer numbers and the like have the same beginning and differ in their last bytes.
            const std::uint64_t ends = textKey(text, readable) ^ std::rotl(textTail(text, readable), 29);
            return (ends + text.size()) * 0x9E3779B97F4A7C15U >> m_shift;
        }

        const std::uint64_t* m_bits;
        int m_shift;
    };
    [[nodiscard]] Filter filter() const { return {m_bits.data(), m_shift}; }

    [[nodiscard]] bool holds(std::string_view text, const char* readable) const {
        if (m_few.empty())
            return m_members.contains(text);
        const std::uint64_t key = textKey(text, readable);
        return std::ranges::any_of(m_few, [&](const KeyedText& member) { return member.equals(text, key); });
    }

  private:
    static constexpr std::size_t kBitsPerMember = 32;
    static constexpr int kLeastBits = 10;
    /// Up to here comparing with each member is cheaper than hashing the whole text.
    static constexpr std::size_t kFew = 8;

    const TextSet& m_members;
    std::vector<KeyedText> m_few;
    std::vector<std::uint64_t> m_bits;
    int m_shift = 0;
};

} // namespace tavix::expression
