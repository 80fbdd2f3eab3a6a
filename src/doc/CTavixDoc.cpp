#include "doc/CTavixDoc.h"

#include "access/Layouts.h"
#include "base/GenException.h"
#include "report/AlertTexts.h"
#include "report/ReportTables.h"

#include <algorithm>

namespace tavix {

namespace {

constexpr std::string_view kUntitled = "Untitled";
constexpr std::string_view kConnectFailed = "Error occurred while connecting to the repository:";
constexpr std::string_view kRetrieveFailed = "Error occurred while retrieving the profiling report:";
constexpr std::string_view kOpenFailed = "Error occurred while opening the profiling report:";
constexpr std::string_view kLoadRunFailed = "Error occurred while loading the report run:";
constexpr std::string_view kDeleteFailed = "Error occurred while deleting history:";
constexpr std::string_view kTaskListFailed = "Error occurred while retrieving task list:";
constexpr std::string_view kNoTaskList = "Unable to create task list";
constexpr std::string_view kNoHistory = "Error occurred while retrieving report history";
constexpr std::string_view kHistoryClosed = "No run was deleted: the report whose runs were chosen is closed.";

/// The library's error text; nothing on success. The library fails by returning false or by throwing, which the viewer
/// treats alike.
template <typename Call>
std::optional<std::string> failureOf(const PrViewer& viewer, Call&& call) {
    try {
        if (call())
            return std::nullopt;
        return viewer.getErrorString().str();
    } catch (const GenException& failure) {
        return failure.getText().str();
    }
}

std::string message(std::string_view leadIn, std::string_view libraryText) {
    return std::string(leadIn).append("\n\n").append(libraryText);
}

std::shared_ptr<PrViewer> closedWhenReleased(PrViewer::Handle viewer) {
    return {viewer.release(), [](PrViewer* session) {
                try {
                    session->close();
                } catch (const GenException&) {
                    // Nobody uses the session any more, so there is nobody to report this to.
                }
                session->release();
            }};
}

/// Sets the frame's loading flag while the views load a run.
class LoadingFlag {
  public:
    explicit LoadingFlag(DocumentFrame& frame) : m_frame(frame) { m_frame.SetLoading(true); }
    ~LoadingFlag() { m_frame.SetLoading(false); }
    LoadingFlag(const LoadingFlag&) = delete;
    LoadingFlag& operator=(const LoadingFlag&) = delete;

