#pragma once

#include "report/ReportSelection.h"
#include "tabs/ListRows.h"

namespace tavix {

class PrViewer;

/// The alerts of one table: of the repository's alerts those whose data source, catalog, schema and table have its
/// names, where a table of a query or a filter goes by its object name.
class TableAlertRows final : public ListRows {
  public:
    TableAlertRows();

    /// False when the repository fails: the rows are then as before, and GetErrorText() is the message.
    bool Fill(PrViewer& viewer, const TableIdentity& table);
    void Clear() override;

    [[nodiscard]] int GetAlertId(std::int64_t row) const { return m_alerts.at(Record(row)).id; }

  private:
    struct Alert {
        int id = -1;
        std::string description;
        std::string_view type;
        std::string input;
    };

    [[nodiscard]] GridCell CellOf(int column, std::size_t record) const override;

    std::vector<Alert> m_alerts;
};

} // namespace tavix
