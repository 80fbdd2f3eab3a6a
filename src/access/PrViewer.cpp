#include "access/PrViewer.h"

#include "access/PrViewerImpl.h"
#include "base/LibraryDate.h"
#include "repository/RunDeletion.h"
#include "repository/Schema.h"

#include <fmt/format.h>

#include <utility>

namespace tavix {

namespace {

constexpr std::string_view kReport = "report";
constexpr std::string_view kFindJob = "SELECT 1 FROM job WHERE id = ?1";
constexpr int kDeepestFolder = 100;

} // namespace

void ProfileCursorFree::operator()(ProfileCursor* cursor) const {
    PrViewer::freeProfileCursor(cursor);
}

void PrViewerDrillCursorFree::operator()(PrViewerDrillCursor* cursor) const {
    PrViewer::freeDrillDown(cursor);
}

void PrViewer::freeProfileCursor(ProfileCursor* cursor) {
    delete cursor;
}

void PrViewer::freeDrillDown(PrViewerDrillCursor* cursor) {
    delete cursor;
}

PrViewer::PrViewer() : m_impl(std::make_unique<Impl>()) {}

PrViewer::~PrViewer() {
    m_impl->endSession();
}

PrViewer::Handle PrViewer::create(const Clock* clock) {
    Handle viewer(new PrViewer);
    viewer->m_impl->clock = clock ? clock : &viewer->m_impl->systemClock;
    return viewer;
}

bool PrViewer::init(const KvbString& connection) {
    auto opened = repository::openRepository(connection.str(), sql::OpenMode::Read);
    if (!opened)
        return m_impl->fail(opened.error());
    m_impl->endSession();
    m_impl->session = std::make_shared<ViewerSession>();
    m_impl->session->connection = std::move(*opened);
    m_impl->session->closed = std::make_shared<bool>(false);
    m_impl->session->sink = m_impl->displayMessage;
    m_impl->path = connection.str();
    m_impl->error = KvbString("");
    return true;
}

bool PrViewer::close() {
    if (auto ready = m_impl->requireSession(); !ready)
        return m_impl->fail(ready.error());
    m_impl->endSession();
    return true;
}

void PrViewer::release() {
    delete this;
}

void PrViewer::setDisplayMessage(PrViewDisplayMessage* sink) {
    m_impl->displayMessage = sink;
    for (const auto& session : {m_impl->session, m_impl->sessionBefore})
        if (session)
            session->sink = sink;
}

KvbString PrViewer::getErrorString() const {
    return m_impl->error.isNull() ? KvbString("") : m_impl->error;
}

ProfileCursorHandle PrViewer::getReports() {
    static const Query kQuery("getReports", "FROM job j ORDER BY j.name, j.id");
    return m_impl->open(m_impl->requireSession(), kQuery, {});
}

bool PrViewer::reportGetReportInfo(int jobId, int& folderId, KvbString& text) {
    if (auto ready = m_impl->requireSession(); !ready)
        return m_impl->fail(ready.error());
    auto select = m_impl->boundRow("SELECT COALESCE(folder, -1), description FROM job WHERE id = ?1", {jobId},
                                   noSuch(kReport, jobId));
    if (!select)
        return m_impl->fail(select.error());
    folderId = static_cast<int>(select->integer(0));
    text = select->text(1);
    return true;
}

bool PrViewer::setCurrentJobSetup(int jobId) {
    if (auto exists = m_impl->requireExisting(kFindJob, jobId, kReport); !exists)
        return m_impl->fail(exists.error());
    auto latest = m_impl->integer("SELECT id FROM run WHERE job = ?1 ORDER BY id DESC LIMIT 1", {jobId},
                                  "The report has no run.");
    if (!latest)
        return m_impl->fail(latest.error());
    m_impl->job = jobId;
    m_impl->run = static_cast<int>(*latest);
    m_impl->checkRun();
    return true;
}

ProfileCursorHandle PrViewer::getReport(int jobId) {
    static const Query kQuery("getReport", "FROM job j WHERE j.id = ?1");
    return m_impl->open(m_impl->requireExisting(kFindJob, jobId, kReport), kQuery, {jobId});
}

bool PrViewer::folderGetPathFromId(int folderId, KvbString& path, KvbString& text) {
    if (auto ready = m_impl->requireSession(); !ready)
        return m_impl->fail(ready.error());
    // The depth is bounded because in a damaged repository a folder may contain itself.
    auto select = m_impl->bound("WITH RECURSIVE up(id, parent, name, depth) AS (SELECT id, parent, name, 0 FROM folder "
                                "WHERE id = ?1 UNION ALL SELECT folder.id, folder.parent, folder.name, depth + 1 "
                                "FROM up JOIN folder ON folder.id = up.parent WHERE depth < ?2) "
                                "SELECT name FROM up ORDER BY depth",
                                {folderId, kDeepestFolder});
    if (!select)
        return m_impl->fail(select.error());
    std::string joined;
    std::string own;
    bool found = false;
    sql::Step step = select->step();
    for (; step == sql::Step::Row; step = select->step()) {
        const std::string_view name = select->text(0);
        if (found)
            joined.insert(0, "/");
        else
            own = name;
        joined.insert(0, name);
        found = true;
    }
    if (step == sql::Step::Failed)
        return m_impl->fail({m_impl->connection().errorText()});
    if (!found)
        return m_impl->fail(noSuch("folder", folderId));
    path = std::move(joined);
    text = std::move(own);
    return true;
}

ProfileCursorHandle PrViewer::getJobs() {
    static const Query kQuery("getJobs", "FROM run r WHERE r.job = ?1 ORDER BY r.id DESC");
    return m_impl->open(m_impl->requireJob(), kQuery, {m_impl->job});
}

int PrViewer::getJobCount() {
    if (auto ready = m_impl->requireJob(); !ready) {
        m_impl->fail(ready.error());
        return -1;
    }
    auto count = m_impl->integer("SELECT COUNT(*) FROM run WHERE job = ?1", {m_impl->job}, "");
    if (!count) {
        m_impl->fail(count.error());
        return -1;
    }
    return clampToInt(*count);
}

int PrViewer::getCurrentJob() const {
    return m_impl->run;
}

bool PrViewer::setCurrentJob(int runId) {
    if (auto found = m_impl->requireRunOfJob(runId); !found)
        return m_impl->fail(found.error());
    m_impl->run = runId;
    m_impl->checkRun();
    return true;
}

KvbString PrViewer::getRunWarning() const {
    return m_impl->runWarning;
}

bool PrViewer::getJobInfo(int runId, double& date, KvbString& description) {
    if (auto ready = m_impl->requireJob(); !ready)
        return m_impl->fail(ready.error());
    auto select =
        m_impl->boundRow("SELECT started, description FROM run WHERE job = ?1 AND id = ?2", {m_impl->job, runId},
                         {fmt::format("The report has no run with the number {}.", runId)});
    if (!select)
        return m_impl->fail(select.error());
    date = toLibraryDate(UtcTime(std::chrono::milliseconds(select->integer(0))));
    description = select->text(1);
    return true;
}

bool PrViewer::deleteJobs(int first, int last, int job) {
    Status ready = job == -1 ? m_impl->requireJob() : m_impl->requireExisting(kFindJob, job, kReport);
    if (!ready)
        return m_impl->fail(ready.error());
    if (m_impl->changes)
        return m_impl->fail({"Runs cannot be deleted before the changes that were begun are kept or dropped."});
    auto writer = repository::openRepository(m_impl->path, sql::OpenMode::Write);
    if (!writer)
        return m_impl->fail(writer.error());
    if (auto deleted = repository::deleteRuns(**writer, job == -1 ? m_impl->job : job, first, last); !deleted)
        return m_impl->fail(deleted.error());
    m_impl->refreshSession();
    return true;
}

} // namespace tavix
