#include "report/AlertMarks.h"

#include "report/AlertTexts.h"
#include "report/CountText.h"

#include <algorithm>

namespace tavix {

namespace {

/// A figure that more alerts watch is explained by the gravest of them.
constexpr std::size_t kMostLines = 6;
const std::vector<AlertState> kNoAlerts;

/// "Alert raised, error: Null Count for field price is greater than 0 · 3 runs, since ...".
std::string lineOf(const AlertState& alert, const std::locale& locale) {
    std::string line(alertMarkText(markOf(alert)));
    line.front() = 'A';
    line += ": " + alert.condition();
    if (alert.isDescribed())
        line += " (" + alert.description + ")";
    const bool isChangeRule = alert.rule && isChange(alert.rule->comparison);
    const std::string details[] = {isChangeRule ? alertReferenceText(alert) : std::string(),
                                   alertSinceText(alert, locale), alertMuteText(alert, locale)};
    for (const std::string& detail : details)
        line += (detail.empty() ? "" : " · ") + detail;
    return line;
}

const std::vector<AlertState>& findIn(const auto& map, const auto& key) {
    const auto found = map.find(key);
    return found == map.end() ? kNoAlerts : found->second;
}

} // namespace

bool marksTable(const AlertState& alert, const TableIdentity& table) {
    return alert.typeCode == alertTypeCode(AlertSubject::StandardMetric) && alert.kind == table.kind &&
           alert.dataSource == table.dataSource && alert.catalog == table.catalog && alert.schema == table.schema &&
           alert.tableName == table.name && alert.objectName == table.objectName;
}

bool isListedFor(const AlertState& alert, const TableIdentity& table) {
    const std::string& name = alert.objectName.empty() ? alert.tableName : alert.objectName;
    return alert.dataSource == table.dataSource && alert.catalog == table.catalog && alert.schema == table.schema &&
           name == table.displayName();
}

AlertMarks::AlertMarks(std::span<const AlertState> alerts, const TableIdentity& table) {
    for (const AlertState& alert : alerts) {
        if (marksTable(alert, table))
            m_metrics[{alert.input, alert.watchedId}].push_back(alert);
        else if (alert.subject != AlertSubject::StandardMetric && alert.tableId == table.id &&
                 alert.typeCode == alertTypeCode(alert.subject))
            m_watched[alert.key].push_back(alert);
    }
    for (auto& [figure, watching] : m_metrics)
        orderAlerts(watching);
    for (auto& [key, watching] : m_watched)
        orderAlerts(watching);
}

const std::vector<AlertState>& AlertMarks::OfMetric(const std::string& field, int metricId) const {
    return m_metrics.empty() ? kNoAlerts : findIn(m_metrics, std::pair(field, metricId));
}

const std::vector<AlertState>& AlertMarks::OfKey(const std::string& key) const {
    return findIn(m_watched, key);
}

std::vector<AlertState> AlertMarks::OfRule(const std::string& key, bool ofPercent) const {
    std::vector<AlertState> alerts = OfKey(key);
    std::erase_if(alerts, [ofPercent](const AlertState& alert) {
        return (alert.rule && alert.rule->ofFailedPercent) != ofPercent;
    });
    return alerts;
}

AlertMark markOf(const AlertState& alert) {
    switch (alert.shown()) {
    case AlertShown::Raised:
        return alert.isRaisedAt(AlertLevel::Error) ? AlertMark::Error : AlertMark::Warning;
    case AlertShown::CannotBeJudged:
        return AlertMark::CannotBeJudged;
    case AlertShown::Muted:
        return AlertMark::Muted;
    case AlertShown::Quiet:
        break;
    }
    return AlertMark::Quiet;
}

AlertMark markOf(std::span<const AlertState> alerts) {
    AlertMark gravest = AlertMark::None;
    for (const AlertState& alert : alerts)
        gravest = std::max(gravest, markOf(alert));
    return gravest;
}

AlertMark markOf(const AlertCounts& counts) {
    if (counts.errors > 0)
        return AlertMark::Error;
    return counts.warnings > 0 ? AlertMark::Warning : AlertMark::None;
}

std::string alertLines(std::span<const AlertState> alerts, const std::locale& locale) {
    std::string lines;
    for (const AlertState& alert : alerts.first(std::min(alerts.size(), kMostLines)))
        lines += (lines.empty() ? "" : "\n") + lineOf(alert, locale);
    if (alerts.size() > kMostLines)
        lines += "\nand " + countOf(static_cast<std::int64_t>(alerts.size() - kMostLines), "more alert");
    return lines;
}

} // namespace tavix
