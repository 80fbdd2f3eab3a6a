#pragma once

#include "expression/ByteAutomaton.h"
#include "expression/ByteSearch.h"
#include "expression/Matcher.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavix::expression {

/// A pattern with '*' for any characters, none included, and '?' for exactly one. It matches whole texts; nothing
/// escapes the two signs.
class Wildcard final : public Matcher {
  public:
    explicit Wildcard(std::string_view pattern, bool mayHaveAutomaton = true);

    [[nodiscard]] bool matches(std::string_view text, bool isAscii, Scratch& scratch) const override;
    [[nodiscard]] std::string_view requiredPart() const override;

  private:
    /// What stands between two stars: bytes, where '?' stands for one character.
    struct Piece {
        std::string bytes;
        ByteSearch anchor;        ///< the longest run of it without '?'
        std::size_t anchorAt = 0; ///< where in `bytes` it begins
        bool hasAnyCharacter = false;
    };

    static Piece makePiece(std::string_view bytes);
    [[nodiscard]] static bool isAt(const Piece& piece, const char* place);
    [[nodiscard]] bool matchesBytes(std::string_view text, Scratch& scratch) const;
    [[nodiscard]] static bool findPiece(const Piece& piece, std::string_view text, std::size_t& at, std::size_t end,
                                        std::size_t& steps);
    [[nodiscard]] bool matchesCharacters(std::string_view text, Scratch& scratch) const;

    std::string m_pattern;
    std::vector<Piece> m_pieces;              ///< those at both ends are bound to the ends of the text
    std::optional<ByteAutomaton> m_automaton; ///< for ASCII texts, where it is the faster way
    bool m_hasStar = false;
    bool m_hasAnyCharacter = false;
    bool m_isFirstFixed = false; ///< whether the first byte of any match is that of the pattern
    bool m_isLastFixed = false;
    std::size_t m_shortest = 0; ///< bytes that any match has at least
};

} // namespace tavix::expression
