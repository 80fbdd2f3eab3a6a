#pragma once

#include "base/Messages.h"
#include "host/TavixHost.h"
#include "shell/ShellState.h"

#include <QMainWindow>

#include <memory>
#include <string>
#include <vector>

class QLabel;
class QStackedWidget;
class QToolButton;

namespace tavix::shell {

class JobListPage;
class ShellActions;
class WelcomePage;

/// The shell's one window: a welcome page, the list of a repository's reports, and the viewer, which it uses only
/// through the host.
class ShellWindow final : public QMainWindow {
    Q_OBJECT
  public:
    /// Both must outlive the window.
    ShellWindow(Veldra::Solenne::Tavix::TavixHost& host, Messages& messages);
    ~ShellWindow() override;

    /// Shows the repository's reports, or its only report. After a failure, which is shown, everything stays as it was.
    bool openRepository(const QString& path);
    /// Opens the most recent repository, if there is one.
    void openLastRepository();
    /// False, after a message, when the repository has no report of that name.
    bool openReportNamed(const std::string& job);
    /// Shows the open report, else opens the first one; false, after a message, when there is none or it cannot be
    /// opened.
    bool showReport();
    void showReports();
    void showWelcome();

  protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

  private:
    void askForRepository();
    bool readReports(const std::string& path, std::vector<Veldra::Solenne::Tavix::TavixReportInfo>& reports);
    bool openReport(int jobId);
    void reload();
    void reopen();
    void forgetClosedReport();
    void updateState();
    /// "" when the repository has no report of that job.
    [[nodiscard]] std::string reportName(int jobId) const;
    void restoreWindow();

    Veldra::Solenne::Tavix::TavixHost& m_host;
    Messages& m_messages;
    ShellState m_state;
    std::string m_repository; ///< "" while none is open
    std::vector<Veldra::Solenne::Tavix::TavixReportInfo> m_reports;
    int m_jobId = -1;
    int m_runId = -1;     ///< the run that was shown last
    int m_closedJob = -1; ///< the report that was closed last, and its run
    int m_closedRun = -1;
    int m_runsChanged = 0; ///< the tokens of the handlers
    int m_alertsChanged = 0;
    int m_deleteHistory = 0;
    int m_colors = 0;

    ShellActions* m_actions;
    QStackedWidget* m_pages;
    WelcomePage* m_welcome;
    JobListPage* m_jobs;
    QWidget* m_view;
    QLabel* m_place;
    QToolButton* m_alerts;
    QLabel* m_counts;
};

} // namespace tavix::shell
