#include "shell/ShellWindow.h"

#include "base/ui/NestedLoop.h"
#include "base/ui/QtText.h"
#include "base/ui/Theme.h"
#include "host/TavixQtWindow.h"
#include "shell/JobListPage.h"
#include "shell/ShellActions.h"
#include "shell/Vault.h"
#include "shell/WelcomePage.h"

#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QMimeData>
#include <QScreen>
#include <QStackedWidget>
#include <QStatusBar>
#include <QToolButton>

#include <algorithm>
#include <utility>

namespace tavix::shell {

using Veldra::Solenne::Tavix::TavixHost;
using Veldra::Solenne::Tavix::TavixReportInfo;
using Veldra::Solenne::Tavix::TavixRunInfo;

namespace {

class FileConnection final : public Veldra::Solenne::Tavix::TavixConnection {
  public:
    explicit FileConnection(std::string path) : m_path(std::move(path)) {}
    [[nodiscard]] std::string GetName() const override { return toUtf8(QFileInfo(toQString(m_path)).fileName()); }
    [[nodiscard]] std::string GetKind() const override { return "SQLite"; }
    [[nodiscard]] std::string GetConnectionString() const override { return m_path; }

  private:
    std::string m_path;
};

QString counted(std::size_t count, const QString& noun) {
    return QStringLiteral("%1 %2%3").arg(count).arg(noun, count == 1 ? QString() : QStringLiteral("s"));
}

QString droppedFile(const QMimeData* data) {
    const QList<QUrl> urls = data->urls();
    return urls.size() == 1 && urls.front().isLocalFile() ? urls.front().toLocalFile() : QString();
}

} // namespace

ShellWindow::ShellWindow(TavixHost& host, Messages& messages)
    : m_host(host),
      m_messages(messages),
      m_state(host.GetSettings()),
      m_actions(new ShellActions(*this, host, m_state)),
      m_pages(new QStackedWidget(this)),
      m_welcome(new WelcomePage),
      m_jobs(new JobListPage),
      m_view(Veldra::Solenne::Tavix::TavixQtWindow::Build(host, m_pages)),
      m_place(new QLabel(this)),
      m_alerts(new QToolButton(this)),
      m_counts(new QLabel(this)) {
    setAcceptDrops(true);
    setUnifiedTitleAndToolBarOnMac(true);
    m_pages->addWidget(m_welcome);
    m_pages->addWidget(m_jobs);
    m_pages->addWidget(m_view);
    setCentralWidget(m_pages);
    m_place->setTextFormat(Qt::PlainText);
    m_place->setContentsMargins(8, 3, 8, 3);
    statusBar()->addWidget(m_place, 1);
    m_alerts->setObjectName(QStringLiteral("alertCounts"));
    m_alerts->setAccessibleName(QStringLiteral("Alerts"));
    m_alerts->setToolTip(QStringLiteral("Alerts of the run that is shown; opens the list of all alerts"));
    m_alerts->setAutoRaise(true);
    // The command is in the menu, too.
    m_alerts->setFocusPolicy(Qt::NoFocus);
    connect(m_alerts, &QToolButton::clicked, this,
            [this] { m_host.ExecuteCommand(static_cast<int>(CommandId::Alerts)); });
    statusBar()->addPermanentWidget(m_alerts);
    statusBar()->addPermanentWidget(m_counts);
    connect(m_actions, &ShellActions::openRequested, this, &ShellWindow::askForRepository);
    connect(m_actions, &ShellActions::repositoryChosen, this, &ShellWindow::openRepository);
    connect(m_actions, &ShellActions::reportsRequested, this, &ShellWindow::showReports);
    connect(m_actions, &ShellActions::reloadRequested, this, &ShellWindow::reload);
    connect(m_actions, &ShellActions::reopenRequested, this, &ShellWindow::reopen);
    connect(m_actions, &ShellActions::changed, this, &ShellWindow::updateState);
    connect(m_welcome, &WelcomePage::openRequested, this, &ShellWindow::askForRepository);
    connect(m_welcome, &WelcomePage::repositoryChosen, this, &ShellWindow::openRepository);
    connect(m_jobs, &JobListPage::jobChosen, this, [this](int jobId) {
        // The second click of a double click arrives after the report was opened.
        if (m_pages->currentWidget() == m_jobs)
            openReport(jobId);
    });
    m_runsChanged = m_host.RunsChangedEvent.Attach([this](TavixHost&) {
        if (m_host.HasReport())
            m_jobId = m_host.GetReportJob();
        m_actions->fillRuns();
        updateState();
    });
    m_alertsChanged = m_host.AlertsChangedEvent.Attach([this](TavixHost&) { updateState(); });
    m_deleteHistory = m_host.DeleteHistoryEvent.Attach([](const std::function<void()>& perform) { perform(); });
    m_colors = m_host.ColorSchemeEvent.Attach([](TavixHost&, ColorScheme scheme) { applyColorScheme(scheme); });
    restoreWindow();
    showWelcome();
}

ShellWindow::~ShellWindow() {
    m_host.ColorSchemeEvent.Detach(m_colors);
    m_host.RunsChangedEvent.Detach(m_runsChanged);
    m_host.AlertsChangedEvent.Detach(m_alertsChanged);
    m_host.DeleteHistoryEvent.Detach(m_deleteHistory);
    m_host.Dispose();
}

void ShellWindow::askForRepository() {
    const QString start = m_repository.empty() ? QString() : QFileInfo(toQString(m_repository)).absolutePath();
    QString path;
    {
        ModalDialog<QFileDialog> dialog(this, QStringLiteral("Open Repository"), start);
        // Wide enough for all columns of its list.
        dialog->resize(dialog->sizeHint().expandedTo(QSize(900, 520)));
        dialog->setFileMode(QFileDialog::ExistingFile);
        dialog->setNameFilters(
            {QStringLiteral("Profile repositories (*.tavix *.db *.sqlite)"), QStringLiteral("All files (*)")});
        if (dialog.isAccepted())
            path = dialog->selectedFiles().value(0);
    }
    if (!path.isEmpty())
        openRepository(path);
}

bool ShellWindow::readReports(const std::string& path, std::vector<TavixReportInfo>& reports) {
    const auto busy = m_messages.busy();
    auto read = TavixHost::GetReports(FileConnection(path));
    if (!read) {
        m_messages.warn("The repository cannot be opened:\n" + path + "\n\n" + read.error().text, {});
        return false;
    }
    reports = std::move(*read);
    return true;
}

bool ShellWindow::openRepository(const QString& file) {
    const std::string path = toUtf8(QFileInfo(file).absoluteFilePath());
    std::vector<TavixReportInfo> reports;
    if (!readReports(path, reports)) {
        if (!QFileInfo::exists(file))
            m_state.removeRecentRepository(path);
        m_welcome->setRecent(m_state.recentRepositories());
        return false;
    }
    m_repository = path;
    m_reports = std::move(reports);
    m_jobId = -1;
    forgetClosedReport();
    m_host.ExecuteCommand(static_cast<int>(CommandId::New));
    m_state.addRecentRepository(path);
    m_welcome->setRecent(m_state.recentRepositories());
    m_jobs->setReports(m_repository, m_reports);
    showReports();
    if (m_reports.size() == 1 && m_reports.front().RunCount > 0)
        openReport(m_reports.front().JobID);
    return true;
}

void ShellWindow::openLastRepository() {
    if (const auto recent = m_state.recentRepositories(); !recent.empty())
        openRepository(toQString(recent.front()));
}

std::string ShellWindow::reportName(int jobId) const {
    const auto found = std::find_if(m_reports.begin(), m_reports.end(),
                                    [jobId](const TavixReportInfo& report) { return report.JobID == jobId; });
    return found == m_reports.end() ? std::string() : found->Name;
}

bool ShellWindow::openReportNamed(const std::string& job) {
    const auto found = std::find_if(m_reports.begin(), m_reports.end(),
                                    [&job](const TavixReportInfo& report) { return report.Name == job; });
    if (found == m_reports.end()) {
        m_messages.warn("This repository has no report named \"" + job + "\".", {});
        return false;
    }
    return openReport(found->JobID);
}

bool ShellWindow::openReport(int jobId) {
    const auto found = std::find_if(m_reports.begin(), m_reports.end(),
                                    [jobId](const TavixReportInfo& report) { return report.JobID == jobId; });
    if (found == m_reports.end())
        return false;
    const FileConnection connection(m_repository);
    if (!m_host.LoadReportForJob(found->Name, jobId, &connection)) {
        m_jobId = -1;
        updateState();
        return false;
    }
    m_jobId = jobId;
    forgetClosedReport();
    m_pages->setCurrentWidget(m_view);
    m_host.SetInternalFocus();
    m_actions->fillRuns();
    updateState();
    return true;
}

bool ShellWindow::showReport() {
    if (m_jobId != -1) {
        m_pages->setCurrentWidget(m_view);
        updateState();
        return true;
    }
    return !m_reports.empty() && openReport(m_reports.front().JobID);
}

void ShellWindow::reload() {
    if (m_repository.empty() || !readReports(m_repository, m_reports))
        return;
    m_jobs->setReports(m_repository, m_reports);
    if (m_jobId == -1)
        return updateState();
    const int run = m_host.GetCurrentRun();
    const bool wasShown = m_pages->currentWidget() == m_view;
    if (openReport(m_jobId)) {
        const std::vector<TavixRunInfo> runs = m_host.GetJobRuns();
        if (std::any_of(runs.begin(), runs.end(), [run](const TavixRunInfo& each) { return each.ID == run; }))
            m_host.SetCurrentRun(run);
    }
    if (!wasShown)
        showReports();
}

void ShellWindow::forgetClosedReport() {
    m_closedJob = -1;
    m_actions->setClosedReport({});
}

void ShellWindow::reopen() {
    const int run = m_closedRun;
    if (!openReport(m_closedJob))
        return;
    // The run may have been deleted; then the latest run is shown.
    const std::vector<TavixRunInfo> runs = m_host.GetJobRuns();
    if (std::any_of(runs.begin(), runs.end(), [run](const TavixRunInfo& each) { return each.ID == run; }))
        m_host.SetCurrentRun(run);
}

void ShellWindow::showReports() {
    if (m_repository.empty())
        return showWelcome();
    m_pages->setCurrentWidget(m_jobs);
    m_jobs->focusList();
    updateState();
}

void ShellWindow::showWelcome() {
    m_welcome->setRecent(m_state.recentRepositories());
    const std::string vault = m_host.GetVault();
    m_welcome->setVault(vault, repositoriesIn(vault));
    m_pages->setCurrentWidget(m_welcome);
    updateState();
}

void ShellWindow::updateState() {
    // "New" closes the report; go back to the list of reports.
    if (m_pages->currentWidget() == m_view && !m_host.HasReport()) {
        m_closedJob = std::exchange(m_jobId, -1);
        m_closedRun = m_runId;
        m_actions->setClosedReport(reportName(m_closedJob));
        m_jobs->selectJob(m_closedJob);
        m_pages->setCurrentWidget(m_repository.empty() ? static_cast<QWidget*>(m_welcome) : m_jobs);
        m_jobs->focusList();
    }
    const bool reportShown = m_pages->currentWidget() == m_view && m_host.HasReport();
    if (reportShown)
        m_runId = m_host.GetCurrentRun();
    m_actions->update(!m_repository.empty(), reportShown);

    QString title = QStringLiteral("Tavix");
    if (reportShown)
        title = QStringLiteral("%1 - %2 - Tavix").arg(toQString(m_host.GetReportTitle()), m_actions->currentRun());
    else if (!m_repository.empty())
        title = QStringLiteral("%1 - Tavix").arg(QFileInfo(toQString(m_repository)).fileName());
    setWindowTitle(title);
    m_place->setText(m_repository.empty() ? QStringLiteral("No repository is open") : toQString(m_repository));
    const std::string alerts = reportShown ? m_host.GetAlertsText() : std::string();
    m_alerts->setText(toQString(alerts));
    m_alerts->setAccessibleName(QStringLiteral("Alerts, ") + m_alerts->text());
    m_alerts->setVisible(!alerts.empty());
    m_counts->setText(m_repository.empty() ? QString()
                      : reportShown ? counted(static_cast<std::size_t>(m_actions->runCount()), QStringLiteral("run"))
                                    : counted(m_reports.size(), QStringLiteral("report")));
}

void ShellWindow::restoreWindow() {
    const QByteArray geometry = QByteArray::fromBase64(QByteArray::fromStdString(m_state.windowGeometry()));
    if (geometry.isEmpty() || !restoreGeometry(geometry)) {
        const QSize room = screen()->availableSize();
        resize(std::min(1280, room.width() * 9 / 10), std::min(800, room.height() * 9 / 10));
    }
}

void ShellWindow::closeEvent(QCloseEvent* event) {
    m_state.setWindowGeometry(saveGeometry().toBase64().toStdString());
    QMainWindow::closeEvent(event);
}

void ShellWindow::dragEnterEvent(QDragEnterEvent* event) {
    if (!droppedFile(event->mimeData()).isEmpty())
        event->acceptProposedAction();
}

void ShellWindow::dropEvent(QDropEvent* event) {
    const QString file = droppedFile(event->mimeData());
    if (file.isEmpty())
        return;
    event->acceptProposedAction();
    openRepository(file);
}

} // namespace tavix::shell
