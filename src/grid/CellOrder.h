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

/// A cell's text prepared for sorting. The order is total, even in a column that mixes numbers and texts: whatever
/// parseNumber() accepts comes first, by value, then the texts, ignoring case and, among equal ones, by case. Numbers
/// of equal value are ordered as texts ("7", "7.0"). Comparing two numbers by value but any other pair as texts would
/// not be transitive: 9 < 10, 10 < 1a, 1a < 9. Only cells of the same text are equal.
///
/// This class defines the order; sortedByText() in grid/CellSort.h produces it for many rows at once.
class CellOrderKey {
  public:
    explicit CellOrderKey(std::string_view text);

    [[nodiscard]] bool operator<(const CellOrderKey& other) const;

  private:
    std::optional<double> m_number;
    std::string m_folded;
    std::string m_text;
};

/// Stable sort by the text that `textOf` returns; it is called once for each row.
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

/// Stable sort by the cell that `cellOf` returns. Unknown cells come last in both directions.
template <typename Row, typename CellOf>
void sortRowsByCell(std::vector<Row>& rows, CellOf cellOf, bool descending) {
    const auto unknown = std::stable_partition(
        rows.begin(), rows.end(), [&cellOf](const Row& row) { return cellOf(row).state != CellState::Unknown; });
    const auto textOf = [&cellOf](const Row& row) { return std::string(orderText(cellOf(row))); };
    sortRowsByText(std::span<Row>(rows.begin(), unknown), textOf, descending);
}

} // namespace tavix
