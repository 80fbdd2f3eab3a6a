#pragma once

#include "expression/ByteAutomaton.h"
#include "expression/ByteSearch.h"
#include "expression/Matcher.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavix::expression {

/// A pattern with '*' for any number of characters and '?' for exactly one. It matches whole texts; the two signs
/// cannot be escaped.
class Wildcard final : public Matcher {
  public:
    explicit Wildcard(std::string_view pattern, bool mayHaveAutomaton = true);

    [[nodiscard]] bool matches(std::string_view text, bool isAscii, Scratch& scratch) const override;
    [[nodiscard]] std::string_view requiredPart() const override;

  private:
    /// The part between two stars: bytes, in which '?' matches one character.
    struct Piece {
        std::string bytes;
        ByteSearch anchor;        ///< its longest run without '?'
        std::size_t anchorAt = 0; ///< offset in `bytes`
        bool hasAnyCharacter = false;
    };

    static Piece makePiece(std::string_view bytes);
    [[nodiscard]] static bool isAt(const Piece& piece, const char* place);
    [[nodiscard]] bool matchesBytes(std::string_view text, Scratch& scratch) const;
    [[nodiscard]] static bool findPiece(const Piece& piece, std::string_view text, std::size_t& at, std::size_t end,
                                        std::size_t& steps);
    [[nodiscard]] bool matchesCharacters(std::string_view text, Scratch& scratch) const;

    std::string m_pattern;
    std::vector<Piece> m_pieces;              ///< the first and last are anchored to the ends of the text
    std::optional<ByteAutomaton> m_automaton; ///< for ASCII texts, where it is faster
    bool m_hasStar = false;
    bool m_hasAnyCharacter = false;
    bool m_isFirstFixed = false; ///< whether every match begins with the pattern's first byte
    bool m_isLastFixed = false;
    std::size_t m_shortest = 0; ///< the fewest bytes of a match
};

} // namespace tavix::expression
