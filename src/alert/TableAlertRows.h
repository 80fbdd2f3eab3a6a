#pragma once

#include "grid/ListRows.h"
#include "report/ReportSelection.h"

namespace tavix {

class PrViewer;

/// The alerts of one table: the repository's alerts with its data source, catalog, schema and name, which for a table
/// of a query or a filter is the object name.
class TableAlertRows final : public ListRows {
  public:
    TableAlertRows();

    /// False when the repository fails: the rows are then unchanged, and GetErrorText() is the message.
    bool Fill(PrViewer& viewer, const TableIdentity& table);
    void Clear() override;

  private:
    struct Alert {
        std::string description;
        std::string_view type;
        std::string input;
    };

    [[nodiscard]] GridCell CellOf(int column, std::size_t record) const override;

    std::vector<Alert> m_alerts;
};

} // namespace tavix
