#include "cli/AlertLists.h"

#include "base/NumberText.h"
#include "cli/Command.h"
#include "cli/CommandError.h"
#include "cli/Console.h"
#include "cli/ShownDate.h"
#include "report/AlertTexts.h"
#include "report/CountText.h"

#include <fmt/format.h>

#include <algorithm>

namespace tavix::cli {

namespace {

KvbDatavar cell(const std::string& text) {
    return text.empty() ? KvbDatavar() : KvbDatavar(text);
}

KvbDatavar cell(int number) {
    return number <= 0 ? KvbDatavar() : KvbDatavar(number);
}

std::string jobOf(const AlertState& alert, const JobNames& jobs) {
    const auto job = jobs.find(alert.job);
    return job == jobs.end() ? std::string() : job->second;
}

/// For programs. Scripts rely on the first nine.
std::vector<Column> allColumns() {
    constexpr auto kNumber = Column::Kind::Number;
    constexpr auto kProse = Column::Kind::Prose;
    return {{"state", "State"},
            {"level", "Level"},
            {"table", "Table"},
            {"type", "Type"},
            {"input", "Input"},
            {"figure", "Figure", kNumber},
            {"reference", "Reference", kNumber},
            {"description", "Description", kProse},
            {"condition", "Condition", kProse},
            {"alert", "Alert", kNumber},
            {"verdict", "Verdict"},
            {"compared_with", "Compared with"},
            {"since_run", "Raised since run", kNumber},
            {"since", "Raised since"},
            {"raised_runs", "Raised in runs", kNumber},
            {"origin", "Defined by"},
            {"author", "Author"},
            {"created", "Created"},
            {"mute_reason", "Muted because", kProse},
            {"muted_by", "Muted by"},
            {"muted", "Muted on"},
            {"muted_runs", "Muted for runs", kNumber},
            {"muted_until", "Muted until"},
            {"job", "Job"},
            {"run", "Run", kNumber},
            {"data_source", "Data source"},
            {"catalog", "Catalog"},
            {"schema", "Schema"}};
}

Row allCells(const AlertState& alert, const JobNames& jobs) {
    const AlertMute mute = alert.mute.value_or(AlertMute{});
    const bool isMuted = alert.mute.has_value();
    return {std::string(alertShownWord(alert.shown())), cell(alertLevelText(alert)), alert.table,
            std::string(alertTypeWord(alert.subject)), alert.isOfRecords ? KvbDatavar() : KvbDatavar(alert.input),
            figureCell(alert.figure), figureCell(alert.verdict.reference),
            // The description of an alert without one of its own is the condition.
            alert.isDescribed() ? KvbDatavar(alert.description) : KvbDatavar(), alert.condition(), alert.id,
            verdictWord(alert.verdict), cell(alertReferenceText(alert)), cell(alert.sinceRun),
            alert.raisedRuns > 0 ? shownDate(alert.sinceDate) : KvbDatavar(), cell(alert.raisedRuns),
            alert.isOfUser ? "user" : "job", cell(alert.author),
            alert.isOfUser ? shownDate(alert.created) : KvbDatavar(), cell(mute.reason), cell(mute.author),
            isMuted ? shownDate(mute.date) : KvbDatavar(), cell(mute.runs),
            mute.until ? shownDate(*mute.until) : KvbDatavar(), cell(jobOf(alert, jobs)), cell(alert.run),
            cell(alert.dataSource), cell(alert.catalog), cell(alert.schema)};
}

void write(TableWriter& writer, const std::vector<AlertState>& alerts, const JobNames& jobs) {
    writer.begin({"alerts", "Alerts", allColumns()});
    for (const AlertState& alert : alerts)
        writer.row(allCells(alert, jobs));
    writer.end();
    writer.finish();
}

KvbDatavar sinceCell(const AlertState& alert) {
    if (alert.raisedRuns == 0)
        return {};
    if (alert.raisedRuns == 1 && !alert.raisedLonger)
        return "this run";
    return fmt::format("run {}{}", alert.sinceRun, alert.raisedLonger ? " or before" : "");
}

std::string proseOf(const AlertState& alert) {
    std::string text = alert.condition();
    if (alert.isDescribed() && !alert.description.empty())
        text = fmt::format("{} ({})", alert.description, text);
    if (alert.mute)
        text += fmt::format("; muted{}{}", alert.mute->reason.empty() ? "" : ": ", alert.mute->reason);
    return text;
}

void listForPeople(const CommonOptions& options, const std::vector<AlertState>& alerts, const JobNames& jobs) {
    const bool hasJobs = jobs.size() > 1;
    Section section{
        "alerts",
        "Alerts",
        {{"alert", "Alert", Column::Kind::Number}, {"state", "State"}, {"level", "Level"}, {"since", "Since"}}};
    if (hasJobs)
        section.columns.push_back({"job", "Job"});
    section.columns.push_back({"table", "Table"});
    section.columns.push_back({"figure", "Figure", Column::Kind::Number});
    section.columns.push_back({"compared_with", "Compared with"});
    section.columns.push_back({"by", "By"});
    section.columns.push_back({"condition", "Condition", Column::Kind::Prose});
    Listing listing(options);
    listing.begin(section);
    for (const AlertState& alert : alerts) {
        Row row{alert.id, std::string(alertShownWord(alert.shown())), cell(alertLevelText(alert)), sinceCell(alert)};
        if (hasJobs)
            row.push_back(cell(jobOf(alert, jobs)));
        row.insert(row.end(), {alert.table, cell(alertFigureText(alert)), cell(alertReferenceText(alert)),
                               alertOriginText(alert), proseOf(alert)});
        listing.row(row);
    }
    listing.end();
    listing.finish();
}

void sayRaised(const AlertState& alert) {
    std::string figure = fmt::format("it is {}", formatReadable(*alert.figure));
    if (alert.verdict.reference)
        figure += fmt::format(", was {}", formatReadable(*alert.verdict.reference));
    if (alert.raisedRuns > 1)
        figure += fmt::format("; raised since run {}{}", alert.sinceRun, alert.raisedLonger ? " or before" : "");
    say(fmt::format("{}: {}: {} ({})", alertLevelWord(alert.rule->level), alert.table, alert.condition(), figure));
}

} // namespace

KvbDatavar figureCell(const std::optional<double>& figure) {
    if (!figure)
        return {};
    const std::int64_t whole = saturateToInt64(*figure);
    return static_cast<double>(whole) == *figure ? KvbDatavar(whole) : KvbDatavar(*figure);
}

std::string verdictWord(const AlertVerdict& verdict) {
    AlertState unmuted;
    unmuted.verdict = verdict;
    return std::string(alertShownWord(unmuted.shown()));
}

std::optional<AlertLevel> parseAlertLevel(const std::string& word) {
    for (const AlertLevel level : {AlertLevel::Warning, AlertLevel::Error})
        if (word == alertLevelWord(level))
            return level;
    return std::nullopt;
}

void listAlerts(const CommonOptions& options, std::vector<AlertState> alerts, const JobNames& jobs) {
    if (options.format == Format::Text) {
        orderAlerts(alerts);
        listForPeople(options, alerts, jobs);
        return;
    }
    Output output(options.outputPath);
    write(*makeTableWriter({options.format, Sections::One, options.spreadsheet}, output), alerts, jobs);
    output.commit();
}

void listAlert(Listing& listing, const AlertState& alert, const JobNames& jobs) {
    Section section{"alert", "Alert", allColumns()};
    section.isRecord = true;
    listing.begin(section);
    listing.row(allCells(alert, jobs));
    listing.end();
}

std::string alertsJson(const std::vector<AlertState>& alerts, const std::string& job) {
    JobNames jobs;
    for (const AlertState& alert : alerts)
        jobs[alert.job] = job;
    std::string text;
    Output output(&text);
    write(*makeTableWriter({Format::Json}, output), alerts, jobs);
    return text;
}

void sayAlerts(const std::vector<AlertState>& alerts) {
    std::int64_t silent = 0;
    for (const AlertState& alert : alerts) {
        if (alert.isRaised())
            sayRaised(alert);
        // In the first run of a job a change is unknown, which needs no message.
        else if (alert.shown() == AlertShown::CannotBeJudged && alert.rule && !isChange(alert.rule->comparison))
            say(fmt::format("alert not checked, the run does not have the figure: {}: {}", alert.table,
                            alert.condition()));
        else if (alert.verdict.state == AlertVerdict::State::Raised)
            ++silent;
    }
    if (silent > 0)
        say(fmt::format("{} muted; \"tavix alerts\" lists {}",
                        silent == 1 ? "1 raised alert is" : groupedCount(silent) + " raised alerts are",
                        silent == 1 ? "it" : "them"));
}

void sayIfNoAlert(const std::vector<AlertState>& alerts, std::string_view job) {
    if (alerts.empty())
        say(fmt::format("--fail-at has no effect: the job \"{}\" has no alert", job));
}

void failOnAlerts(const std::vector<AlertState>& alerts, AlertLevel level) {
    const auto raised =
        std::count_if(alerts.begin(), alerts.end(), [&](const AlertState& alert) { return alert.isRaisedAt(level); });
    if (raised > 0)
        throw CommandError(ExitCode::Alert,
                           fmt::format("{} {} raised at level {}{}", raised, raised == 1 ? "alert is" : "alerts are",
                                       alertLevelWord(level), level == AlertLevel::Warning ? " or above" : ""));
}

} // namespace tavix::cli
