#pragma once

#include "alert/AlertColumns.h"
#include "grid/ListRows.h"

#include <cstdint>
#include <functional>
#include <locale>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace tavix {

class PrViewer;

inline constexpr std::string_view kAlertListFailed = "Error occurred while retrieving alert list:";

/// Alerts as the rows of a list, raised ones first until the user sorts them.
class AlertRows : public ListRows {
  public:
    void Clear() override;
    /// Valid until the rows change.
    [[nodiscard]] const AlertState& GetAlert(std::int64_t row) const { return Listed(Record(row)); }
    /// The row of the alert; -1 when it is not listed.
    [[nodiscard]] std::int64_t FindAlert(int alertId) const;
    /// The name of the job whose runs the alert watches; "" when it is not known.
    [[nodiscard]] std::string GetReport(const AlertState& alert) const;
    [[nodiscard]] std::string GetToolTip(int column, std::int64_t row) const override;

  protected:
    AlertRows(std::vector<AlertColumn> columns, std::string_view emptyText, const std::locale& locale);

    /// Lists all of them. `reports` are the names of the jobs.
    void ShowAlerts(std::vector<AlertState> alerts, std::map<int, std::string> reports);
    /// Lists those that pass, in the order in which they come first.
    void ListOnly(const std::function<bool(std::size_t)>& passes);
    /// All alerts, listed or not.
    [[nodiscard]] const std::vector<AlertState>& Alerts() const { return m_alerts; }
    [[nodiscard]] GridCell CellOfAlert(AlertColumn column, const AlertState& alert) const;
    [[nodiscard]] const std::vector<AlertColumn>& Columns() const { return m_columns; }

  private:
    [[nodiscard]] GridCell CellOf(int column, std::size_t record) const override;
    [[nodiscard]] const AlertState& Listed(std::size_t record) const { return m_alerts.at(m_listed.at(record)); }

    std::vector<AlertColumn> m_columns;
    std::locale m_locale;
    std::vector<AlertState> m_alerts;
    std::map<int, std::string> m_reports;
    std::vector<std::uint32_t> m_listed; ///< indices of m_alerts
};

/// The names of the repository's jobs by id. Throws GenException when the repository fails.
[[nodiscard]] std::map<int, std::string> readReportNames(PrViewer& viewer);

} // namespace tavix
