#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tavix {

/// A cell's text prepared for sorting. The order is total: numbers by value come first, then texts without regard to
/// case and, where they are equal so, with regard to it.
class CellOrderKey {
  public:
    explicit CellOrderKey(std::string_view text);

    [[nodiscard]] bool operator<(const CellOrderKey& other) const;

  private:
    std::optional<double> m_number;
    std::string m_folded;
    std::string m_text;
};

} // namespace tavix
