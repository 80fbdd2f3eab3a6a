#include "tabs/ui/CTabColProf.h"

#include "doc/CTavixDoc.h"
#include "tabs/ColProfRows.h"
#include "tabs/OutlierRows.h"
#include "tabs/PercentileRows.h"

namespace tavix {

namespace {

constexpr int kColumnProfiling = 5;
constexpr int kPercentiles = 8;
constexpr int kOutliers = 9;

const char* nameOf(int itemCode) {
    return itemCode == kPercentiles ? "Percentiles" : itemCode == kOutliers ? "Outliers" : "Column Profiling";
}

} // namespace

CTabColProf::CTabColProf(CViewSite& site, const ReportSubject& subject, bool isTornOff, int itemCode, QWidget* parent)
    : CListTab(nameOf(itemCode), site, subject, isTornOff, parent) {
    switch (itemCode) {
    case kColumnProfiling:
        m_fill = [this, &rows = ShowRows(std::make_unique<ColProfRows>())](PrViewer&) {
            rows.Fill(*Subject().field, Site().GetTavixDoc().GetMetrics());
            return true;
        };
        break;
    case kPercentiles:
        m_fill = [this, &rows = ShowRows(std::make_unique<PercentileRows>())](PrViewer& viewer) {
            return rows.Fill(viewer, *Subject().field);
        };
        break;
    case kOutliers:
        m_fill = [this, &rows = ShowRows(std::make_unique<OutlierRows>())](PrViewer& viewer) {
            return rows.Fill(viewer, Subject().field->id);
        };
        break;
    default:
        break;
    }
}

bool CTabColProf::RefillsOn(RefreshHint hint) const {
    return hint == RefreshHint::DocumentReset || hint == RefreshHint::RunLoaded || hint == RefreshHint::TaskListLost;
}

std::string CTabColProf::GetObstacle() const {
    return Subject().field ? "" : "This run does not have the field.";
}

bool CTabColProf::FillRows(PrViewer& viewer) {
    return m_fill(viewer);
}

} // namespace tavix
