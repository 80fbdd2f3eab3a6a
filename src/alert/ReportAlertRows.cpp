#include "alert/ReportAlertRows.h"

#include "access/CursorText.h"
#include "access/Layouts.h"
#include "access/PrViewer.h"
#include "base/GenException.h"
#include "grid/FoldedFinder.h"
#include "report/AlertTexts.h"
#include "report/CAlertDisplayHelper.h"
#include "report/CheckedCursor.h"
#include "report/CountText.h"

#include <utility>

namespace tavix {

namespace {

constexpr std::string_view kNoAlerts = "This repository has no alerts.";
constexpr std::string_view kNoneListed = "No alert matches the filter and the search.";

} // namespace

ReportAlertRows::ReportAlertRows(const std::locale& locale)
    : AlertRows({AlertColumn::Description, AlertColumn::Type, AlertColumn::Input, AlertColumn::Path, AlertColumn::State,
                 AlertColumn::Level, AlertColumn::Figure, AlertColumn::ComparedWith, AlertColumn::Raised,
                 AlertColumn::Condition, AlertColumn::DefinedBy, AlertColumn::Report},
                kNoAlerts, locale) {}

bool ReportAlertRows::Fill(PrViewer& viewer) {
    std::vector<AlertState> alerts;
    std::map<int, std::string> reports;
    std::string failure;
    try {
        reports = readReportNames(viewer);
        readAllAlertStates(viewer, alerts);
    } catch (const GenException& exception) {
        failure = exception.getText().str();
    }
    ShowAlerts(std::move(alerts), std::move(reports));
    m_texts.clear();
    List();
    return failure.empty() || Fail(kAlertListFailed, failure);
}

void ReportAlertRows::SetFilter(CAlertsFilter filter) {
    m_filter = std::move(filter);
    List();
}

void ReportAlertRows::SetSearch(std::string text) {
    m_search = std::move(text);
    List();
}

void ReportAlertRows::List() {
    if (!m_search.empty() && m_texts.empty())
        ReadTexts();
    const FoldedFinder finder(m_search);
    ListOnly([&](std::size_t at) {
        return m_filter.Accepts(Alerts()[at]) && (m_search.empty() || finder.isIn(m_texts[at]));
    });
    SetEmptyText(Alerts().empty() ? kNoAlerts : kNoneListed);
}

// Once for all searches: making the cells costs more than searching them.
void ReportAlertRows::ReadTexts() {
    m_texts.reserve(Alerts().size());
    for (const AlertState& alert : Alerts()) {
        std::string& texts = m_texts.emplace_back();
        for (const AlertColumn column : Columns()) {
            const GridCell cell = CellOfAlert(column, alert);
            texts += cell.text + "\n" + cell.shown + "\n";
        }
    }
}

std::string ReportAlertRows::GetCountText() const {
    const auto all = static_cast<std::int64_t>(Alerts().size());
    if (all == 0)
        return {};
    AlertCounts listed;
    for (std::int64_t row = 0; row < GetRowCount(); ++row)
        listed.add(GetAlert(row));
    std::string text = GetRowCount() == all ? "" : groupedCount(GetRowCount()) + " of ";
    text += countOf(all, "alert");
    return GetRowCount() == 0 ? text : text + "  ·  " + alertCountsText(listed);
}

} // namespace tavix
