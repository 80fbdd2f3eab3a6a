#include "tabs/ui/CReportView.h"

#include "access/PrViewer.h"
#include "base/NumberText.h"
#include "base/ui/QtText.h"
#include "doc/CTavixDoc.h"
#include "drill/ui/CDetailsDlg.h"
#include "grid/StoredColumns.h"
#include "grid/ui/CUGCtrl.h"
#include "report/AlertMarks.h"
#include "report/AlertTexts.h"
#include "report/ReportTables.h"
#include "settings/Settings.h"
#include "tabs/SubjectText.h"
#include "tabs/ui/CDamagedRowsDlg.h"
#include "tabs/ui/CProfTab.h"
#include "tabs/ui/CProfTabCtrl.h"
#include "tabs/ui/ViewHeader.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QSignalBlocker>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <utility>

namespace tavix {

CReportView::CReportView(CViewSite& site, ReportPaneKind kind, std::span<const TabRow> table, bool isTornOff,
                         QWidget* parent)
    : QWidget(parent),
      m_site(site),
      m_kind(kind),
      m_table(table),
      m_mode(site.GetMode()),
      m_isTornOff(isTornOff),
      m_strip(new CProfTabCtrl(this)),
      m_header(new ViewHeader(this)),
      m_pages(new QStackedWidget(this)),
      m_note(new QLabel(m_pages)) {
    m_note->setTextFormat(Qt::PlainText);
    m_note->setAlignment(Qt::AlignCenter);
    m_note->setWordWrap(true);
    m_note->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_pages->addWidget(m_note);
    if (isTornOff)
        m_header->HideButtons();
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_strip);
    layout->addWidget(m_header);
    layout->addWidget(m_pages, 1);
    connect(m_header, &ViewHeader::DetailsClicked, this, &CReportView::ShowDetails);
    connect(m_header, &ViewHeader::DetachClicked, this, &CReportView::DetachRequested);
    connect(m_header, &ViewHeader::DamageClicked, this, &CReportView::ShowDamagedRows);
    if (!isTornOff)
        connect(m_strip, &CProfTabCtrl::TabDoubleClicked, this, &CReportView::DetachRequested);
    for (const TabRow& row : table)
        AddTab(row);
    ApplyDisplay();
    m_strip->SelectTab(RememberedTab());
    ShowTab(GetCurrentTab());
    connect(m_strip, &QTabBar::currentChanged, this, [this](int index) {
        // The tab of a detached window is not where the user continues in the frame.
        if (!m_isTornOff)
            m_site.GetTavixDoc().SetTab(m_kind, m_mode, index);
        ShowTab(index);
    });
}

// The tabs refer to the subject and must be destroyed before it.
CReportView::~CReportView() {
    for (CProfTab* tab : m_tabs)
        delete tab;
}

void CReportView::AddTab(const TabRow& row) {
    CProfTab* tab = row.make(m_site, m_subject, m_isTornOff, row.code);
    const int index = row.index;
    m_tabs.push_back(tab);
    m_pages->addWidget(tab);
    m_strip->InsertTab(index, toQString(row.caption));
    connect(tab, &CProfTab::CaptionChanged, this, [this, index] { m_strip->SetCaption(index, CaptionOf(index)); });
    connect(tab, &CProfTab::TabRequested, this, &CReportView::OpenTab);
    int number = 0;
    for (CUGCtrl* grid : tab->findChildren<CUGCtrl*>()) {
        std::string name = toUtf8(tab->objectName());
        if (number > 0)
            name += formatInteger(number);
        ++number;
        grid->SetColumnMemory(std::make_unique<StoredColumns>(m_site.GetTavixDoc().GetSettings(), std::move(name)));
    }
}

void CReportView::TakeUp() {
    m_mode = m_site.GetMode();
    m_records.Forget();
    for (CProfTab* tab : m_tabs)
        tab->Forget();
    ApplyDisplay();
    ReadSubject(m_site.GetSelection());
    {
        const QSignalBlocker blocker(m_strip);
        m_strip->SelectTab(RememberedTab());
    }
    ShowTab(GetCurrentTab());
    GetTab(GetCurrentTab()).FillIfSeen();
}

int CReportView::RememberedTab() const {
    const CTavixDoc& document = m_site.GetTavixDoc();
    const int tab = m_mode == NavigatorPage::Collections ? document.GetCollectionTab(m_kind) : document.GetTab(m_kind);
    return tab >= 0 && tab < GetTabCount() ? tab : 0;
}

