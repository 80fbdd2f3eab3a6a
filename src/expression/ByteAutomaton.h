#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace tavix::expression {

struct PatternPart;

/// A regular expression as a deterministic automaton whose table is walked byte by byte, several times as fast on short
/// texts as a general matcher. It handles ASCII only.
class ByteAutomaton {
  public:
    enum class Answer { No, Yes, Unknown };

    /// None when the pattern needs more than characters, classes, groups, choices and repetition, or a large table. The
    /// pattern must be correct; its syntax is that of RE2, with '.' for any character.
    [[nodiscard]] static std::optional<ByteAutomaton> build(std::string_view pattern);

    /// Builds from a tree; none only when the table would be too large.
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

    // A state is the offset of its row in the table: first the state that no byte leaves, then the one for other bytes,
    // then the states that reject at the end of the text, then those that accept.
    static constexpr std::uint16_t kNever = 0;

    std::array<std::uint8_t, 256> m_class{}; ///< the class of each byte; the pattern treats bytes of one class alike
    std::vector<std::uint16_t> m_next;
    std::uint16_t m_start = 0;
    std::uint16_t m_firstOpen = 0;
    std::uint16_t m_firstAccepting = 0;
};

} // namespace tavix::expression
