#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tavix {

/// Looks for one text in others without regard to case, by foldCase() on both sides: "strasse" is in "Straße", and
/// "Straße" in "STRASSE". Texts in ASCII, and most others when the wanted one is ASCII, are not folded for it.
class FoldedFinder {
  public:
    explicit FoldedFinder(std::string_view wanted);

    /// An empty text is in all.
    [[nodiscard]] bool isIn(std::string_view text) const;

  private:
    [[nodiscard]] bool isInAscii(std::string_view text) const;

    std::string m_wanted; ///< folded
    bool m_isAscii;
};

/// Whether folding makes ASCII letters of this character, which is none itself, as of "ß" and "ﬁ".
[[nodiscard]] bool foldsToAscii(std::int32_t character);

} // namespace tavix
