#include "doc/ui/CTavixView.h"

#include "doc/CTavixApp.h"
#include "doc/ConnectionCredentials.h"
#include "doc/ui/CDeleteHistoryDlg.h"
#include "doc/ui/CEmptyView.h"
#include "doc/ui/COptionsSheet.h"
#include "nav/ui/CTables.h"
#include "tabs/ui/CTabStdMet.h"

#include <QHBoxLayout>
#include <QSplitter>
#include <QStackedWidget>

namespace tavix {

namespace {

constexpr int kAfterLoadMilliseconds = 250;
// Of four parts of the width, the navigator has one.
constexpr int kNavigatorShare = 1;
constexpr int kReportShare = 3;

} // namespace

CTavixView::CTavixView(const CTavixApp& app, Messages& messages, QWidget* parent)
    : QWidget(parent),
      m_document(app.StartDocument(*this, messages)),
      m_main(*this),
      m_splitter(new QSplitter(Qt::Horizontal, this)),
      m_reportPane(new QStackedWidget),
      m_empty(new CEmptyView) {
    setObjectName(QStringLiteral("tavixView"));
    m_navigator = new CTables(*this);
    m_metrics = new CTabStdMet(*this);
    m_reportPane->addWidget(m_empty);
    m_reportPane->addWidget(m_metrics);
    m_splitter->addWidget(m_navigator);
    m_splitter->addWidget(m_reportPane);
    m_splitter->setStretchFactor(0, kNavigatorShare);
    m_splitter->setStretchFactor(1, kReportShare);
    m_splitter->setSizes({kNavigatorShare * 1000, kReportShare * 1000});
    m_splitter->setChildrenCollapsible(false);
    m_splitter->setHandleWidth(1);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_splitter);

    m_afterLoad.setSingleShot(true);
    m_afterLoad.setInterval(kAfterLoadMilliseconds);
    connect(&m_afterLoad, &QTimer::timeout, this, &CTavixView::AfterLoad);
    ShowReportPane();
}

// The panes go before the document that they read.
CTavixView::~CTavixView() {
    m_afterLoad.stop();
    delete m_navigator;
    delete m_metrics;
    delete m_empty;
}

void CTavixView::SetAuthSvrCreds(const std::string& userId, const std::string& password) {
    m_userId = userId;
    m_password = password;
}

bool CTavixView::LoadReportForJob(const std::string& text, int jobId, const KvbString& connection) {
    const bool asks = lacksCredentials(connection.view());
    if (asks && m_credentialsRequest)
        m_credentialsRequest();
    if (!m_document->OpenReport(asks ? withCredentials(connection.view(), m_userId, m_password) : connection, jobId)) {
        OnNew();
        return false;
    }
    m_document->SetText(text);
    SetLoading(true);
    Broadcast(RefreshHint::RunLoaded);
    SetLoading(false);
    m_afterLoad.start();
    return true;
}

void CTavixView::AfterLoad() {
    if (!m_document->PostLoadCheck())
        Broadcast(RefreshHint::TaskListLost);
    m_navigator->SelectSomething();
}

bool CTavixView::SelectTable(const std::string& dataSource, const std::string& connectionType,
                             const std::string& qualifier1, const std::string& qualifier2, const std::string& table) {
    constexpr int kOdbc = 0;
    constexpr int kFiles = 4;
    if (connectionType != "ODBC" && connectionType != "KVTK")
        return false;
    return m_navigator->SelectTable(dataSource, qualifier1, qualifier2, table,
                                    connectionType == "ODBC" ? kOdbc : kFiles);
}

void CTavixView::SetInternalFocus() {
    m_navigator->SetInternalFocus();
}

QWidget* CTavixView::GetFirstTabStop() {
    return m_navigator->GetPageControl();
}

QWidget* CTavixView::GetLastTabStop() {
    QWidget* last = nullptr;
    for (QWidget* next = nextInFocusChain(); next != this; next = next->nextInFocusChain()) {
        if (m_reportPane->isAncestorOf(next) && next->isVisibleTo(this) && next->isEnabled() && !next->focusProxy() &&
            next->focusPolicy() & Qt::TabFocus)
            last = next;
    }
    return last ? last : GetFirstTabStop();
}

int CTavixView::AddCurrentFieldToCollection(int collectionId) {
    return m_reportPane->currentWidget() == m_metrics ? m_navigator->AddSelectedFieldToCollection(collectionId) : 0;
}

void CTavixView::Refresh(CRefreshItem*, RefreshHint hint, int) {
    if (hint == RefreshHint::DocumentReset)
        m_afterLoad.stop();
    const bool mayChangeRuns = hint == RefreshHint::DocumentReset || hint == RefreshHint::RunLoaded;
    if (mayChangeRuns && m_runsChanged)
        m_runsChanged();
}

void CTavixView::Broadcast(CRefreshItem* sender, RefreshHint hint, int parameter) {
    if (m_loading && hint == RefreshHint::TaskListLost)
        return;
    for (CRefreshItem* item : {static_cast<CRefreshItem*>(this), static_cast<CRefreshItem*>(m_navigator),
                               static_cast<CRefreshItem*>(m_metrics), static_cast<CRefreshItem*>(m_empty)}) {
        if (item != sender)
            item->Refresh(sender, hint, parameter);
    }
    if (m_loading)
        ShowReportPane();
}

void CTavixView::SelectionChanged(NavigatorPage page, const ReportSelection& selection) {
    m_mode = page;
    m_selection = selection;
    if (!m_loading)
        ShowReportPane();
}

void CTavixView::ShowReportPane() {
    const bool hasFigures =
        m_selection.kind == ReportSelection::Kind::Table || m_selection.kind == ReportSelection::Kind::Collection;
    if (hasFigures) {
        m_metrics->ShowSelection();
        m_reportPane->setCurrentWidget(m_metrics);
        return;
    }
    if (!m_document->HasReport())
        m_empty->SetText(QStringLiteral("No report is open"), {});
    else if (m_mode == NavigatorPage::Collections)
        m_empty->SetText(QStringLiteral("No collection selected"),
                         QStringLiteral("Select a collection on the left to compare its fields."));
    else
        m_empty->SetText(QStringLiteral("No table selected"),
                         QStringLiteral("Select a table on the left to see the metrics of its fields."));
    m_reportPane->setCurrentWidget(m_empty);
}

void CTavixView::OnNew() {
    m_document->Clear();
    Broadcast(RefreshHint::DocumentReset);
}

void CTavixView::OnRefreshCollections() {
    m_navigator->RefreshCollections();
}

void CTavixView::OnOptions() {
    COptionsSheet::Run(*m_document, this);
}

void CTavixView::OnDeleteHistory() {
    if (m_deleteHistoryRequest)
        m_deleteHistoryRequest();
    else
        DeleteHistory();
}

bool CTavixView::CanDeleteHistory() const {
    return m_document->HasReport() && m_document->GetRunCount() > 1;
}

void CTavixView::DeleteHistory() {
    m_document->DeleteHistory(
        [this](HistoryDeletion& deletion) { return CDeleteHistoryDlg::Ask(*m_document, this, deletion); });
    if (m_runsChanged)
        m_runsChanged();
}

} // namespace tavix
