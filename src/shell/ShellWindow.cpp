#include "shell/ShellWindow.h"

#include "base/ui/QtText.h"
#include "host/TavixQtWindow.h"
#include "shell/JobListPage.h"
#include "shell/ShellIcons.h"
#include "shell/WelcomePage.h"

#include <QAction>
#include <QCloseEvent>
#include <QComboBox>
#include <QDragEnterEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QScreen>
#include <QStackedWidget>
#include <QStatusBar>
#include <QToolBar>

#include <algorithm>

namespace tavix::shell {

using Veldra::Solenne::Tavix::TavixCommandInfo;
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
      m_pages(new QStackedWidget(this)),
      m_welcome(new WelcomePage),
      m_jobs(new JobListPage),
      m_view(Veldra::Solenne::Tavix::TavixQtWindow::Build(host, m_pages)),
      m_place(new QLabel(this)),
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
    statusBar()->addPermanentWidget(m_counts);
    makeActions();
    makeToolBar();

    connect(m_welcome, &WelcomePage::openRequested, this, &ShellWindow::askForRepository);
    connect(m_welcome, &WelcomePage::recentChosen, this, &ShellWindow::openRepository);
    connect(m_jobs, &JobListPage::jobChosen, this, [this](int jobId) {
        // The second half of a double click comes when the report is open already.
        if (m_pages->currentWidget() == m_jobs)
            openReport(jobId);
    });
    m_runsChanged = m_host.RunsChangedEvent.Attach([this](TavixHost&) {
        fillRuns();
        updateState();
    });
    m_deleteHistory = m_host.DeleteHistoryEvent.Attach([](const std::function<void()>& perform) { perform(); });
    restoreWindow();
    showWelcome();
}

ShellWindow::~ShellWindow() {
    m_host.RunsChangedEvent.Detach(m_runsChanged);
    m_host.DeleteHistoryEvent.Detach(m_deleteHistory);
    m_host.Dispose();
}

void ShellWindow::makeActions() {
    QMenu* file = menuBar()->addMenu(QStringLiteral("&File"));
    QAction* open = file->addAction(shellIcon(ShellIcon::Open), QStringLiteral("&Open Repository..."),
                                    QKeySequence::Open, this, &ShellWindow::askForRepository);
    open->setIconText(QStringLiteral(" Open"));
    open->setObjectName(QStringLiteral("open"));
    m_recentMenu = file->addMenu(QStringLiteral("Open &Recent"));
    connect(m_recentMenu, &QMenu::aboutToShow, this, &ShellWindow::fillRecent);
    file->addSeparator();
    m_reportsAction = file->addAction(shellIcon(ShellIcon::Reports), QStringLiteral("Reports of the Repositor&y"),
                                      QKeySequence(Qt::CTRL | Qt::Key_J), this, &ShellWindow::showReports);
    m_reportsAction->setIconText(QStringLiteral(" Reports"));
    m_reloadAction = file->addAction(shellIcon(ShellIcon::Reload), QStringLiteral("Re&load"), QKeySequence(Qt::Key_F5),
                                     this, &ShellWindow::reload);
    m_reloadAction->setIconText(QStringLiteral(" Reload"));
    file->addSeparator();
    file->addAction(QStringLiteral("&Quit"), QKeySequence(Qt::CTRL | Qt::Key_Q), this, &QWidget::close);

    QMenu* report = menuBar()->addMenu(QStringLiteral("&Report"));
    for (const TavixCommandInfo& info : TavixHost::GetCommands()) {
        QAction* action = report->addAction(toQString(info.Text), this, [this, id = info.Id] {
            m_host.ExecuteCommand(id);
            updateState();
        });
        action->setData(info.Id);
        action->setStatusTip(toQString(info.StatusText));
        m_commands.push_back(action);
    }
    command(CommandId::Options)->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Comma));
    command(CommandId::Options)->setIcon(shellIcon(ShellIcon::Options));
    command(CommandId::Options)->setIconText(QStringLiteral(" Options"));
    command(CommandId::DeleteHistory)->setIcon(shellIcon(ShellIcon::DeleteHistory));
    report->addSeparator();
    const auto step = [this](int by) {
        const int row = m_runs->currentIndex() + by;
        if (row >= 0 && row < m_runs->count())
            chooseRun(row);
    };
    m_runActions[0] =
        report->addAction(QStringLiteral("&Newer Run"), QKeySequence(Qt::ALT | Qt::Key_Up), this, [step] { step(-1); });
    m_runActions[1] = report->addAction(QStringLiteral("Ol&der Run"), QKeySequence(Qt::ALT | Qt::Key_Down), this,
                                        [step] { step(1); });
    connect(report, &QMenu::aboutToShow, this, &ShellWindow::updateCommands);

    QMenu* help = menuBar()->addMenu(QStringLiteral("&Help"));
    help->addAction(QStringLiteral("&About Tavix"), this, [this] {
        QMessageBox::about(this, QStringLiteral("About Tavix"),
                           QStringLiteral("<h3>Tavix %1</h3><p>Looks at data profiles: what tables hold, field by "
                                          "field.</p><p>Free software under the GNU General Public License, version 3 "
                                          "or later.</p>")
                               .arg(QStringLiteral(TAVIX_VERSION)));
    });
}

QAction* ShellWindow::command(CommandId id) {
    const auto found = std::find_if(m_commands.begin(), m_commands.end(), [id](const QAction* action) {
        return action->data().toInt() == static_cast<int>(id);
    });
    return *found;
}

