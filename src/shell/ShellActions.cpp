#include "shell/ShellActions.h"

#include "base/ui/NestedLoop.h"
#include "base/ui/QtText.h"
#include "shell/ShellIcons.h"
#include "shell/ShellState.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QEvent>
#include <QLabel>
#include <QMainWindow>
#include <QMenuBar>
#include <QMessageBox>
#include <QToolBar>
#include <QToolButton>

#include <algorithm>
#include <utility>

namespace tavix::shell {

using Veldra::Solenne::Tavix::TavixCommandInfo;
using Veldra::Solenne::Tavix::TavixHost;
using Veldra::Solenne::Tavix::TavixRunInfo;
using Veldra::Solenne::Tavix::TavixWindowInfo;

namespace {

bool isAboutView(int commandId) {
    switch (static_cast<CommandId>(commandId)) {
    case CommandId::ToggleTableInformation:
    case CommandId::NarrowNavigator:
    case CommandId::WidenNavigator:
    case CommandId::NarrowTableInformation:
    case CommandId::WidenTableInformation:
    case CommandId::ShowInvisible:
    case CommandId::DetachTabs:
        return true;
    default:
        return false;
    }
}

} // namespace

ShellActions::ShellActions(QMainWindow& window, TavixHost& host, ShellState& state)
    : QObject(&window), m_window(window), m_host(host), m_state(state) {
    makeActions();
    makeToolBar();
    qApp->installEventFilter(this);
    // Commands are disabled while a dialog is open; enable them again when it is closed.
    m_dialogs = m_host.DialogEvent.Attach([this](TavixHost&, bool) { update(m_repositoryOpen, m_reportShown); });
    // The buttons that open what a narrow window has no room for: Qt gives them neither words nor an action.
    for (auto* more : window.findChildren<QToolButton*>()) {
        if (!more->defaultAction() && more->text().isEmpty())
            more->setAccessibleName(QStringLiteral("More"));
    }
}

ShellActions::~ShellActions() {
    m_host.DialogEvent.Detach(m_dialogs);
}

void ShellActions::makeActions() {
    QMenu* file = m_window.menuBar()->addMenu(QStringLiteral("&File"));
    m_open = file->addAction(shellIcon(ShellIcon::Open), QStringLiteral("&Open Repository..."), QKeySequence::Open,
                             this, &ShellActions::openRequested);
    m_open->setIconText(QStringLiteral(" Open"));
    m_recentMenu = file->addMenu(QStringLiteral("Open &Recent"));
    connect(m_recentMenu, &QMenu::aboutToShow, this, &ShellActions::fillRecent);
    file->addSeparator();
    m_reportsAction = file->addAction(shellIcon(ShellIcon::Reports), QStringLiteral("Reports of the Repositor&y"),
                                      QKeySequence(Qt::CTRL | Qt::Key_J), this, &ShellActions::reportsRequested);
    m_reportsAction->setIconText(QStringLiteral(" Reports"));
    m_reloadAction = file->addAction(shellIcon(ShellIcon::Reload), QStringLiteral("Re&load"), QKeySequence(Qt::Key_F5),
                                     this, &ShellActions::reloadRequested);
    m_reloadAction->setIconText(QStringLiteral(" Reload"));
    file->addSeparator();
    file->addAction(QStringLiteral("&Quit"), QKeySequence(Qt::CTRL | Qt::Key_Q), &m_window, &QWidget::close);

    QMenu* report = m_window.menuBar()->addMenu(QStringLiteral("&Report"));
    QMenu* view = m_window.menuBar()->addMenu(QStringLiteral("&View"));
    for (const TavixCommandInfo& info : TavixHost::GetCommands()) {
        QMenu* menu = isAboutView(info.Id) ? view : report;
        QAction* action = menu->addAction(toQString(info.Text), this, [this, id = info.Id] {
            m_host.ExecuteCommand(id);
            Q_EMIT changed();
        });
        action->setData(info.Id);
        action->setStatusTip(toQString(info.StatusText));
        m_commands.push_back(action);
    }
    // Renamed: in this shell the command closes the report and creates nothing.
    QAction* close = command(CommandId::New);
    close->setText(QStringLiteral("&Close Report"));
    close->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_W));
    m_reopen = new QAction(this);
    m_reopen->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_T));
    m_reopen->setStatusTip(QStringLiteral("Reopen the report that was closed last"));
    connect(m_reopen, &QAction::triggered, this, &ShellActions::reopenRequested);
    report->insertAction(report->actions().value(report->actions().indexOf(close) + 1), m_reopen);
    setClosedReport({});
    command(CommandId::ToggleTableInformation)->setCheckable(true);
    command(CommandId::ToggleTableInformation)->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_I));
    command(CommandId::ShowInvisible)->setCheckable(true);
    command(CommandId::ShowInvisible)->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_I));
    command(CommandId::DetachTabs)->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_D));
    // At most one of the two is enabled, so they share the keys.
    for (const CommandId note : {CommandId::AddTableNote, CommandId::AddFieldNote})
        command(note)->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_N));
    command(CommandId::Alerts)->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_A));
    command(CommandId::QuickSearch)->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_F));
    command(CommandId::Filter)->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_F));
    command(CommandId::StopFiltering)->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_X));
    command(CommandId::ChooseRun)->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_R));
    command(CommandId::NarrowNavigator)->setShortcut(QKeySequence(Qt::ALT | Qt::Key_Left));
    command(CommandId::WidenNavigator)->setShortcut(QKeySequence(Qt::ALT | Qt::Key_Right));
    command(CommandId::NarrowTableInformation)->setShortcut(QKeySequence(Qt::ALT | Qt::SHIFT | Qt::Key_Right));
    command(CommandId::WidenTableInformation)->setShortcut(QKeySequence(Qt::ALT | Qt::SHIFT | Qt::Key_Left));
    command(CommandId::Options)->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Comma));
    command(CommandId::Options)->setIcon(shellIcon(ShellIcon::Options));
    command(CommandId::Options)->setIconText(QStringLiteral(" Options"));
    const std::pair<CommandId, ShellIcon> icons[] = {{CommandId::DeleteHistory, ShellIcon::DeleteHistory},
                                                     {CommandId::ChooseRun, ShellIcon::Runs},
                                                     {CommandId::Filter, ShellIcon::Filter},
                                                     {CommandId::StopFiltering, ShellIcon::StopFiltering},
                                                     {CommandId::AddTableNote, ShellIcon::Note},
                                                     {CommandId::AddFieldNote, ShellIcon::Note},
                                                     {CommandId::DetachTabs, ShellIcon::Detach}};
    for (const auto& [id, icon] : icons)
        command(id)->setIcon(shellIcon(icon));
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
    for (const QMenu* menu : {report, view})
        connect(menu, &QMenu::aboutToShow, this, [this] { update(m_repositoryOpen, m_reportShown); });

    m_windowMenu = m_window.menuBar()->addMenu(QStringLiteral("&Window"));
    connect(m_windowMenu, &QMenu::aboutToShow, this, &ShellActions::fillWindows);
    fillWindows();

    QMenu* help = m_window.menuBar()->addMenu(QStringLiteral("&Help"));
    help->addAction(QStringLiteral("&About Tavix"), this, [this] {
        const QString text = QStringLiteral("<h3>Tavix %1</h3><p>Shows data profiles: what tables hold, field by "
                                            "field.</p><p>Free software under the GNU General Public License, version "
                                            "3 or later.</p>")
                                 .arg(QStringLiteral(TAVIX_VERSION));
        ModalDialog<QMessageBox>(QMessageBox::NoIcon, QStringLiteral("About Tavix"), text, QMessageBox::Ok, &m_window)
            .exec();
    });
}

