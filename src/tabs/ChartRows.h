#pragma once

#include "grid/ListRows.h"

namespace tavix {

class PrViewer;

/// The visualizations that are stored with one table.
class ChartRows final : public ListRows {
  public:
    ChartRows();

    /// False when the repository fails: the rows are then unchanged, and GetErrorText() is the message.
    bool Fill(PrViewer& viewer, int tableId);
    void Clear() override;

  private:
    struct Chart {
        std::string name;
        std::string description;
    };

    [[nodiscard]] GridCell CellOf(int column, std::size_t record) const override;

    std::vector<Chart> m_charts;
};

} // namespace tavix
