#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tavix {

/// Searches texts for a substring, ignoring case as foldCase() does: "strasse" is in "Straße", and "Straße" in
/// "STRASSE". ASCII texts are not folded, nor are most others when the substring is ASCII.
class FoldedFinder {
  public:
    explicit FoldedFinder(std::string_view wanted);

    /// An empty substring is in every text.
    [[nodiscard]] bool isIn(std::string_view text) const;

  private:
    [[nodiscard]] bool isInAscii(std::string_view text) const;

    std::string m_wanted; ///< folded
    bool m_isAscii;
};

/// Whether this non-ASCII character folds to ASCII letters, as "ß" and "ﬁ" do.
[[nodiscard]] bool foldsToAscii(std::int32_t character);

} // namespace tavix