QString CReportView::CaptionOf(int index) const {
    const QString name = toQString(RowOf(index).caption);
    const QString mark = GetTab(index).GetCaptionMark();
    return mark.isEmpty() ? name : name + u' ' + mark;
}

bool CReportView::Suits(const CViewSite& site) const {
    const ReportSelection& selection = site.GetSelection();
    const bool hasReport =
        selection.kind == ReportSelection::Kind::Table || selection.kind == ReportSelection::Kind::Collection;
    const ReportPaneKind kind = selection.fieldId == -1 ? ReportPaneKind::Table : ReportPaneKind::Field;
    return hasReport && kind == m_kind && site.GetMode() == m_mode;
}

void CReportView::ShowSelection() {
    if (m_isTornOff || m_subject.selection == m_site.GetSelection())
        return;
    ReadSubject(m_site.GetSelection());
    ShowTab(GetCurrentTab());
    for (CProfTab* tab : m_tabs)
        tab->SubjectChanged();
}

void CReportView::ReadSubject(const ReportSelection& selection) {
    m_subject = {selection, {}, {}};
    m_missing.clear();
    m_reportTitle = m_site.GetTavixDoc().GetTitle();
    PrViewer* viewer = m_site.GetTavixDoc().GetViewer();
    if (selection.kind == ReportSelection::Kind::Table)
        m_subject.table = selection.table;
    if (m_kind == ReportPaneKind::Field && viewer) {
        if (auto field = m_records.Find(*viewer, selection))
            m_subject.field = **field;
        else
            m_missing = field.error().text;
        if (auto table = m_records.TableOf(*viewer, selection))
            m_subject.table = std::move(*table);
    }
    ShowHeader();
}

// The object of a torn-off view may have changed in another run, or be missing from it.
void CReportView::ReadSubjectAgain() {
    ReportSelection selection = m_subject.selection;
    PrViewer* viewer = m_site.GetTavixDoc().GetViewer();
    std::string missing;
    if (viewer && selection.kind == ReportSelection::Kind::Table) {
        if (auto table = findTable(*viewer, selection.table.id, selection.table.dataSource))
            selection.table = std::move(*table);
        else {
            missing = table.error().text;
            // The size was that of another run.
            selection.table.totalRecords = selection.table.processedRecords = -1;
            selection.table.isSample = false;
        }
    }
    ReadSubject(selection);
    if (!missing.empty())
        m_missing = missing;
}

void CReportView::CloseReport() {
    if (m_kept)
        return;
    m_kept = m_subject.selection;
    const QString title = toQString(titleOf(m_subject));
    m_subject = {};
    m_missing = "The report \u201C" + m_reportTitle + "\u201D is closed. Open it again to see its contents here.";
    ShowHeader();
    m_header->SetText(title, {});
    ShowTab(GetCurrentTab());
    for (CProfTab* tab : m_tabs)
        tab->SubjectChanged();
}

void CReportView::ShowHeader() {
    m_header->SetText(toQString(titleOf(m_subject)), toQString(detailOf(m_subject)));
    m_header->SetDamage(toQString(damageOf(m_subject)));
    m_header->EnableDetails(hasInformation(m_subject));
    for (int i = 0; i < GetTabCount(); ++i)
        m_strip->SetCaption(i, CaptionOf(i));
    ShowAlertCount();
}

void CReportView::ShowAlertCount() {
    for (const TabRow& row : m_table) {
        if (row.code != ItemCode::Alerts)
            continue;
        AlertCounts counts;
        // A closed report has no subject.
        if (m_subject.selection.kind == ReportSelection::Kind::Table)
            for (const AlertState& alert : m_site.GetTavixDoc().GetAlerts())
                if (isListedFor(alert, m_subject.table))
                    counts.add(alert);
        m_strip->SetCount(row.index, counts.raised(), markOf(counts),
                          counts.raised() > 0 ? toQString("Raised: " + alertCountsText(counts)) : QString());
    }
}

