#include "report/AlertStateReader.h"

#include "access/CursorText.h"
#include "access/Layouts.h"
#include "access/PrViewer.h"
#include "base/Metrics.h"
#include "base/NumberText.h"
#include "report/AlertFigures.h"
#include "report/CAlertDisplayHelper.h"
#include "report/CheckedCursor.h"

#include <algorithm>
#include <array>
#include <tuple>
#include <utility>

namespace tavix {

namespace {

constexpr int kAllRuns = 0;
/// Of a raised alert, the runs that are searched for the first that raised it.
constexpr int kMostSince = 1024;
/// How many runs are read at first, and then for the alerts that need more of them. Two do for a limit that is not
/// passed and for a change since the run before, which are nearly all alerts; all, where a reference is made of runs
/// that are far apart.
constexpr std::array kWindows{2, 16, 128, kMostSince, kAllRuns};
/// Not so many rows are read only to say since when alerts are raised.
constexpr std::size_t kMostRowsForSince = 200'000;

/// The runs of an alert that were read, the latest first.
struct WatchedRuns {
    FigureHistory figures;
    std::vector<std::pair<int, LibraryDate>> runs; ///< id and start
    bool areAll = false;                           ///< no earlier run is left
};

/// False if the runs do not suffice for the verdict, or to say since when the alert is raised.
bool judge(AlertState& state, const WatchedRuns& watched) {
    const AlertRule& rule = *state.rule;
    const FigureHistory& figures = watched.figures;
    const std::size_t count = figures.size();
    constexpr std::size_t kMost = kMostSince;
    const auto isKnown = [&](std::size_t run) { return watched.areAll || !figures.needsMore(rule, run); };
    // Otherwise the run was deleted a moment ago.
    if (count == 0 || watched.runs.front().first != state.run)
        return true;
    if (!isKnown(0))
        return false;
    state.verdict = figures.judge(rule, 0);
    state.raisedRuns = 0;
    if (state.verdict.state != AlertVerdict::State::Raised)
        return true;
    std::size_t raised = 1;
    while (raised < std::min(count, kMost) && isKnown(raised) &&
           figures.judge(rule, raised).state == AlertVerdict::State::Raised)
        ++raised;
    const bool isEndKnown = raised < count ? raised < kMost && isKnown(raised) : watched.areAll;
    state.raisedRuns = static_cast<int>(raised);
    state.raisedLonger = !isEndKnown;
    std::tie(state.sinceRun, state.sinceDate) = watched.runs[raised - 1];
    return isEndKnown;
}

} // namespace

void AlertStateReader::read(std::optional<int> job) {
    readList(job);
    if (m_states.empty())
        return;
    readRules();
    readRuns();
    readMutes();
    std::map<int, Indexes> byJob;
    for (std::size_t i = 0; i < m_states.size(); ++i) {
        AlertState& state = m_states[i];
        if (const auto run = m_runs.find(state.job); run != m_runs.end())
            state.run = run->second;
        if (state.rule && state.run != -1)
            byJob[state.job].emplace(state.id, i);
        const auto muted = m_mutes.find(state.id);
        if (muted != m_mutes.end() && state.run != -1 && state.run >= muted->second.firstRun &&
            state.run <= muted->second.lastRun.value_or(state.run))
            state.mute = muted->second.mute;
        if (state.rule && state.subject == AlertSubject::StandardMetric && state.fieldId != -1 &&
            isOverFits(state.watchedId))
            state.fits = m_fits.Of(state.tableId, state.fieldId);
    }
    for (const auto& [one, alerts] : byJob)
        judgeJob(one, alerts);
}

void AlertStateReader::readList(std::optional<int> job) {
    const ProfileCursorHandle alerts = checked(m_viewer, m_viewer.getAlerts());
    while (alerts->next()) {
        const int watched =
            alerts->isColumnNull(layout::AlertReportId) ? -1 : alerts->getColumnInt(layout::AlertReportId);
        if (job && watched != *job)
            continue;
        AlertState& state = m_states.emplace_back(stateOf(*alerts));
        state.job = watched;
        m_indexes.emplace(state.id, m_states.size() - 1);
    }
}

AlertState AlertStateReader::stateOf(const ProfileCursor& alert) {
    using namespace layout;
    const auto idOrNone = [&](int column) { return alert.isColumnNull(column) ? -1 : alert.getColumnInt(column); };
    AlertState state;
    state.id = alert.getColumnInt(AlertId);
    state.dataSource = textAt(alert, AlertDsn);
    state.catalog = textAt(alert, AlertCatalog);
    state.schema = textAt(alert, AlertSchema);
    state.tableName = textAt(alert, AlertTable);
    state.objectName = textAt(alert, AlertObject);
    state.table = state.objectName.empty() ? state.tableName : state.objectName;
    state.kind = tableKindOf(textAt(alert, AlertKindLetter)).value_or(TableKind::Plain);
    state.typeCode = textAt(alert, AlertTypeCode);
    state.subject = alertSubjectOf(state.typeCode);
    state.key = textAt(alert, AlertKey);
    // The list has the names of metrics and rules, too.
    state.input = CAlertDisplayHelper().InputText(alert);
    if (state.input.empty())
        state.input = state.key;
    state.description = textAt(alert, AlertDescription);
    state.sentence = kNoAlertRule;
    state.tableId = alert.getColumnInt(AlertTableId);
    state.fieldId = idOrNone(AlertFieldId);
    // An alert whose rule cannot be read still marks its figure.
    state.watchedId = idOrNone(state.subject == AlertSubject::StandardMetric ? AlertMetric : AlertWatchedId);
    state.isOfUser = alert.getColumnInt(AlertIsOfUser) != 0;
    state.author = textAt(alert, AlertAuthor);
    state.created = alert.getColumnDouble(AlertCreated);
    return state;
}

void AlertStateReader::readRules() {
    const ProfileCursorHandle rows = checked(m_viewer, m_viewer.getAllAlertProperties());
    AlertProperties properties;
    int alert = -1;
    const auto finish = [&] {
        if (const auto index = m_indexes.find(alert); index != m_indexes.end())
            setRule(m_states[index->second], properties);
        properties.clear();
    };
    while (rows->next()) {
        const int owner = rows->getColumnInt(layout::AllPropertiesAlert);
        if (owner != alert)
            finish();
        alert = owner;
        properties[textAt(*rows, layout::AllPropertiesName)] = textAt(*rows, layout::AllPropertiesValue);
    }
    finish();
}

void AlertStateReader::setRule(AlertState& state, const AlertProperties& properties) {
    const std::string_view metric = alertProperty(properties, "METRIC");
    const std::optional<AlertRule> rule = readAlertRule(state.subject, properties);
    if (state.subject == AlertSubject::StandardMetric) {
        constexpr std::int64_t kNone = -1;
        const auto id = std::clamp<std::int64_t>(decimalPrefix(metric), kNone, kMetricCount);
        const MetricInfo* const info = findMetric(static_cast<int>(id));
        if (!info)
            return;
        state.metric = info->name;
        state.watchedId = static_cast<int>(id);
    } else {
        state.metric = metric;
    }
    if (!rule)
        return;
    state.rule = rule;
    state.isOfRecords = state.subject == AlertSubject::StandardMetric && alertProperty(properties, "RECORDS") == "1";
    state.sentence = state.isOfRecords ? recordsAlertSentence(*rule)
                                       : alertSentence(state.subject, *rule, state.metric, state.input);
}

void AlertStateReader::readRuns() {
    const int current = m_viewer.getCurrentJob();
    int latestOfCurrent = -1;
    if (current != -1) {
        const ProfileCursorHandle runs = checked(m_viewer, m_viewer.getJobs());
        if (runs->next())
            latestOfCurrent = runs->getColumnInt(layout::JobRunId);
    }
    const ProfileCursorHandle reports = checked(m_viewer, m_viewer.getReports());
    while (reports->next()) {
        if (reports->isColumnNull(layout::ReportLastRunId))
            continue;
        const int latest = reports->getColumnInt(layout::ReportLastRunId);
        m_runs[reports->getColumnInt(layout::ReportId)] = latest == latestOfCurrent ? current : latest;
    }
}

void AlertStateReader::readMutes() {
    using namespace layout;
    const ProfileCursorHandle mutes = checked(m_viewer, m_viewer.getAlertMutes());
    while (mutes->next()) {
        Mute& mute = m_mutes[mutes->getColumnInt(MutedAlert)];
        mute.mute = {textAt(*mutes, MuteReason),
                     textAt(*mutes, MuteAuthor),
                     mutes->getColumnDouble(MuteDate),
                     mutes->getColumnInt(MuteRuns),
                     {}};
        if (!mutes->isColumnNull(MuteUntil))
            mute.mute.until = mutes->getColumnDouble(MuteUntil);
        mute.firstRun = mutes->getColumnInt(MuteFirstRun);
        if (!mutes->isColumnNull(MuteLastRun))
            mute.lastRun = mutes->getColumnInt(MuteLastRun);
    }
}

void AlertStateReader::judgeJob(int job, const Indexes& alerts) {
    Indexes left = alerts;
    bool areAll = true;
    for (const int runs : kWindows) {
        if (runs == kAllRuns || left.size() * static_cast<std::size_t>(runs) > kMostRowsForSince)
            std::erase_if(left, [this](const auto& alert) { return m_states[alert.second].raisedRuns > 0; });
        if (left.empty())
            return;
        left = judgeBy(job, left, areAll, runs);
        areAll = false;
    }
}

AlertStateReader::Indexes AlertStateReader::judgeBy(int job, const Indexes& alerts, bool areAll, int runs) {
    using namespace layout;
    std::vector<int> ids;
    if (!areAll)
        for (const auto& [id, index] : alerts)
            ids.push_back(id);
    const ProfileCursorHandle rows = checked(m_viewer, m_viewer.getAlertFigures(job, m_runs.at(job), runs, ids));
    Indexes left;
    WatchedRuns watched;
    auto alert = alerts.end();
    const auto finish = [&] {
        if (alert == alerts.end())
            return;
        AlertState& state = m_states[alert->second];
        watched.areAll = runs == kAllRuns || watched.runs.size() < static_cast<std::size_t>(runs);
        if (!judge(state, watched))
            left.insert(*alert);
    };
    int id = -1;
    while (rows->next()) {
        if (const int owner = rows->getColumnInt(FigureAlert); owner != id) {
            finish();
            watched = {};
            id = owner;
            alert = alerts.find(id);
        }
        if (alert == alerts.end())
            continue; // without a rule
        AlertState& state = m_states[alert->second];
        const auto figure = alertFigureAt(*rows, state.rule->ofFailedPercent);
        const int run = rows->getColumnInt(FigureRun);
        if (run == state.run)
            state.figure = figure;
        watched.figures.addEarlier({figure, rows->getColumnInt(FigureWeekday)});
        watched.runs.emplace_back(run, rows->getColumnDouble(FigureDate));
    }
    finish();
    return left;
}

} // namespace tavix
