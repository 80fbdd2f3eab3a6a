#include "alert/TableAlertRows.h"

#include "access/CursorText.h"
#include "access/Layouts.h"
#include "access/PrViewer.h"
#include "base/GenException.h"
#include "report/AlertMarks.h"
#include "report/AlertTexts.h"
#include "report/CheckedCursor.h"

#include <map>
#include <unordered_set>
#include <utility>

namespace tavix {

namespace {

/// The names of the table in a row of getAlerts.
AlertState namesOf(const ProfileCursor& row) {
    AlertState names;
    names.dataSource = textAt(row, layout::AlertDsn);
    names.catalog = textAt(row, layout::AlertCatalog);
    names.schema = textAt(row, layout::AlertSchema);
    names.tableName = textAt(row, layout::AlertTable);
    names.objectName = textAt(row, layout::AlertObject);
    return names;
}

/// Whether the repository has alerts of the table that are not among `known`.
bool hasMore(PrViewer& viewer, const TableIdentity& table, const std::vector<AlertState>& known) {
    std::unordered_set<int> ids;
    for (const AlertState& alert : known)
        ids.insert(alert.id);
    const ProfileCursorHandle alerts = checked(viewer, viewer.getAlerts());
    while (alerts->next()) {
        if (!ids.contains(alerts->getColumnInt(layout::AlertId)) && isListedFor(namesOf(*alerts), table))
            return true;
    }
    return false;
}

} // namespace

TableAlertRows::TableAlertRows(const std::locale& locale)
    : AlertRows({AlertColumn::Description, AlertColumn::Type, AlertColumn::Input, AlertColumn::State,
                 AlertColumn::Level, AlertColumn::Figure, AlertColumn::ComparedWith, AlertColumn::Raised,
                 AlertColumn::Condition, AlertColumn::DefinedBy},
                "No alert is defined for this table.", locale) {}

// Other jobs may profile a table of the same names. Their alerts are read only where there are some, since the list of
// alerts alone costs much less than the figures that they watch.
bool TableAlertRows::Fill(PrViewer& viewer, const TableIdentity& table, int job,
                          const std::vector<AlertState>& ofReport) try {
    std::vector<AlertState> alerts = ofReport;
    std::map<int, std::string> reports;
    if (hasMore(viewer, table, ofReport)) {
        alerts = readAllAlertStates(viewer);
        reports = readReportNames(viewer);
    }
    std::erase_if(alerts, [&table](const AlertState& alert) { return !isListedFor(alert, table); });
    ShowAlerts(std::move(alerts), std::move(reports));
    m_job = job;
    return true;
} catch (const GenException& failure) {
    return FailToRead(failure.getText().str());
}

bool TableAlertRows::FailToRead(const std::string& reason) {
    return Fail(kAlertListFailed, reason);
}

void TableAlertRows::Clear() {
    AlertRows::Clear();
    m_job = -1;
}

ListBase TableAlertRows::GetBase() const {
    return Alerts().empty() ? ListBase() : ListBase{alertCountsText(countAlerts(Alerts())), {}};
}

std::string TableAlertRows::GetToolTip(int column, std::int64_t row) const {
    const AlertState& alert = GetAlert(row);
    std::string lines = AlertRows::GetToolTip(column, row);
    if (alert.job == m_job)
        return lines;
    const std::string report = GetReport(alert);
    return lines + "\nOf another report" + (report.empty() ? "" : ", \u201C" + report + "\u201D") +
           ": judged for its latest run";
}

} // namespace tavix
