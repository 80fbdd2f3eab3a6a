#pragma once

#include "host/TavixHost.h"

#include <QObject>

#include <vector>

class QAction;
class QComboBox;
class QMainWindow;
class QMenu;

namespace tavix::shell {

class ShellState;

/// The menus and the toolbar of the shell's window: its own actions, the commands of the viewer, and the runs.
class ShellActions final : public QObject {
    Q_OBJECT
  public:
    /// All must outlive the actions. The window becomes their parent.
    ShellActions(QMainWindow& window, Veldra::Solenne::Tavix::TavixHost& host, ShellState& state);
    ~ShellActions() override;

    /// Enables and disables the actions.
    void update(bool repositoryOpen, bool reportShown);
    /// Names the closed report that can be reopened; "" for none.
    void setClosedReport(const std::string& name);
    /// Fills the list of runs, newest first.
    void fillRuns();
    /// The text of the current run in the list; "" without a run.
    [[nodiscard]] QString currentRun() const;
    [[nodiscard]] int runCount() const;

  Q_SIGNALS:
    void openRequested();
    void repositoryChosen(const QString& path);
    void reportsRequested();
    void reloadRequested();
    void reopenRequested();
    /// A command of the viewer was executed, or another run was chosen.
    void changed();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void makeActions();
    void makeToolBar();
    void fillRecent();
    void fillWindows();
    void chooseRun(int index);
    QAction* command(CommandId id);

    QMainWindow& m_window;
    Veldra::Solenne::Tavix::TavixHost& m_host;
    ShellState& m_state;
    int m_dialogs = 0; ///< the token of the handler
    bool m_repositoryOpen = false;
    bool m_reportShown = false;
    QMenu* m_recentMenu = nullptr;
    QMenu* m_windowMenu = nullptr;
    QAction* m_open = nullptr;
    QAction* m_reportsAction = nullptr;
    QAction* m_reloadAction = nullptr;
    QAction* m_reopen = nullptr;
    std::vector<QAction*> m_commands;
    QAction* m_runActions[2] = {};
    QComboBox* m_runs = nullptr;
};

} // namespace tavix::shell