void ShellWindow::makeToolBar() {
    QToolBar* bar = addToolBar(QStringLiteral("Main"));
    bar->setObjectName(QStringLiteral("mainToolBar"));
    bar->setMovable(false);
    bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    bar->setIconSize({18, 18});
    bar->setContextMenuPolicy(Qt::PreventContextMenu);
    bar->addAction(findChild<QAction*>(QStringLiteral("open")));
    bar->addAction(m_reportsAction);
    bar->addAction(m_reloadAction);
    auto* space = new QWidget(bar);
    space->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    bar->addWidget(space);
    auto* label = new QLabel(QStringLiteral("R&un:  "), bar);
    bar->addWidget(label);
    m_runs = new QComboBox(bar);
    m_runs->setAccessibleName(QStringLiteral("Run"));
    m_runs->setToolTip(QStringLiteral("The run whose figures are shown"));
    m_runs->setMinimumWidth(300);
    m_runs->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    m_runs->setMaximumWidth(460);
    label->setBuddy(m_runs);
    connect(m_runs, &QComboBox::activated, this, &ShellWindow::chooseRun);
    bar->addWidget(m_runs);
    bar->addSeparator();
    bar->addAction(command(CommandId::Options));
}

void ShellWindow::askForRepository() {
    const QString start = m_repository.empty() ? QString() : QFileInfo(toQString(m_repository)).absolutePath();
    const QString path = QFileDialog::getOpenFileName(this, QStringLiteral("Open Repository"), start,
                                                      QStringLiteral("Profile repositories (*.tavix *.db *.sqlite);;"
                                                                     "All files (*)"));
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
    m_pages->setCurrentWidget(m_view);
    m_host.SetInternalFocus();
    fillRuns();
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

void ShellWindow::showReports() {
    if (m_repository.empty())
        return showWelcome();
    m_pages->setCurrentWidget(m_jobs);
    m_jobs->focusList();
    updateState();
}

void ShellWindow::showWelcome() {
    m_welcome->setRecent(m_state.recentRepositories());
    m_pages->setCurrentWidget(m_welcome);
    updateState();
}

void ShellWindow::fillRecent() {
    m_recentMenu->clear();
    for (const std::string& path : m_state.recentRepositories()) {
        const QString file = toQString(path);
        m_recentMenu->addAction(QString(file).replace(u'&', QStringLiteral("&&")), this,
                                [this, file] { openRepository(file); });
    }
    if (m_recentMenu->isEmpty())
        m_recentMenu->addAction(QStringLiteral("None yet"))->setEnabled(false);
}

void ShellWindow::fillRuns() {
    std::vector<TavixRunInfo> runs = m_host.GetJobRuns();
    std::stable_sort(runs.begin(), runs.end(), [](const TavixRunInfo& a, const TavixRunInfo& b) {
        return a.DateObject != b.DateObject ? a.DateObject > b.DateObject : a.ID > b.ID;
    });
    m_runs->clear();
    for (const TavixRunInfo& run : runs) {
        const QString date = toQString(run.Date);
        m_runs->addItem(run.Description.empty()
                            ? date
                            : QStringLiteral("%1  ·  %2").arg(date, toQString(run.Description).simplified()),
                        run.ID);
    }
    m_runs->setCurrentIndex(m_runs->findData(m_host.GetCurrentRun()));
}

void ShellWindow::chooseRun(int index) {
    m_host.SetCurrentRun(m_runs->itemData(index).toInt());
    // A run that could not be loaded leaves the old one current.
    m_runs->setCurrentIndex(m_runs->findData(m_host.GetCurrentRun()));
    updateState();
}

void ShellWindow::updateCommands() {
    const bool reportShown = m_pages->currentWidget() == m_view && m_host.HasReport();
    for (QAction* action : m_commands) {
        const int id = action->data().toInt();
        const auto state = m_host.ExecuteUpdateUICommand(id);
        action->setEnabled(state.Enabled && (reportShown || id == static_cast<int>(CommandId::Options)));
    }
    m_runActions[0]->setEnabled(reportShown && m_runs->currentIndex() > 0);
    m_runActions[1]->setEnabled(reportShown && m_runs->currentIndex() + 1 < m_runs->count());
}

void ShellWindow::updateState() {
    // "New" leaves the viewer without a report; the list of reports is where one goes from there.
    if (m_pages->currentWidget() == m_view && !m_host.HasReport()) {
        m_jobId = -1;
        m_pages->setCurrentWidget(m_repository.empty() ? static_cast<QWidget*>(m_welcome) : m_jobs);
        m_jobs->focusList();
    }
    const bool reportShown = m_pages->currentWidget() == m_view && m_host.HasReport();
    m_reportsAction->setEnabled(!m_repository.empty());
    m_reloadAction->setEnabled(!m_repository.empty());
    m_runs->setEnabled(reportShown && m_runs->count() > 0);
    if (!m_host.HasReport())
        m_runs->clear();
    updateCommands();

    QString title = QStringLiteral("Tavix");
    if (reportShown)
        title = QStringLiteral("%1 - %2 - Tavix").arg(toQString(m_host.GetReportTitle()), m_runs->currentText());
    else if (!m_repository.empty())
        title = QStringLiteral("%1 - Tavix").arg(QFileInfo(toQString(m_repository)).fileName());
    setWindowTitle(title);
    m_place->setText(m_repository.empty() ? QStringLiteral("No repository is open") : toQString(m_repository));
    m_counts->setText(m_repository.empty() ? QString()
                      : reportShown        ? counted(static_cast<std::size_t>(m_runs->count()), QStringLiteral("run"))
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
    event->acceptProposedAction();
    openRepository(droppedFile(event->mimeData()));
}

} // namespace tavix::shell