  private:
    DocumentFrame& m_frame;
};

} // namespace

CTavixDoc::CTavixDoc(DocumentFrame& frame, SettingsStore& settings, Messages& messages)
    : m_frame(frame), m_settings(settings), m_messages(messages), m_title(kUntitled) {}

CTavixDoc::~CTavixDoc() = default;

void CTavixDoc::Warn(std::string_view leadIn, std::string_view libraryText) const {
    m_messages.warn(message(leadIn, libraryText));
}

bool CTavixDoc::OpenReport(const KvbString& connection, int jobId) {
    Clear();
    const auto busy = m_messages.busy();
    PrViewer::Handle viewer = PrViewer::create();
    if (const auto failure = failureOf(*viewer, [&] { return viewer->init(connection); })) {
        Warn(kConnectFailed, *failure);
        return false;
    }
    if (const auto problem = SetUp(*viewer, jobId)) {
        viewer->close();
        Clear();
        // Last: another report may be opened while the message is on the screen.
        m_messages.warn(*problem);
        return false;
    }
    viewer->setSourceCredentials(m_logins.ForSession());
    m_viewer = closedWhenReleased(std::move(viewer));
    m_connection = connection;
    m_jobId = jobId;
    ReloadTaskList();
    return true;
}

std::optional<std::string> CTavixDoc::SetUp(PrViewer& viewer, int jobId) {
    int folderId = -1;
    KvbString description;
    if (const auto failure =
            failureOf(viewer, [&] { return viewer.reportGetReportInfo(jobId, folderId, description); }))
        return message(kRetrieveFailed, *failure);
    const auto failure = failureOf(viewer, [&] {
        if (!viewer.setCurrentJobSetup(jobId))
            return false;
        ProfileCursorHandle report = viewer.getReport(jobId);
        if (!report)
            return false;
        if (report->next())
            m_title = report->getColumnValue(layout::ReportRowName).str();
        report.reset();
        KvbString path;
        KvbString folder;
        if (folderId != -1 && !viewer.folderGetPathFromId(folderId, path, folder))
            return false;
        m_folderPath = path.str();
        m_currentRun = viewer.getCurrentJob();
        m_runCount = viewer.getJobCount();
        if (m_runCount < 0)
            return false;
        LoadMetricDisplayList(viewer);
        return true;
    });
    return failure ? std::optional(message(kOpenFailed, *failure)) : std::nullopt;
}

void CTavixDoc::WarnOfDamage() const {
    const KvbString warning = m_viewer ? m_viewer->getRunWarning() : KvbString();
    if (!warning.isNull())
        m_messages.warn(warning.str());
}

void CTavixDoc::LoadMetricDisplayList(const PrViewer& viewer) {
    m_metrics.assign(static_cast<std::size_t>(std::max(viewer.getNumMetrics(), 0)), {});
    int id = 0;
    for (MetricDisplay& metric : m_metrics)
        metric.description = viewer.getMetricDescription(id++).str();
    readMetricChoices(m_settings, m_metrics);
}

void CTavixDoc::Clear() {
    m_viewer.reset();
    m_connection = {};
    m_compared = {};
    m_logins.Clear();
    m_jobId = -1;
    m_currentRun = -1;
    m_runCount = 0;
    m_title = kUntitled;
    m_text.clear();
    m_folderPath.clear();
    m_metrics.clear();
    m_filter = {};
    m_fieldFilters.Clear();
    m_collections.clear();
    ForgetAlerts();
}

bool CTavixDoc::SetCurrentJob(int runId) {
    if (runId == m_currentRun)
        return true;
    if (!m_viewer)
        return false;
    if (m_tasks)
        m_tasks->Save();
    const auto busy = m_messages.busy();
    if (const auto failure = failureOf(*m_viewer, [&] { return m_viewer->setCurrentJob(runId); })) {
        Warn(kLoadRunFailed, *failure);
        return false;
    }
    EnterRun(runId);
    return true;
}

void CTavixDoc::EnterRun(int runId) {
    m_currentRun = runId;
    m_filter = {};
    m_collections.clear();
    ForgetAlerts();
    RefreshRunCount();
    ReloadTaskList();
    {
        const LoadingFlag loading(m_frame);
        m_frame.Broadcast(RefreshHint::RunLoaded);
    }
    if (m_tasks && !m_tasks->Restore())
        m_frame.Broadcast(RefreshHint::TaskListLost);
    // Last: another report may be opened while the message is on the screen.
    WarnOfDamage();
}

void CTavixDoc::DeleteHistory(const std::function<bool(HistoryDeletion&)>& ask) {
    if (!m_viewer)
        return;
    const std::shared_ptr<PrViewer> asked = m_viewer;
    HistoryDeletion deletion;
    // The library takes a negative bound for no bound at all.
    if (!ask(deletion) || deletion.bound < 0)
        return;
    if (m_viewer != asked) {
        m_messages.warn(kHistoryClosed);
        return;
    }
    m_frame.Broadcast(RefreshHint::HistoryDeletion);
    if (m_tasks)
        m_tasks->Save();
    const auto busy = m_messages.busy();
    if (const auto failure = failureOf(*m_viewer, [&] { return m_viewer->deleteJobs(-1, deletion.bound, -1); })) {
        Warn(kDeleteFailed, *failure);
        return;
    }
    if (deletion.bound < m_currentRun) {
        RefreshRunCount();
        m_frame.Broadcast(RefreshHint::HistoryDeleted);
        return;
    }
    if (const auto failure = failureOf(*m_viewer, [&] { return m_viewer->setCurrentJob(deletion.runAfter); })) {
        m_frame.Broadcast(RefreshHint::TaskListLost);
        Warn(kLoadRunFailed, *failure);
        return;
    }
    EnterRun(deletion.runAfter);
}

void CTavixDoc::ApplyOptions(std::vector<MetricDisplay> metrics, const Status& saved) {
    const auto written = writeMetricChoices(m_settings, metrics);
    if (const Status& outcome = saved ? written : saved; !outcome)
        m_messages.warn(outcome.error().text);
    if (HasReport())
        m_metrics = std::move(metrics);
    m_frame.Broadcast(RefreshHint::OptionsChanged);
}

int CTavixDoc::TabOf(ReportPaneKind view, NavigatorPage mode) const {
    const auto open = m_tabs.find({view, mode});
    return open == m_tabs.end() ? -1 : open->second;
}

bool CTavixDoc::PostLoadCheck() {
    return !m_tasks || !HasReport() || m_tasks->Restore();
}

void CTavixDoc::ReloadTaskList() {
    if (!m_tasks)
        return;
    if (!m_tasks->Create()) {
        m_messages.warn(kNoTaskList);
        return;
    }
    const auto failure = failureOf(*m_viewer, [&] {
        const ProfileCursorHandle tasks = m_viewer->getTaskList(m_jobId);
        if (tasks)
            m_tasks->Load(*tasks);
        return tasks != nullptr;
    });
    if (failure)
        Warn(kTaskListFailed, *failure);
}

void CTavixDoc::RefreshRunCount() {
    // The number is only displayed; if it cannot be read, the old one stays.
    int count = -1;
    if (!failureOf(*m_viewer, [&] { return (count = m_viewer->getJobCount()) >= 0; }))
        m_runCount = count;
}

std::optional<std::vector<RunInfo>> CTavixDoc::GetRuns() const {
    std::vector<RunInfo> runs;
    if (!m_viewer)
        return runs;
    const auto failure = failureOf(*m_viewer, [&] {
        runs = readRuns(*m_viewer);
        return true;
    });
    if (failure) {
        m_messages.warn(kNoHistory);
        return std::nullopt;
    }
    return runs;
}

Result<std::shared_ptr<PrViewer>> CTavixDoc::OpenRun(int runId) const {
    PrViewer::Handle viewer = PrViewer::create();
    if (auto failure = failureOf(*viewer, [&] {
            return viewer->init(m_connection) && viewer->setCurrentJobSetup(m_jobId) && viewer->setCurrentJob(runId);
        }))
        return Error{std::move(*failure)};
    return closedWhenReleased(std::move(viewer));
}

const CollectionsByField& CTavixDoc::GetCollectionsOfTable(int tableId) {
    static const CollectionsByField kNone;
    if (!m_viewer)
        return kNone;
    if (const auto known = m_collections.find(tableId); known != m_collections.end())
        return known->second;
    CollectionsByField collections;
    const auto failure = failureOf(*m_viewer, [&] {
        const ProfileCursorHandle rows = m_viewer->getGlobalCollForTable(tableId);
        if (!rows)
            return false;
        while (rows->next())
            collections[rows->getColumnInt(layout::TableCollectionFieldId)].push_back(
                rows->getColumnValue(layout::TableCollectionName).str());
        return true;
    });
    // The names only annotate a list, which is shown without them: a failure needs no message.
    return failure ? kNone : m_collections.insert_or_assign(tableId, std::move(collections)).first->second;
}

const std::vector<std::string>& CTavixDoc::GetCollectionsOfField(int tableId, int fieldId) {
    static const std::vector<std::string> kNone;
    const CollectionsByField& collections = GetCollectionsOfTable(tableId);
    const auto found = collections.find(fieldId);
    return found == collections.end() ? kNone : found->second;
}

const std::vector<AlertState>& CTavixDoc::GetAlerts() {
    if (!m_alerts)
        ReadAlerts();
    return *m_alerts;
}

const std::string& CTavixDoc::GetAlertsError() {
    if (!m_alerts)
        ReadAlerts();
    return m_alertsError;
}

std::string CTavixDoc::GetAlertsText() {
    const std::vector<AlertState>& alerts = GetAlerts();
    if (!m_alertsError.empty())
        return "alerts cannot be read";
    return alerts.empty() ? std::string() : alertCountsText(countAlerts(alerts));
}

// A failure is kept like the alerts: panes ask often, and each of them says in its own words that the alerts are
// missing.
void CTavixDoc::ReadAlerts() {
    m_alerts.emplace();
    m_alertsError.clear();
    if (!m_viewer)
        return;
    const auto failure = failureOf(*m_viewer, [&] {
        m_alerts = readAlertStates(*m_viewer, m_jobId);
        return true;
    });
    m_alertsError = failure.value_or(std::string());
}

void CTavixDoc::ForgetAlerts() {
    m_alerts.reset();
    m_alertsError.clear();
}

void CTavixDoc::Notice(RefreshHint hint) {
    if (hint == RefreshHint::RunLoaded || hint == RefreshHint::HistoryDeleted || hint == RefreshHint::AlertsChanged)
        ForgetAlerts();
}

void CTavixDoc::CollectionsRefreshed() {
    m_collections.clear();
    m_frame.Broadcast(RefreshHint::CollectionsRefreshed);
}

} // namespace tavix
