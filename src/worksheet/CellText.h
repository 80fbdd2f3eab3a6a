#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tavix::worksheet {

/// A text in the form of the file: UTF-16, or one byte a unit if every unit is below 0x100, cut to at most 32,767 units
/// without splitting a surrogate pair. Bytes that are not valid UTF-8 become U+FFFD.
class CellText {
  public:
    /// Reuses the buffers for the next text.
    void assign(std::string_view utf8);

    [[nodiscard]] bool wide() const { return m_wide; }
    [[nodiscard]] std::size_t length() const { return m_wide ? m_units.size() : m_narrow.size(); }
    /// The units as bytes; only if not wide. Valid until the next assign() and, for plain ASCII, as long as its text.
    [[nodiscard]] std::string_view narrow() const { return m_narrow; }
    /// Only if wide.
    [[nodiscard]] std::u16string_view units() const { return m_units; }
    /// Whether the text was longer than a cell holds.
    [[nodiscard]] bool cut() const { return m_cut; }

    [[nodiscard]] bool hasLineBreak() const;
    /// The width of the longest line in digits, up to `most`; ideographs take two.
    [[nodiscard]] int displayWidth(int most) const;

  private:
    void assignUnicode(std::string_view utf8);

    bool m_wide = false;
    bool m_cut = false;
    std::string_view m_narrow;
    std::u16string_view m_units;
    std::string m_bytes;
    std::u16string m_buffer;
};

} // namespace tavix::worksheet
