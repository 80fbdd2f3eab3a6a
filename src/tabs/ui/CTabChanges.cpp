#include "tabs/ui/CTabChanges.h"

#include "base/ui/QtText.h"
#include "doc/CTavixDoc.h"
#include "drill/ui/ReadingProgress.h"
#include "grid/ui/CUGCtrl.h"
#include "tabs/ui/CFieldView.h"
#include "tabs/ui/SinceRunLine.h"

#include <utility>

namespace tavix {

CTabChanges::CTabChanges(std::string_view name, CViewSite& site, const ReportSubject& subject, bool isTornOff,
                         QWidget* parent)
    : CListTab(name, site, subject, isTornOff, parent), m_line(new SinceRunLine(this)) {
    AddAbove(*m_line);
    connect(m_line, &SinceRunLine::Chosen, this, &CTabChanges::Choose);
}

void CTabChanges::Choose(int sinceRow, int untilRow) {
    const auto rowOf = [this](int row) { return row < 0 ? m_model->GetRuns().size() : static_cast<std::size_t>(row); };
    m_model->Choose(rowOf(sinceRow), rowOf(untilRow));
    SubjectChanged();
    // The tabs of other views compare the same runs.
    Site().Broadcast(this, RefreshHint::ComparedRunsChanged, 0);
}

void CTabChanges::Refresh(CRefreshItem* sender, RefreshHint hint, int parameter) {
    if (hint != RefreshHint::ComparedRunsChanged)
        CListTab::Refresh(sender, hint, parameter);
    else if (m_model->IsOutdated())
        SubjectChanged();
}

bool CTabChanges::RefillsOn(RefreshHint hint) const {
    return CListTab::RefillsOn(hint) || hint == RefreshHint::HistoryDeleted;
}

void CTabChanges::PrepareFill() {
    m_model->ReadRuns();
    m_line->ShowRuns(m_model->GetRuns(), m_model->GetPair());
    m_line->ShowSummary({});
}

std::string CTabChanges::GetObstacle() const {
    return m_model->GetObstacle();
}

bool CTabChanges::FillRows(PrViewer&) {
    ReadingProgress progress(ReadingKind::Runs, this, Site().GetPatienceMilliseconds());
    return m_model->Fill(progress);
}

void CTabChanges::RowsChanged() {
    m_line->ShowSummary(GetRowCount() > 0 ? toQString(m_model->GetSummary()) : QString());
}

QWidget* CTabChanges::GetLastTabStop() {
    QWidget* last = CListTab::GetLastTabStop();
    return last ? last : m_line->GetLastTabStop();
}

CTabTableChanges::CTabTableChanges(CViewSite& site, const ReportSubject& subject, bool isTornOff, QWidget* parent)
    : CTabChanges("Changes of the Table", site, subject, isTornOff, parent),
      m_rows(ShowRows(std::make_unique<TableChangeRows>())) {
    TakeModel(std::make_unique<ChangesModel>(site.GetTavixDoc(), subject, m_rows));
    connect(&Grid(), &CUGCtrl::RowActivated, this, &CTabTableChanges::OpenField);
}

void CTabTableChanges::OpenField(std::int64_t row) {
    const int field = m_rows.GetFieldId(row);
    if (field == -1)
        return;
    // A torn-off window keeps its object; the frame opens the field.
    if (IsTornOff()) {
        Site().OpenField(Subject().selection, field);
        return;
    }
    Site().GetTavixDoc().SetTab(ReportPaneKind::Field, Site().GetMode(), CFieldView::Changes);
    Site().SelectField(field);
}

CTabFieldChanges::CTabFieldChanges(CViewSite& site, const ReportSubject& subject, bool isTornOff, QWidget* parent)
    : CTabChanges("Changes of the Field", site, subject, isTornOff, parent) {
    FieldChangeRows& rows = ShowRows(std::make_unique<FieldChangeRows>());
    TakeModel(std::make_unique<ChangesModel>(site.GetTavixDoc(), subject, rows));
}

} // namespace tavix
