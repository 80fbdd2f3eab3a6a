#include "host/TavixHost.h"

#include "access/Layouts.h"
#include "access/PrViewer.h"
#include "base/GenException.h"
#include "base/ui/NestedLoop.h"
#include "doc/Commands.h"
#include "frame/ui/CTavixView.h"
#include "host/HostWindow.h"
#include "host/KeyMessage.h"
#include "host/TavixQtWindow.h"
#include "settings/Settings.h"

#include <utility>

namespace Veldra::Solenne::Tavix {

namespace {

// A session of its own that is closed at the end of the scope, also after an exception.
class PrivateSession {
  public:
    explicit PrivateSession(const tavix::KvbString& connection)
        : m_viewer(tavix::PrViewer::create()), m_open(m_viewer->init(connection)) {}
    ~PrivateSession() {
        try {
            m_viewer->close();
        } catch (const tavix::GenException&) {
            // The session has been read; a failure to close it does not change the result.
        }
    }
    PrivateSession(const PrivateSession&) = delete;
    PrivateSession& operator=(const PrivateSession&) = delete;

    [[nodiscard]] bool isOpen() const { return m_open; }
    tavix::PrViewer* operator->() { return m_viewer.get(); }

  private:
    tavix::PrViewer::Handle m_viewer;
    bool m_open;
};

std::string dateText(tavix::LibraryDate date) {
    return tavix::formatDateTime(tavix::decompose(date), tavix::userLocale());
}

} // namespace

TavixHost::TavixHost() : m_app(std::make_shared<tavix::CTavixApp>()), m_messages(nullptr), m_window(MakeWindow()) {}

TavixHost::TavixHost(tavix::Messages& messages)
    : m_app(std::make_shared<tavix::CTavixApp>()), m_messages(&messages), m_window(MakeWindow()) {}

TavixHost::TavixHost(tavix::Messages& messages, std::unique_ptr<tavix::SettingsStore> settings)
    : m_app(std::make_shared<tavix::CTavixApp>(std::move(settings))), m_messages(&messages), m_window(MakeWindow()) {}

TavixHost::~TavixHost() {
    Dispose();
}

std::unique_ptr<TavixHost::Window> TavixHost::MakeWindow() {
    return std::make_unique<Window>(*this, m_app, m_messages);
}

tavix::CTavixView* TavixHost::View() const {
    return m_window->view;
}

tavix::Messages& TavixHost::GetMessages() const {
    return m_window->messages;
}

bool TavixHost::IsDialogOpen() const {
    return tavix::NestedLoops::instance().isDialogOpen();
}

bool TavixHost::RefusesNow() const {
    if (!View() || !IsDialogOpen())
        return false;
    // One message at a time, even if a shell keeps trying.
    Window& window = *m_window;
    if (std::exchange(window.isRefusing, true))
        return true;
    const tavix::NestedLoop keepsWindow(tavix::NestedLoop::Kind::Other);
    window.messages.warn("The report has an open dialog. Close it first.", {});
    window.isRefusing = false;
    return true;
}

void TavixHost::AddView(tavix::CTavixView& view) {
    m_window->view = &view;
    m_window->boxes.setWindow(&view);
    // The shell's handlers may destroy the window while functions of the view are on the stack.
    view.SetDeleteHistoryRequest([this] {
        const tavix::NestedLoop handlers(tavix::NestedLoop::Kind::Other);
        DeleteHistory();
    });
    view.SetCredentialsRequest([this] {
        const tavix::NestedLoop handlers(tavix::NestedLoop::Kind::Other);
        GetAuthSvrCredentials();
    });
    view.SetRunsChanged([this] {
        const tavix::NestedLoop handlers(tavix::NestedLoop::Kind::Other);
        RunsChangedEvent.Raise(*this);
    });
    view.SetAlertsChanged([this] {
        const tavix::NestedLoop handlers(tavix::NestedLoop::Kind::Other);
        AlertsChangedEvent.Raise(*this);
    });
    view.SetColorSchemes([this] { return ColorSchemeEvent.HasHandlers(); },
                         [this](tavix::ColorScheme scheme) {
                             const tavix::NestedLoop handlers(tavix::NestedLoop::Kind::Other);
                             ColorSchemeEvent.Raise(*this, scheme);
                         });
}

NativeWindow TavixHost::BuildWindowCore(NativeWindow parent) {
    Dispose();
    auto view = std::make_unique<tavix::CTavixView>(*m_app, GetMessages(), nullptr);
    m_window->parent = ForeignParent::Embed(*view, parent);
    if (!m_window->parent)
        return 0;
    m_window->parent->OfferKey = [this](const QKeyEvent& key) {
        const tavix::NestedLoop site(tavix::NestedLoop::Kind::Other);
        return TellSiteAtLastStop(toNativeMessage(key, m_window->parent->GetWindow()));
    };
    m_window->parent->Lost = [this] { Dispose(); };
    AddView(*view.release());
    OnTavixWindowCreated.Raise(*this);
    return m_window->parent ? m_window->parent->GetWindow() : 0;
}

QWidget* TavixQtWindow::Build(TavixHost& host, QWidget* parent) {
    host.Dispose();
    host.AddView(*new tavix::CTavixView(*host.m_app, host.GetMessages(), parent));
    // Qt emits destroyed() before it deletes the children, so that a view in use can be taken out.
    if (parent)
        host.m_window->ownerGone =
            QObject::connect(parent, &QObject::destroyed, host.View(), [&host] { host.Dispose(); });
    host.OnTavixWindowCreated.Raise(host);
    return host.View();
}

void TavixHost::DestroyWindowCore(NativeWindow window) {
    if (window != 0 && m_window->parent && m_window->parent->GetWindow() == window)
        Dispose();
}

void TavixHost::Dispose() {
    std::unique_ptr<Window> gone = std::exchange(m_window, MakeWindow());
    m_window->keyboard = gone->keyboard;
    auto& loops = tavix::NestedLoops::instance();
    if (!gone->view || !loops.areRunning())
        return;
    gone->Retire();
    loops.whenOver([kept = std::shared_ptr<Window>(std::move(gone))] {});
}

bool TavixHost::ReportExists(int jobId, const TavixConnection* connection) {
    if (!connection)
        return false;
    try {
        PrivateSession session(connection->GetConnectionString());
        int folderId = -1;
        tavix::KvbString text;
        return session.isOpen() && session->reportGetReportInfo(jobId, folderId, text);
    } catch (const std::exception&) {
        return false;
    }
}

tavix::Result<std::vector<TavixReportInfo>> TavixHost::GetReports(const TavixConnection& connection) {
    using namespace tavix::layout;
    try {
        PrivateSession session(connection.GetConnectionString());
        if (!session.isOpen())
            return tavix::Error{session->getErrorString().str()};
        const tavix::ProfileCursorHandle rows = session->getReports();
        if (!rows)
            return tavix::Error{session->getErrorString().str()};
        std::vector<TavixReportInfo> reports;
        while (rows->next()) {
            TavixReportInfo& report = reports.emplace_back();
            report.JobID = rows->getColumnInt(ReportId);
            report.Name = rows->getColumnValue(ReportName).str();
            report.Description = rows->getColumnValue(ReportDescription).str();
            report.RunCount = rows->getColumnInt(ReportRunCount);
            if (!rows->isColumnNull(ReportLastRunDate))
                report.LastRun = dateText(rows->getColumnDouble(ReportLastRunDate));
        }
        return reports;
    } catch (const tavix::GenException& exception) {
        return tavix::Error{exception.getText().str()};
    }
}

bool TavixHost::LoadReportForJob(const std::string& text, int jobId, const TavixConnection* connection) {
    return View() && connection && !RefusesNow() && View() &&
           View()->LoadReportForJob(text, jobId, connection->GetConnectionString());
}

std::vector<TavixRunInfo> TavixHost::GetJobRuns() const {
    std::vector<TavixRunInfo> list;
    if (!View())
        return list;
    const auto runs = View()->GetTavixDoc().GetRuns();
    if (!runs)
        return list;
    const std::locale locale = tavix::userLocale();
    for (const tavix::RunInfo& run : *runs)
        list.push_back({run.id, run.description, run.DateText(locale), run.date});
    return list;
}

int TavixHost::GetReportJob() const {
    return View() ? View()->GetTavixDoc().GetJobId() : -1;
}

int TavixHost::GetCurrentRun() const {
    return View() ? View()->GetTavixDoc().GetCurrentJob() : -1;
}

bool TavixHost::SetCurrentRun(int runId) {
    return View() && !RefusesNow() && View()->GetTavixDoc().SetCurrentJob(runId);
}

bool TavixHost::SelectTable(const std::string& dataSource, const std::string& connectionType,
                            const std::string& qualifier1, const std::string& qualifier2, const std::string& table) {
    return View() && !RefusesNow() && View()->SelectTable(dataSource, connectionType, qualifier1, qualifier2, table);
}

int TavixHost::AddCurrentFieldToCollection(int collectionId) {
    return View() && !RefusesNow() ? View()->AddCurrentFieldToCollection(collectionId) : 0;
}

void TavixHost::DeleteHistory() {
    // A handler may call back much later, when the view may be gone.
    DeleteHistoryEvent.Raise([this, view = m_window->view] {
        // The host lives at least as long as the view is not retired.
        if (view && !view->IsRetired() && !RefusesNow())
            view->DeleteHistory();
    });
}

void TavixHost::GetAuthSvrCredentials() {
    TavixAuthSvrInfo info;
    // A handler may destroy the window or the host.
    const QPointer<tavix::CTavixView> view = m_window->view;
    GetAuthSvrCreds.Raise(info);
    if (view)
        view->SetAuthSvrCreds(info.UserID, info.Password);
}

std::vector<TavixCommandInfo> TavixHost::GetCommands() {
    std::vector<TavixCommandInfo> list;
    for (const tavix::TavixCommand& command : tavix::kCommands) {
        const std::size_t split = command.text.find('\n');
        list.push_back({static_cast<int>(command.id), std::string(command.text.substr(split + 1)),
                        std::string(command.text.substr(0, split))});
    }
    return list;
}

bool TavixHost::ExecuteCommand(int commandId) {
    if (!View())
        return false;
    // An unknown command is not refused: it is not handled.
    if (IsDialogOpen() && View()->GetTavixMain().Update(commandId).handled)
        return RefusesNow();
    return View()->GetTavixMain().Execute(commandId);
}

TavixCommandState TavixHost::ExecuteUpdateUICommand(int commandId) const {
    if (!View())
        return {};
    const tavix::CommandState state = View()->GetTavixMain().Update(commandId);
    const bool allowed = commandId != static_cast<int>(CommandId::DeleteHistory) || DeleteHistoryEvent.HasHandlers();
    return {state.handled, state.enabled && allowed && !IsDialogOpen(), state.checked};
}

std::string TavixHost::GetReportTitle() const {
    if (!View())
        return "Untitled";
    const tavix::CTavixDoc& document = View()->GetTavixDoc();
    const std::string& folder = document.GetFolderPath();
    return folder.empty() ? document.GetTitle() : folder + "/" + document.GetTitle();
}

std::string TavixHost::GetVault() const {
    return tavix::readText(GetSettings(), tavix::Setting::UseVault);
}

bool TavixHost::HasReport() const {
    return View() && View()->GetTavixDoc().HasReport();
}

std::string TavixHost::GetAlertsText() const {
    return View() ? View()->GetTavixDoc().GetAlertsText() : std::string();
}

tavix::SettingsStore& TavixHost::GetSettings() const {
    return m_app->GetSettings();
}

bool TavixHost::ShowsWelcomeAtStart() const {
    return !tavix::readFlag(m_app->GetSettings(), tavix::Setting::HideWelcomeDialog);
}

tavix::ColorScheme TavixHost::GetColorScheme() const {
    return tavix::readColorScheme(GetSettings());
}

std::vector<TavixWindowInfo> TavixHost::GetWindows() const {
    std::vector<TavixWindowInfo> list;
    if (!View())
        return list;
    for (tavix::OpenWindow& window : View()->GetOpenWindows())
        list.push_back({window.id, std::move(window.name)});
    return list;
}

bool TavixHost::RaiseWindow(int id) {
    return View() && !RefusesNow() && View() && View()->RaiseWindow(id);
}

void TavixHost::CloseWindows() {
    if (View() && !RefusesNow() && View())
        View()->CloseWindows();
}

const std::string& TavixHost::GetStartProblem() const {
    return m_app->GetStartProblem();
}

} // namespace Veldra::Solenne::Tavix
