#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tavix {

/// A cell's text prepared for sorting. The order is total, also in a column that mixes both: what parseNumber() takes
/// for a number comes first, by value, then the texts without regard to case and, where they are equal so, with regard
/// to it; numbers of one value follow each other as texts do ("7", "7.0"). Comparing two numbers by value and any other
/// two cells as texts would be no order: 9 < 10, 10 < 1a, 1a < 9. Only cells of the same text are equal.
///
/// This is the definition; sortedByText() in grid/CellSort.h gives the same order for many rows at once.
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
