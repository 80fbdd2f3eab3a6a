#include "alert/AlertRows.h"

#include "access/CursorText.h"
#include "access/Layouts.h"
#include "access/PrViewer.h"
#include "report/CheckedCursor.h"

#include <numeric>
#include <utility>

namespace tavix {

namespace {

std::vector<GridColumn> gridColumns(const std::vector<AlertColumn>& columns) {
    std::vector<GridColumn> shown;
    shown.reserve(columns.size());
    for (const AlertColumn column : columns)
        shown.push_back(alertGridColumn(column));
    return shown;
}

} // namespace

AlertRows::AlertRows(std::vector<AlertColumn> columns, std::string_view emptyText, const std::locale& locale)
    : ListRows(gridColumns(columns), emptyText), m_columns(std::move(columns)), m_locale(locale) {}

void AlertRows::Clear() {
    ShowAlerts({}, {});
}

std::int64_t AlertRows::FindAlert(int alertId) const {
    for (std::int64_t row = 0; row < GetRowCount(); ++row) {
        if (GetAlert(row).id == alertId)
            return row;
    }
    return -1;
}

std::string AlertRows::GetReport(const AlertState& alert) const {
    const auto found = m_reports.find(alert.job);
    return found == m_reports.end() ? std::string() : found->second;
}

std::string AlertRows::GetToolTip(int /*column*/, std::int64_t row) const {
    return alertToolTip(GetAlert(row), m_locale);
}

void AlertRows::ShowAlerts(std::vector<AlertState> alerts, std::map<int, std::string> reports) {
    orderAlerts(alerts);
    m_alerts = std::move(alerts);
    m_reports = std::move(reports);
    m_listed.resize(m_alerts.size());
    std::iota(m_listed.begin(), m_listed.end(), 0U);
    ShowRecords(m_listed.size());
}

void AlertRows::ListOnly(const std::function<bool(std::size_t)>& passes) {
    m_listed.clear();
    for (std::uint32_t alert = 0; alert < m_alerts.size(); ++alert) {
        if (passes(alert))
            m_listed.push_back(alert);
    }
    ShowRecords(m_listed.size());
}

GridCell AlertRows::CellOfAlert(AlertColumn column, const AlertState& alert) const {
    return alertCell(column, alert, column == AlertColumn::Report ? GetReport(alert) : std::string(), m_locale);
}

GridCell AlertRows::CellOf(int column, std::size_t record) const {
    return CellOfAlert(m_columns.at(static_cast<std::size_t>(column)), Listed(record));
}

std::map<int, std::string> readReportNames(PrViewer& viewer) {
    std::map<int, std::string> names;
    const ProfileCursorHandle reports = checked(viewer, viewer.getReports());
    while (reports->next())
        names[reports->getColumnInt(layout::ReportId)] = textAt(*reports, layout::ReportName);
    return names;
}

} // namespace tavix
