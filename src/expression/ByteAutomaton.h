#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace tavix::expression {

struct PatternPart;

/// A regular expression of the usual kind as one table that is walked byte by byte, several times as fast on short
/// texts as a general matcher. It knows ASCII only.
class ByteAutomaton {
  public:
    enum class Answer { No, Yes, Unknown };

    /// None for a pattern that needs more than characters, classes, groups, choices and repetition, and for one whose
    /// table would be large. The pattern has to be correct; its syntax is that of RE2, with '.' for any character.
    [[nodiscard]] static std::optional<ByteAutomaton> build(std::string_view pattern);

    /// The same of a tree; only its size may be a reason for none.
    [[nodiscard]] static std::optional<ByteAutomaton> build(const PatternPart& pattern);

    /// Whether the whole text matches; Unknown when that depends on a byte above 0x7F.
    [[nodiscard]] Answer matches(std::string_view text) const {
        std::uint16_t at = m_start;
        for (const char c : text) {
            at = m_next[static_cast<std::size_t>(at) + m_class[static_cast<unsigned char>(c)]];
            if (at < m_firstOpen)
                return at == kNever ? Answer::No : Answer::Unknown;
        }
        return at >= m_firstAccepting ? Answer::Yes : Answer::No;
    }

  private:
    ByteAutomaton() = default;

    // A state is where its row begins in the table: first the one that nothing leaves, then that of other bytes, those
    // in which a text is no match if it ends there, and those in which it is one.
    static constexpr std::uint16_t kNever = 0;

    std::array<std::uint8_t, 256> m_class{}; ///< bytes that no part of the pattern tells apart
    std::vector<std::uint16_t> m_next;
    std::uint16_t m_start = 0;
    std::uint16_t m_firstOpen = 0;
    std::uint16_t m_firstAccepting = 0;
};

} // namespace tavix::expression