void ShellActions::setClosedReport(const std::string& name) {
    const QString shown = toQString(name).replace(u'&', QStringLiteral("&&"));
    m_reopen->setText(name.empty() ? QStringLiteral("&Reopen Closed Report") : QStringLiteral("&Reopen %1").arg(shown));
    m_reopen->setEnabled(!name.empty());
}

QAction* ShellActions::command(CommandId id) {
    const auto found = std::find_if(m_commands.begin(), m_commands.end(), [id](const QAction* action) {
        return action->data().toInt() == static_cast<int>(id);
    });
    return *found;
}

void ShellActions::makeToolBar() {
    QToolBar* bar = m_window.addToolBar(QStringLiteral("Main"));
    bar->setObjectName(QStringLiteral("mainToolBar"));
    bar->setMovable(false);
    bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    bar->setIconSize({18, 18});
    bar->setContextMenuPolicy(Qt::PreventContextMenu);
    bar->addAction(m_open);
    bar->addAction(m_reportsAction);
    bar->addAction(m_reloadAction);
    auto* space = new QWidget(bar);
    space->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    bar->addWidget(space);
    auto* label = new QLabel(QStringLiteral("R&un:  "), bar);
    bar->addWidget(label);
    m_runs = new QComboBox(bar);
    m_runs->setAccessibleName(QStringLiteral("Run"));
    m_runs->setToolTip(QStringLiteral("The run that is shown"));
    m_runs->setMinimumWidth(300);
    m_runs->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    m_runs->setMaximumWidth(460);
    label->setBuddy(m_runs);
    connect(m_runs, &QComboBox::activated, this, &ShellActions::chooseRun);
    bar->addWidget(m_runs);
    bar->addSeparator();
    bar->addAction(command(CommandId::Options));
}

