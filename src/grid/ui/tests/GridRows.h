#pragma once

#include "base/ui/QtText.h"
#include "grid/CellOrder.h"
#include "grid/ui/CUGCtrl.h"

#include <algorithm>
#include <set>
#include <string>
#include <vector>

namespace tavix::testing {

/// Rows named row0, row1, ... over columns of which the first is locked; records which rows were asked for.
class Rows : public CUGDataSource {
  public:
    explicit Rows(int rows, int columns = 3) : m_columns(columns) {
        for (int row = 0; row < rows; ++row)
            m_order.push_back(row);
    }
    int GetColumnCount() const override { return m_columns; }
    std::int64_t GetRowCount() const override { return static_cast<std::int64_t>(m_order.size()); }
    GridColumn GetColumn(int column) const override {
        GridColumn heading;
        heading.heading = "H" + std::to_string(column);
        heading.width = 130;
        heading.locked = column == 0;
        return heading;
    }
    GridCell GetCell(int column, std::int64_t row) const override {
        asked.insert(row);
        GridCell cell;
        cell.text = Text(column, m_order[static_cast<std::size_t>(row)]);
        return cell;
    }
    std::int64_t GetRowKey(std::int64_t row) const override { return m_order[static_cast<std::size_t>(row)]; }
    bool Sort(int column, bool descending) override {
        if (column == 2)
            return false;
        std::stable_sort(m_order.begin(), m_order.end(), [&](int a, int b) {
            const CellOrderKey left(Text(column, a));
            const CellOrderKey right(Text(column, b));
            return descending ? right < left : left < right;
        });
        return true;
    }
    mutable std::set<std::int64_t> asked;

  private:
    static std::string Text(int column, int row) {
        return column == 0 ? "row" + std::to_string(row) : std::to_string((row * 7) % 10);
    }
    int m_columns;
    std::vector<int> m_order;
};

inline std::string firstColumn(const CUGCtrl& grid) {
    std::string text;
    for (int row = 0; row < grid.model()->rowCount(); ++row)
        text += toUtf8(grid.model()->index(row, 0).data().toString()) + " ";
    return text;
}

/// Puts the grid with these rows on the screen.
inline void show(CUGCtrl& grid, CUGDataSource& rows, int width = 600, int height = 300) {
    grid.SetSource(&rows);
    grid.resize(width, height);
    grid.show();
}

} // namespace tavix::testing
