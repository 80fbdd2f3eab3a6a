#pragma once

#include "base/AlertMark.h"
#include "report/AlertStates.h"
#include "report/ReportSelection.h"

#include <locale>
#include <map>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace tavix {

/// Whether the alert marks cells in the standard metrics of this table: it is of type SM, in exactly these letters, and
/// its kind of table and all names are equal; an empty name equals only an empty one.
[[nodiscard]] bool marksTable(const AlertState& alert, const TableIdentity& table);
/// Whether the alert is in the list of this table: the data source, catalog, schema and shown name are equal, whatever
/// its type and the kind of the table.
[[nodiscard]] bool isListedFor(const AlertState& alert, const TableIdentity& table);

/// The alerts of a table by the figure that they watch.
class AlertMarks {
  public:
    AlertMarks() = default;
    /// Keeps copies of the alerts that belong to the table.
    AlertMarks(std::span<const AlertState> alerts, const TableIdentity& table);

    /// The alerts on a standard metric of a field, the gravest first.
    [[nodiscard]] const std::vector<AlertState>& OfMetric(const std::string& field, int metricId) const;
    /// The alerts on the custom metric or rule with that key, likewise.
    [[nodiscard]] const std::vector<AlertState>& OfKey(const std::string& key) const;
    /// Those of a rule that watch the percentage of violating rows, or those that watch their number.
    [[nodiscard]] std::vector<AlertState> OfRule(const std::string& key, bool ofPercent) const;

  private:
    std::map<std::pair<std::string, int>, std::vector<AlertState>> m_metrics; ///< by field name and metric
    std::map<std::string, std::vector<AlertState>> m_watched;                 ///< by key
};

[[nodiscard]] AlertMark markOf(const AlertState& alert);
/// The mark of a figure that these alerts watch: that of the gravest.
[[nodiscard]] AlertMark markOf(std::span<const AlertState> alerts);
/// The same for a number of alerts: None unless one is raised.
[[nodiscard]] AlertMark markOf(const AlertCounts& counts);
/// What they say about the figure, for its tooltip; "" without alerts.
[[nodiscard]] std::string alertLines(std::span<const AlertState> alerts, const std::locale& locale);

} // namespace tavix