// Whether a shortcut is enabled depends on the viewer's selection when it is pressed.
bool ShellActions::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride)
        update(m_repositoryOpen, m_reportShown);
    return QObject::eventFilter(watched, event);
}

void ShellActions::fillRecent() {
    m_recentMenu->clear();
    for (const std::string& path : m_state.recentRepositories()) {
        const QString file = toQString(path);
        m_recentMenu->addAction(QString(file).replace(u'&', QStringLiteral("&&")), this,
                                [this, file] { Q_EMIT repositoryChosen(file); });
    }
    if (m_recentMenu->isEmpty())
        m_recentMenu->addAction(QStringLiteral("None yet"))->setEnabled(false);
}

void ShellActions::fillWindows() {
    constexpr int kDigits = 9;
    constexpr int kLongestName = 80;
    m_windowMenu->clear();
    int number = 0;
    for (const TavixWindowInfo& window : m_host.GetWindows()) {
        QString name = toQString(window.Name);
        if (name.size() > kLongestName)
            name = name.left(kLongestName - 1) + u'…';
        name.replace(u'&', QStringLiteral("&&"));
        if (++number <= kDigits)
            name.prepend(QStringLiteral("&%1  ").arg(number));
        m_windowMenu->addAction(name, this, [this, id = window.Id] { m_host.RaiseWindow(id); });
    }
    if (number == 0)
        m_windowMenu->addAction(QStringLiteral("No separate windows"))->setEnabled(false);
    m_windowMenu->addSeparator();
    m_windowMenu->addAction(QStringLiteral("Close &All"), this, [this] { m_host.CloseWindows(); })
        ->setEnabled(number > 0);
}

void ShellActions::fillRuns() {
    std::vector<TavixRunInfo> runs = m_host.GetJobRuns();
    std::stable_sort(runs.begin(), runs.end(), [](const TavixRunInfo& a, const TavixRunInfo& b) {
        return a.DateObject != b.DateObject ? a.DateObject > b.DateObject : a.ID > b.ID;
    });
    // Runs are numbered from the earliest one, as in the list of runs.
    std::vector<int> ids;
    ids.reserve(runs.size());
    for (const TavixRunInfo& run : runs)
        ids.push_back(run.ID);
    std::sort(ids.begin(), ids.end());
    m_runs->clear();
    for (const TavixRunInfo& run : runs) {
        const auto number = std::lower_bound(ids.begin(), ids.end(), run.ID) - ids.begin() + 1;
        QStringList parts = {QString::number(number), toQString(run.Date)};
        if (!run.Description.empty())
            parts << toQString(run.Description).simplified();
        m_runs->addItem(parts.join(QStringLiteral("  ·  ")), run.ID);
    }
    m_runs->setCurrentIndex(m_runs->findData(m_host.GetCurrentRun()));
}

void ShellActions::chooseRun(int index) {
    m_host.SetCurrentRun(m_runs->itemData(index).toInt());
    // If the run could not be loaded, the old one is still current.
    m_runs->setCurrentIndex(m_runs->findData(m_host.GetCurrentRun()));
    Q_EMIT changed();
}

void ShellActions::update(bool repositoryOpen, bool reportShown) {
    m_repositoryOpen = repositoryOpen;
    m_reportShown = reportShown;
    if (!m_host.HasReport())
        m_runs->clear();
    m_reportsAction->setEnabled(repositoryOpen);
    m_reloadAction->setEnabled(repositoryOpen);
    m_runs->setEnabled(reportShown && m_runs->count() > 0);
    for (QAction* action : m_commands) {
        const int id = action->data().toInt();
        const auto state = m_host.ExecuteUpdateUICommand(id);
        action->setEnabled(state.Enabled && (reportShown || id == static_cast<int>(CommandId::Options)));
        action->setChecked(state.Checked);
    }
    m_runActions[0]->setEnabled(reportShown && m_runs->currentIndex() > 0);
    m_runActions[1]->setEnabled(reportShown && m_runs->currentIndex() + 1 < m_runs->count());
}

QString ShellActions::currentRun() const {
    return m_runs->currentText();
}

int ShellActions::runCount() const {
    return m_runs->count();
}

} // namespace tavix::shell
