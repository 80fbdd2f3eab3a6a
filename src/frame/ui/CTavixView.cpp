#include "frame/ui/CTavixView.h"

#include "base/AlertRule.h"
#include "base/ui/NestedLoop.h"
#include "base/ui/QtText.h"
#include "doc/CTavixApp.h"
#include "doc/ConnectionCredentials.h"
#include "doc/ItemCode.h"
#include "frame/PaneChain.h"
#include "frame/PaneMemory.h"
#include "frame/ui/CEmptyView.h"
#include "frame/ui/CSourceLoginDlg.h"
#include "nav/ui/CTableInfo.h"
#include "nav/ui/CTables.h"
#include "tabs/ui/CRunView.h"
#include "tabs/ui/TearOff.h"

#include <QApplication>
#include <QDialog>
#include <QKeyEvent>
#include <QStackedWidget>

#include <utility>

namespace tavix {

namespace {

constexpr int kAfterLoadMilliseconds = 250;

/// While the run stays the same.
bool mayChangeAlerts(RefreshHint hint) {
    return hint == RefreshHint::AlertsChanged || hint == RefreshHint::HistoryDeleted;
}

} // namespace

CTavixView::CTavixView(const CTavixApp& app, Messages& messages, QWidget* parent, int patienceMilliseconds)
    : SplitFrame(parent),
      m_document(app.StartDocument(*this, messages)),
      m_patience(patienceMilliseconds),
      m_main(*this),
      m_reportPane(new QStackedWidget(this)),
      m_empty(new CEmptyView) {
    setObjectName(QStringLiteral("tavixView"));
    m_reportPane->setObjectName(QStringLiteral("reportPane"));
    m_navigator = new CTables(*this, this);
    m_reportPane->addWidget(m_empty);
    const PaneMemory memory = readPaneMemory(m_document->GetSettings());
    m_wantsInfo = memory.showsInfo;
    RestoreRatios(memory.ratios, memory.isNavigatorMoved);
    SetPanes(m_navigator, m_reportPane);

    m_document->GetSourceLogins().SetAsk(
        [this](const SourceLogins::Question& question) { return CSourceLoginDlg::Choose(question, this); });
    m_afterLoad.setSingleShot(true);
    m_afterLoad.setInterval(kAfterLoadMilliseconds);
    connect(&m_afterLoad, &QTimer::timeout, this, &CTavixView::AfterLoad);
    (void)KeptView(ReportPaneKind::Table);
    ShowReportPane();
}

// The panes must be destroyed before the document that they read.
CTavixView::~CTavixView() {
    m_afterLoad.stop();
    for (const Detached& each : m_tearOffs)
        delete each.window;
    SetPanes(nullptr, nullptr);
    SetInfoPane(nullptr);
    delete m_navigator;
    delete m_info;
    delete m_reportPane;
}

void CTavixView::SetAuthSvrCreds(const std::string& userId, const std::string& password) {
    m_userId = userId;
    m_password = password;
}

bool CTavixView::LoadReportForJob(const std::string& text, int jobId, const KvbString& connection) {
    const bool asks = lacksCredentials(connection.view());
    // Called through a copy: the request may retire the view, which clears the member.
    if (const auto request = m_credentialsRequest; asks && request)
        request();
    if (m_isRetired)
        return false;
    // The ids in another repository or job mean other objects, which a detached view must not show.
    if (m_document->HasReport() && (jobId != m_document->GetJobId() || connection.view() != m_connection))
        for (CTearOff* window : TearOffsOfReport())
            window->Refresh(nullptr, RefreshHint::DocumentReset, 0);
    m_connection = connection.str();
    if (!m_document->OpenReport(asks ? withCredentials(connection.view(), m_userId, m_password) : connection, jobId)) {
        // Another report may have been opened while the message was shown.
        if (!m_document->HasReport())
            OnNew();
        return false;
    }
    m_document->SetText(text);
    m_awaitsSelection = true;
    SetLoading(true);
    Broadcast(RefreshHint::RunLoaded);
    SetLoading(false);
    if (m_wantsInfo && !m_info && hasTables(*m_document->GetViewer()))
        OpenTableInformation();
    m_afterLoad.start();
    m_document->WarnOfDamage();
    return true;
}

void CTavixView::AfterLoad() {
    // The selection must not change while a dialog is open or a list is being read.
    if (NestedLoops::instance().areRunning())
        return m_afterLoad.start();
    if (!m_document->PostLoadCheck())
        Broadcast(RefreshHint::TaskListLost);
    m_navigator->SelectSomething();
    m_awaitsSelection = false;
    if (!m_view)
        ShowReportPane();
}

bool CTavixView::SelectTable(const std::string& dataSource, const std::string& connectionType,
                             const std::string& qualifier1, const std::string& qualifier2, const std::string& table) {
    const std::optional<int> mode = dataSourceMode(connectionType);
    return mode && m_navigator->SelectTable(dataSource, qualifier1, qualifier2, table, *mode);
}

void CTavixView::SetInternalFocus() {
    m_navigator->SetInternalFocus();
}

QWidget* CTavixView::GetFirstTabStop() {
    return m_navigator->GetPageControl();
}

QWidget* CTavixView::GetLastTabStop() {
    if (QWidget* last = GetReportPane().GetLastTabStop())
        return last;
    QWidget* const first = GetFirstTabStop();
    QWidget* last = first;
    for (QWidget* next = first->nextInFocusChain(); next != first; next = next->nextInFocusChain()) {
        const bool takesTab = (next->focusPolicy() & Qt::TabFocus) != 0 && next->isEnabled() && next->isVisibleTo(this);
        if (takesTab && isAncestorOf(next) && !next->isWindow() && next->window() == window())
            last = next;
    }
    return last;
}

int CTavixView::AddCurrentFieldToCollection(int collectionId) {
    if (auto* field = qobject_cast<CFieldView*>(m_view))
        return field->AddToCollection(collectionId);
    return m_view ? m_navigator->AddSelectedFieldToCollection(collectionId) : 0;
}

void CTavixView::Refresh(CRefreshItem*, RefreshHint hint, int) {
    if (hint == RefreshHint::DocumentReset) {
        m_afterLoad.stop();
        m_awaitsSelection = false;
    }
    if (m_overview)
        RefreshOverview(hint);
    const bool mayChangeRuns = hint == RefreshHint::DocumentReset || hint == RefreshHint::RunLoaded;
    if (mayChangeRuns)
        TellRunsChanged();
    else if (mayChangeAlerts(hint))
        TellAlertsChanged();
}

// A hidden pane receives no refreshes.
void CTavixView::RefreshOverview(RefreshHint hint) {
    const bool concerns = hint == RefreshHint::DocumentReset || hint == RefreshHint::RunLoaded ||
                          hint == RefreshHint::FindingsChanged || mayChangeAlerts(hint);
    if (!concerns)
        return;
    m_overview->Forget();
    if (mayChangeAlerts(hint) && m_reportPane->currentWidget() == m_overview)
        ShowReportPane();
}

void CTavixView::TellAlertsChanged() {
    if (const auto changed = m_alertsChanged)
        changed();
}

void CTavixView::TellRunsChanged() {
    if (const auto changed = m_runsChanged)
        changed();
}

void CTavixView::Broadcast(CRefreshItem* sender, RefreshHint hint, int parameter) {
    m_document->Notice(hint);
    refreshPanes(RefreshOrder(), sender, hint, parameter, m_loading);
    if (m_loading)
        ShowReportPane();
}

void CTavixView::SelectionChanged(NavigatorPage page, const ReportSelection& selection) {
    m_model.Select(page, selection);
    if (m_loading)
        return;
    ShowReportPane();
    if (m_info)
        m_info->ShowSelection();
}

bool CTavixView::SelectField(int fieldId) {
    return m_navigator->SelectField(fieldId);
}

bool CTavixView::SelectTableOf(const NavigateRequest& request) {
    if (request.tableId == -1)
        return m_navigator->SelectTable(request.dataSource, request.catalog, request.schema, request.table,
                                        request.mode);
    ReportSelection table;
    table.kind = ReportSelection::Kind::Table;
    table.table.id = request.tableId;
    return m_navigator->SelectObject(table);
}

bool CTavixView::Navigate(const NavigateRequest& request) {
    const bool isElsewhere = request.report != -1 && request.report != m_document->GetJobId();
    if (isElsewhere && !LoadReportForJob(request.reportName, request.report, KvbString(m_connection)))
        return false;
    if (request.run != -1 && !m_document->SetCurrentJob(request.run))
        return false;
    if (!SelectTableOf(request))
        return false;
    auto* table = qobject_cast<CTableView*>(m_view);
    if (!table)
        return false;
    const auto subject = findAlertSubject(request.metricKind);
    if (subject == AlertSubject::StandardMetric)
        table->OpenStandardMetric(request.rowId, request.metricId);
    else if (subject == AlertSubject::CustomMetric)
        table->OpenCustomMetric(request.metricId);
    else if (subject == AlertSubject::BusinessRule)
        table->OpenBusinessRule(request.metricId);
    table->FocusContents();
    table->update();
    return true;
}

bool CTavixView::OpenField(const ReportSelection& owner, int fieldId) {
    if (!m_navigator->SelectObject(owner) || !m_navigator->SelectField(fieldId))
        return false;
    window()->activateWindow();
    SetInternalFocus();
    return true;
}

std::string CTavixView::GetDetailsText(const ReportSelection& selection) {
    return m_navigator->GetInformationText(selection);
}

CReportView& CTavixView::KeptView(ReportPaneKind kind) {
    CReportView*& view = kind == ReportPaneKind::Table ? m_tableView : m_fieldView;
    if (!view) {
        if (kind == ReportPaneKind::Table)
            view = new CTableView(*this, false, m_reportPane);
        else
            view = new CFieldView(*this, false, m_reportPane);
        connect(view, &CReportView::DetachRequested, this, &CTavixView::Detach);
        m_reportPane->addWidget(view);
    }
    return *view;
}

void CTavixView::ShowReportView(ReportPaneKind kind) {
    const bool hadFocus = m_view && m_view->isAncestorOf(focusWidget());
    m_view = &KeptView(kind);
    m_view->TakeUp();
    m_reportPane->setCurrentWidget(m_view);
    if (hadFocus)
        m_view->FocusContents();
}

void CTavixView::WarnSoon(const std::string& text) {
    m_warnings.push_back(text);
    if (m_warnings.size() == 1)
        QMetaObject::invokeMethod(this, &CTavixView::ShowWarnings, Qt::QueuedConnection);
}

// When several panes fail at once, they have one cause. Each also says in its own area what is missing.
void CTavixView::ShowWarnings() {
    const std::vector<std::string> warnings = std::exchange(m_warnings, {});
    if (!warnings.empty() && !m_isRetired)
        m_document->GetMessages().warn(warnings.front());
}

// Keys of the navigator and of the table information end up here; the report pane handles its own.
void CTavixView::keyPressEvent(QKeyEvent* event) {
    const bool isPage = event->key() == Qt::Key_PageDown || event->key() == Qt::Key_PageUp;
    if (m_view && isPage && event->modifiers().testFlag(Qt::ControlModifier))
        m_view->StepTab(event->key() == Qt::Key_PageDown ? 1 : -1);
    else
        SplitFrame::keyPressEvent(event);
}

bool CTavixView::ShowOverview() {
    const bool isOfTables = m_document->HasReport() && m_model.GetPage() == NavigatorPage::Tables;
    if (!isOfTables || m_awaitsSelection || m_navigator->IsPageEmpty())
        return false;
    if (!m_overview) {
        m_overview = new CRunView(*this, m_reportPane);
        m_reportPane->addWidget(m_overview);
        // Queued: the door hides the control that was activated.
        connect(m_overview, &CRunView::DoorOpened, this, &CTavixView::OpenDoor, Qt::QueuedConnection);
    }
    if (!m_overview->ShowRun(m_navigator->GetDataSource()))
        return false;
    m_reportPane->setCurrentWidget(m_overview);
    return true;
}

void CTavixView::OpenDoor(const OverviewDoor& door) {
    using Place = OverviewDoor::Place;
    ReportSelection owner;
    owner.kind = ReportSelection::Kind::Table;
    owner.table.id = door.table;
    if (door.place == Place::None || NestedLoops::instance().isDialogOpen())
        return;
    if (door.place == Place::Field) {
        OpenField(owner, door.field);
        return;
    }
    auto* table = m_navigator->SelectObject(owner) ? qobject_cast<CTableView*>(m_view) : nullptr;
    if (!table)
        return;
    if (door.place == Place::Metric)
        table->OpenStandardMetric(door.field, door.item);
    else if (door.place == Place::CustomMetric)
        table->OpenCustomMetric(door.item);
    else if (door.place == Place::Rule)
        table->OpenBusinessRule(door.item);
    else if (door.place == Place::Alerts)
        table->SelectTab(CTableView::Alerts);
    table->FocusContents();
}

void CTavixView::ShowEmptyView() {
    const EmptyPaneText text = m_model.GetEmptyText(m_document->HasReport(), m_navigator->IsPageEmpty());
    m_empty->SetText(toQString(text.title), toQString(text.advice));
}

void CTavixView::ShowReportPane() {
    const ReportPaneKind kind = m_model.GetPaneKind();
    if (kind == ReportPaneKind::Empty) {
        m_view = nullptr;
        if (ShowOverview())
            return;
        ShowEmptyView();
        m_reportPane->setCurrentWidget(m_empty);
    } else if (m_view && m_view->Suits(*this)) {
        m_view->ShowSelection();
    } else {
        ShowReportView(kind);
    }
}

std::vector<CRefreshItem*> CTavixView::RefreshOrder() {
    std::vector<CRefreshItem*> order = {this, m_navigator, m_info, &GetReportPane()};
    for (CTearOff* window : m_document->HasReport() ? TearOffsOfReport() : TearOffs())
        order.push_back(window);
    return order;
}

CReportPane& CTavixView::GetReportPane() const {
    if (m_view)
        return *m_view;
    if (m_overview && m_reportPane->currentWidget() == m_overview)
        return *m_overview;
    return *m_empty;
}

int CTavixView::GetItemCode() const {
    return static_cast<int>(m_view ? m_view->GetItemCode() : ItemCode::None);
}

void CTavixView::OpenTableInformation() {
    m_info = new CTableInfo(*this, this);
    // Queued: the pane cannot be destroyed in the click of its own button.
    connect(m_info, &CTableInfo::CloseRequested, this, &CTavixView::OnCloseTableInformation, Qt::QueuedConnection);
    SetInfoPane(m_info);
    m_info->show();
    // Placed before the report pane in the tab order, because GetLastTabStop() is in the report pane.
    QWidget* last = m_navigator;
    for (QWidget* next = nextInFocusChain(); next != this; next = next->nextInFocusChain()) {
        if (m_navigator->isAncestorOf(next) && next->focusPolicy() & Qt::TabFocus)
            last = next;
    }
    m_info->ComeAfter(last);
}

void CTavixView::CloseTableInformation() {
    const bool hadFocus = m_info && m_info->isAncestorOf(focusWidget());
    SetInfoPane(nullptr);
    delete m_info;
    m_info = nullptr;
    if (hadFocus)
        SetInternalFocus();
}

// Losing the layout is not worth a message.
void CTavixView::Remember() {
    (void)writePaneMemory(m_document->GetSettings(), {GetRatios(), IsNavigatorMoved(), m_wantsInfo});
}

} // namespace tavix
