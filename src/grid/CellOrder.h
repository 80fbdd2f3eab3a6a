#pragma once

#include "grid/CUGDataSource.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

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

/// Sorts rows by the text that `textOf` gives of each, which is asked for once; rows of the same text stay in their
/// order.
template <typename Row, typename TextOf>
void sortRowsByText(std::span<Row> rows, TextOf textOf, bool descending) {
    struct Keyed {
        CellOrderKey key;
        Row row;
    };
    std::vector<Keyed> keyed;
    keyed.reserve(rows.size());
    for (Row& row : rows) {
        CellOrderKey key(textOf(std::as_const(row)));
        keyed.push_back({std::move(key), std::move(row)});
    }
    std::stable_sort(keyed.begin(), keyed.end(), [descending](const Keyed& a, const Keyed& b) {
        return descending ? b.key < a.key : a.key < b.key;
    });
    for (std::size_t i = 0; i < keyed.size(); ++i)
        rows[i] = std::move(keyed[i].row);
}

/// Sorts rows by the cell that `cellOf` gives of each. Figures that do not exist come last in both directions.
template <typename Row, typename CellOf>
void sortRowsByCell(std::vector<Row>& rows, CellOf cellOf, bool descending) {
    const auto unknown = std::stable_partition(
        rows.begin(), rows.end(), [&cellOf](const Row& row) { return cellOf(row).state != CellState::Unknown; });
    const auto textOf = [&cellOf](const Row& row) { return std::string(orderText(cellOf(row))); };
    sortRowsByText(std::span<Row>(rows.begin(), unknown), textOf, descending);
}

} // namespace tavix