void CReportView::Refresh(CRefreshItem* sender, RefreshHint hint, int parameter) {
    const bool isReloaded = hint == RefreshHint::RunLoaded || hint == RefreshHint::DocumentReset;
    // A collection may show metrics of any run.
    const bool isOfGoneRuns =
        hint == RefreshHint::HistoryDeleted && m_subject.selection.kind == ReportSelection::Kind::Collection;
    if (isReloaded || isOfGoneRuns || hint == RefreshHint::CollectionsRefreshed)
        m_records.Forget();
    if (isReloaded && !m_isTornOff && !Suits(m_site))
        return; // The frame is about to replace this view.
    if (hint == RefreshHint::AlertsChanged || hint == RefreshHint::HistoryDeleted)
        ShowAlertCount();
    if (m_isTornOff && hint == RefreshHint::DocumentReset)
        return CloseReport();
    if (m_kept && hint == RefreshHint::RunLoaded)
        m_subject.selection = *std::exchange(m_kept, std::nullopt);
    const ReportSelection before = m_subject.selection;
    if (isReloaded) {
        const bool follows = !m_isTornOff || before.kind == ReportSelection::Kind::Nothing;
        if (follows)
            ReadSubject(m_site.GetSelection());
        else
            ReadSubjectAgain();
        ShowTab(GetCurrentTab());
    }
    if (isOfGoneRuns) {
        ReadSubject(before);
        ShowTab(GetCurrentTab());
    }
    const bool isOther = isOfGoneRuns || !isSameObject(before, m_subject.selection);
    for (CProfTab* tab : m_tabs) {
        if (isOther)
            tab->SubjectChanged();
        else
            tab->Refresh(sender, hint, parameter);
    }
}

std::string CReportView::GetName() const {
    return nameOf(m_kept ? *m_kept : m_subject.selection);
}

int CReportView::GetCurrentTab() const {
    return m_strip->GetCurrentTab();
}

ItemCode CReportView::GetItemCode() const {
    return RowOf(GetCurrentTab()).code;
}

void CReportView::SelectTab(int index) {
    m_strip->SelectTab(index);
}

void CReportView::OpenTab(ItemCode code) {
    for (const TabRow& row : m_table)
        if (row.code == code) {
            SelectTab(row.index);
            FocusContents();
        }
}

void CReportView::ShowTab(int index) {
    for (int i = 0; i < GetTabCount(); ++i)
        GetTab(i).SetActive(i == index);
    m_note->setText(toQString(m_missing));
    if (m_missing.empty())
        m_pages->setCurrentWidget(&GetTab(index));
    else
        m_pages->setCurrentWidget(m_note);
}

void CReportView::FocusContents() {
    QWidget* main = m_missing.empty() ? GetTab(GetCurrentTab()).GetMainControl() : nullptr;
    (main ? main : m_strip)->setFocus(Qt::OtherFocusReason);
}

void CReportView::ApplyDisplay() {
    const bool showsInvisible = readFlag(m_site.GetTavixDoc().GetSettings(), Setting::ShowInvisible);
    for (CUGCtrl* grid : findChildren<CUGCtrl*>())
        grid->SetShowsInvisible(showsInvisible);
}

QWidget* CReportView::GetLastTabStop() {
    QWidget* last = m_missing.empty() ? GetTab(GetCurrentTab()).GetLastTabStop() : nullptr;
    if (!last)
        last = m_header->GetLastTabStop();
    return last ? last : m_strip;
}

bool CReportView::ExecuteCommand(int commandId) {
    return GetTab(GetCurrentTab()).ExecuteCommand(commandId);
}

CommandState CReportView::UpdateCommand(int commandId) const {
    return GetTab(GetCurrentTab()).UpdateCommand(commandId);
}

void CReportView::ShowDetails() {
    const std::string text = m_site.GetDetailsText(m_subject.selection);
    if (!text.empty())
        CDetailsDlg::Show(text, *this);
}

void CReportView::ShowDamagedRows() {
    CTavixDoc& document = m_site.GetTavixDoc();
    if (PrViewer* viewer = document.GetViewer(); viewer && !damageOf(m_subject).empty())
        CDamagedRowsDlg::Show(*viewer, m_subject.table, document.GetSettings(), document.GetMessages(), *this);
}

void CReportView::StepTab(int by) {
    // Hiding the focused tab would move the focus to an arbitrary control.
    const bool hadFocus = isAncestorOf(QApplication::focusWidget());
    SelectTab((GetCurrentTab() + by + GetTabCount()) % GetTabCount());
    if (hadFocus)
        FocusContents();
}

void CReportView::keyPressEvent(QKeyEvent* event) {
    const bool isControl = event->modifiers().testFlag(Qt::ControlModifier);
    if (isControl && (event->key() == Qt::Key_Tab || event->key() == Qt::Key_PageDown))
        StepTab(1);
    else if (isControl && (event->key() == Qt::Key_Backtab || event->key() == Qt::Key_PageUp))
        StepTab(-1);
    else
        QWidget::keyPressEvent(event);
}

} // namespace tavix
