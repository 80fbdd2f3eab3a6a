#include "tabs/ui/CTabFreqDist.h"

#include "doc/CTavixDoc.h"
#include "doc/Settings.h"
#include "grid/ui/CUGCtrl.h"
#include "tabs/FreqDistRows.h"
#include "tabs/PatternDistRows.h"

namespace tavix {

namespace {

constexpr int kFrequencyDistribution = 6;

} // namespace

CTabFreqDist::CTabFreqDist(CViewSite& site, const ReportSubject& subject, bool isTornOff, int itemCode, QWidget* parent)
    : CListTab(itemCode == kFrequencyDistribution ? "Frequency Distribution" : "Pattern Frequency Distribution", site,
               subject, isTornOff, parent) {
    const auto limit = [this] { return readInteger(Site().GetTavixDoc().GetSettings(), Setting::MaxFreqVals); };
    if (itemCode == kFrequencyDistribution) {
        auto& rows = ShowRows(std::make_unique<FreqDistRows>());
        m_fill = [this, limit, &rows](PrViewer& viewer) { return rows.Fill(viewer, *Subject().field, {}, limit()); };
        m_rows = &rows;
    } else {
        auto& rows = ShowRows(std::make_unique<PatternDistRows>());
        m_fill = [this, limit, &rows](PrViewer& viewer) { return rows.Fill(viewer, Subject().field->id, {}, limit()); };
        m_rows = &rows;
    }
}

bool CTabFreqDist::RefillsOn(RefreshHint hint) const {
    return hint == RefreshHint::DocumentReset || hint == RefreshHint::RunLoaded ||
           hint == RefreshHint::OptionsChanged || hint == RefreshHint::TaskListLost;
}

std::string CTabFreqDist::GetObstacle() const {
    return Subject().field ? "" : "This run does not have the field.";
}

bool CTabFreqDist::FillRows(PrViewer& viewer) {
    return m_fill(viewer);
}

void CTabFreqDist::RowsChanged() {
    Grid().setContextMenuPolicy(!IsTornOff() && !m_rows->IsPlaceholder() ? Qt::DefaultContextMenu
                                                                         : Qt::PreventContextMenu);
}

} // namespace tavix
