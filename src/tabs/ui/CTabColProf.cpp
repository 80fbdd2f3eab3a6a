#include "tabs/ui/CTabColProf.h"

#include "chart/FieldPictures.h"
#include "doc/CTavixDoc.h"
#include "grid/ui/CUGCtrl.h"
#include "tabs/ColProfRows.h"
#include "tabs/OutlierRows.h"
#include "tabs/PercentileRows.h"
#include "tabs/ui/FindingsStrip.h"
#include "tabs/ui/PicturePane.h"
#include "tabs/ui/TypesPane.h"

#include <QAction>
#include <QItemSelectionModel>

namespace tavix {

namespace {

std::string_view nameOf(ItemCode itemCode) {
    switch (itemCode) {
    case ItemCode::Percentiles:
        return "Percentiles";
    case ItemCode::Outliers:
        return "Outliers";
    default:
        return "Column Profiling";
    }
}

} // namespace

CTabColProf::CTabColProf(CViewSite& site, const ReportSubject& subject, bool isTornOff, ItemCode itemCode,
                         QWidget* parent)
    : CListTab(nameOf(itemCode), site, subject, isTornOff, parent), m_drill(site, *this) {
    switch (itemCode) {
    case ItemCode::ColumnProfiling:
        m_fill = [this, &rows = ShowRows(std::make_unique<ColProfRows>())](PrViewer&) {
            rows.Fill(*Subject().field, Site().GetTavixDoc().GetMetrics(), Subject().table.isSample);
            return true;
        };
        AddBeside(*new PicturePane(site, subject, *this, &chart::pictureOfValues));
        m_findings = new FindingsStrip(site, subject, *this, true);
        AddAbove(*m_findings);
        connect(m_findings, &FindingsStrip::TabRequested, this, &CTabColProf::TabRequested);
        m_types = new TypesPane(site, subject, *this);
        AddFooter(*m_types);
        connect(m_types, &TypesPane::TabRequested, this, &CTabColProf::TabRequested);
        break;
    case ItemCode::Percentiles:
        m_fill = [this, &rows = ShowRows(std::make_unique<PercentileRows>())](PrViewer& viewer) {
            return rows.Fill(viewer, *Subject().field);
        };
        AddBeside(*new PicturePane(site, subject, *this, &chart::pictureOfPercentiles));
        break;
    case ItemCode::Outliers:
        MakeOutliers();
        AddBeside(*new PicturePane(site, subject, *this, &chart::pictureOfOutliers, DrillOrigin::Outliers));
        break;
    default:
        break;
    }
}

// The base class detaches the grid from its rows later; the grid's signals must not reach this object by then.
CTabColProf::~CTabColProf() {
    disconnect(Grid().model(), nullptr, this, nullptr);
    disconnect(Grid().selectionModel(), nullptr, this, nullptr);
}

void CTabColProf::MakeOutliers() {
    m_outliers = &ShowRows(std::make_unique<OutlierRows>());
    m_fill = [this](PrViewer& viewer) { return m_outliers->Fill(viewer, *Subject().field); };
    QAction* action = m_drill.MakeAction();
    Grid().addAction(action);
    connect(action, &QAction::triggered, this, &CTabColProf::OnDrillThrough);
    connect(&Grid(), &CUGCtrl::RowActivated, this, &CTabColProf::OnDrillThrough);
    const auto showAction = [this, action] { action->setEnabled(OutlierToDrill().has_value()); };
    connect(Grid().selectionModel(), &QItemSelectionModel::currentChanged, this, showAction);
    connect(Grid().model(), &QAbstractItemModel::modelReset, this, showAction);
    showAction();
}

// A row holds two values; the current cell decides.
std::optional<KvbString> CTabColProf::OutlierToDrill() const {
    const QModelIndex at = Grid().currentIndex();
    if (!m_outliers || !Subject().field || !m_drill.IsOffered() || !at.isValid() ||
        at.row() >= m_outliers->GetRowCount())
        return std::nullopt;
    return m_outliers->GetValue(at.column(), at.row());
}

void CTabColProf::OnDrillThrough() {
    if (const auto value = OutlierToDrill())
        m_drill.OpenValue(Subject(), *value, DrillOrigin::Outliers);
}

bool CTabColProf::RefillsOn(RefreshHint hint) const {
    return hint == RefreshHint::DocumentReset || hint == RefreshHint::RunLoaded || hint == RefreshHint::TaskListLost ||
           (m_findings && hint == RefreshHint::FindingsChanged);
}

std::string CTabColProf::GetObstacle() const {
    return Subject().field ? "" : "This run does not have the field.";
}

QWidget* CTabColProf::GetLastTabStop() {
    QWidget* const last = m_types ? m_types->GetLastTabStop() : nullptr;
    return last ? last : CListTab::GetLastTabStop();
}

void CTabColProf::RowsChanged() {
    if (!m_types)
        return;
    m_types->SetListFont(Grid().font());
    m_findings->SetListFont(Grid().font());
    // FillRows() is not called when there is nothing to read.
    if (!Subject().field || !Site().GetTavixDoc().GetViewer())
        RefillBeside();
}

bool CTabColProf::FillRows(PrViewer& viewer) {
    const bool isFilled = m_fill(viewer);
    if (m_types)
        RefillBeside();
    return isFilled;
}

void CTabColProf::RefillBeside() {
    m_types->Refill();
    m_findings->Refill();
}

} // namespace tavix
