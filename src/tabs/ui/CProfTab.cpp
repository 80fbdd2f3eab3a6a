#include "tabs/ui/CProfTab.h"

#include "doc/CTavixDoc.h"

#include <QScopedValueRollback>

namespace tavix {

CProfTab::CProfTab(CViewSite& site, const ReportSubject& subject, bool isTornOff, QWidget* parent)
    : QWidget(parent), m_site(site), m_subject(subject), m_isTornOff(isTornOff) {}

void CProfTab::SubjectChanged() {
    RefillIfVisible();
}

void CProfTab::Forget() {
    m_isStale = true;
    m_filledFor = {};
}

void CProfTab::FillIfSeen() {
    if (m_isStale)
        RefillIfVisible();
}

void CProfTab::Refresh(CRefreshItem*, RefreshHint hint, int) {
    if (RefillsOn(hint))
        RefillIfVisible();
}

void CProfTab::RefillIfVisible() {
    m_isStale = true;
    // The subject may change while a long list is being read; the loop below then fills the tab again.
    if (m_isFilling)
        return;
    const QScopedValueRollback<bool> filling(m_isFilling, true);
    while (m_isStale && isVisible()) {
        m_isStale = false;
        const bool same = isSameObject(m_filledFor, m_subject.selection);
        m_filledFor = m_subject.selection;
        Fill(same);
    }
}

void CProfTab::WarnSoon(const std::string& text) {
    m_site.WarnSoon(text);
}

void CProfTab::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    FillIfSeen();
}

} // namespace tavix
