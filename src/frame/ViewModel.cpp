#include "frame/ViewModel.h"

#include "access/Layouts.h"
#include "access/PrViewer.h"
#include "base/GenException.h"

#include <array>
#include <cstddef>

namespace tavix {

namespace {

struct PageTexts {
    EmptyPaneText nothing; ///< the page lists nothing
    EmptyPaneText choose;  ///< nothing with metrics is selected
};

// In the order of NavigatorPage.
constexpr std::array<PageTexts, 3> kPageTexts = {{
    {{"This report has no tables", "The current run has not profiled any."},
     {"No table selected", "Select a table on the left to see the metrics of its fields."}},
    {{"There are no collections", "A job file can define collections of fields that belong together."},
     {"No collection selected", "Select a collection on the left to compare its fields."}},
    {{"There are no redundant data analyses", "An analysis compares the values of fields that may hold the same data."},
     {"No results to show", "This version lists the analyses but cannot show their results."}},
}};

} // namespace

void ViewModel::Select(NavigatorPage page, const ReportSelection& selection) {
    m_page = page;
    m_selection = selection;
}

ReportPaneKind ViewModel::GetPaneKind() const {
    if (m_selection.kind != ReportSelection::Kind::Table && m_selection.kind != ReportSelection::Kind::Collection)
        return ReportPaneKind::Empty;
    return m_selection.fieldId == -1 ? ReportPaneKind::Table : ReportPaneKind::Field;
}

EmptyPaneText ViewModel::GetEmptyText(bool hasReport, bool isPageEmpty) const {
    if (!hasReport)
        return {"No report is open", ""};
    const PageTexts& texts = kPageTexts[static_cast<std::size_t>(m_page)];
    return isPageEmpty ? texts.nothing : texts.choose;
}

std::optional<int> dataSourceMode(std::string_view connectionType) {
    constexpr int kOdbc = 0;
    constexpr int kFiles = 4;
    if (connectionType == "ODBC")
        return kOdbc;
    return connectionType == "KVTK" ? std::optional(kFiles) : std::nullopt;
}

bool hasTables(PrViewer& viewer) {
    try {
        const ProfileCursorHandle sources = viewer.getDSNList();
        while (sources && sources->next()) {
            if (sources->getColumnInt(layout::DsnTables) > 0)
                return true;
        }
    } catch (const GenException&) {
        // The navigator reads the same rows and reports the failure.
    }
    return false;
}

} // namespace tavix
