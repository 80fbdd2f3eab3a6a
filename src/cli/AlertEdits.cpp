#include "cli/AlertEdits.h"

#include "access/CursorText.h"
#include "access/Layouts.h"
#include "base/DateTicks.h"
#include "base/LoginName.h"
#include "base/NoteText.h"
#include "cli/AlertLists.h"
#include "cli/Command.h"
#include "cli/CommandError.h"
#include "cli/Console.h"
#include "cli/Session.h"
#include "cli/ShownDate.h"
#include "job/AlertEntries.h"

#include <fmt/format.h>

#include <ctime>
#include <utility>

namespace tavix::cli {

namespace {

/// A custom metric or rule of the table.
struct Watchable {
    int id = -1;
    std::string name;
    std::string value; ///< the name of a custom metric's value
};

std::vector<Watchable> customMetricsOf(Session& session, int table) {
    std::vector<Watchable> found;
    const ProfileCursorHandle metrics = session.checked(session.viewer().getCustomMetrics(table));
    while (metrics->next())
        found.push_back({metrics->getColumnInt(layout::CustomMetricId), textAt(*metrics, layout::CustomMetricName),
                         textAt(*metrics, layout::CustomMetricOutputName)});
    return found;
}

std::vector<Watchable> rulesOf(Session& session, int table) {
    std::vector<Watchable> found;
    const ProfileCursorHandle rules = session.checked(session.viewer().getBusinessRules(table));
    while (rules->next())
        found.push_back({rules->getColumnInt(layout::RuleId), textAt(*rules, layout::RuleName), {}});
    return found;
}

const Watchable& named(const std::vector<Watchable>& all, const std::string& name) {
    // The entry was read with these names.
    for (const Watchable& one : all)
        if (one.name == name)
            return one;
    throw CommandError(ExitCode::Usage, fmt::format("there is no custom metric or rule \"{}\"", name));
}

void listChanges(Session& session, Listing& listing, int alert) {
    listing.begin({"changes",
                   "Changes",
                   {{"date", "Date"}, {"user", "By"}, {"before", "Before"}, {"after", "After", Column::Kind::Prose}}});
    const ProfileCursorHandle changes = session.checked(session.viewer().getAlertChanges(alert));
    while (changes->next()) {
        const std::string author = textAt(*changes, layout::AlertChangeAuthor);
        listing.row(Row{shownDate(changes->getColumnDouble(layout::AlertChangeDate)),
                        author.empty() ? std::string("job") : author, textAt(*changes, layout::AlertChangeBefore),
                        textAt(*changes, layout::AlertChangeAfter)});
    }
    listing.end();
}

void listNotes(Session& session, Listing& listing, int alert) {
    listing.begin({"notes", "Notes", {{"date", "Date"}, {"user", "User"}, {"note", "Note", Column::Kind::Prose}}});
    const ProfileCursorHandle notes = session.checked(session.viewer().getAlertNotes(alert));
    while (notes->next())
        listing.row(Row{shownDate(notes->getColumnDouble(layout::AlertNoteDate)), textAt(*notes, layout::AlertNoteUser),
                        textAt(*notes, layout::AlertNoteText)});
    listing.end();
}

} // namespace

std::vector<TypedAlert> readTypedAlerts(Session& session, const std::string& entry, const std::string& table) {
    const TableIdentity owner = session.table(table);
    const std::vector<Watchable> metrics = customMetricsOf(session, owner.id);
    const std::vector<Watchable> rules = rulesOf(session, owner.id);
    job::TableDescription description;
    description.name = owner.displayName();
    for (const Watchable& one : metrics)
        description.metrics.push_back({one.name, one.value, {}, {}});
    for (const Watchable& one : rules)
        description.rules.push_back({one.name, {}});
    const auto facts = job::readAlertEntry(entry, std::move(description));
    if (!facts)
        throw CommandError(ExitCode::Usage, facts.error().text);
    std::vector<TypedAlert> alerts;
    for (const repository::AlertFacts& one : *facts) {
        TypedAlert alert;
        alert.definition.table = owner.id;
        alert.definition.subject = one.subject;
        alert.definition.rule = one.rule;
        alert.definition.description = one.description;
        if (one.subject != AlertSubject::StandardMetric) {
            const Watchable& watched = named(one.subject == AlertSubject::CustomMetric ? metrics : rules, one.watched);
            alert.definition.watched = watched.id;
            alert.sentence = alertSentence(one.subject, one.rule, watched.value, watched.name);
        } else if (one.field.empty()) {
            alert.sentence = recordsAlertSentence(one.rule);
        } else {
            const ChosenField field = session.field(one.field, table);
            alert.definition.field = field.id;
            alert.definition.metric = one.metric;
            alert.sentence =
                alertSentence(one.subject, one.rule, metricCatalogue()[index(one.metric)].name, field.name);
        }
        alerts.push_back(std::move(alert));
    }
    return alerts;
}

std::vector<int> addAlerts(Session& session, const std::vector<TypedAlert>& alerts) {
    std::vector<int> ids;
    session.check(session.viewer().beginChanges());
    for (const TypedAlert& alert : alerts) {
        int id = -1;
        session.check(session.viewer().createEditAlert(id, alert.definition, loginName()));
        ids.push_back(id);
    }
    session.check(session.viewer().keepChanges());
    return ids;
}

UtcTime readUntil(const std::string& text) {
    const auto ticks = parseDate(text);
    // Beyond the day, the only signs are those of an offset.
    constexpr std::size_t kDay = 10;
    if (!ticks || text.find_first_of("Z+-", kDay) != std::string::npos)
        throw CommandError(ExitCode::Usage,
                           fmt::format("--until: expected a date such as 2026-12-01 or \"2026-12-01 08:00\", not "
                                       "\"{}\"",
                                       text));
    const CalendarDay day = calendarDay(*ticks);
    std::tm local{};
    local.tm_year = day.year - 1900;
    local.tm_mon = day.month - 1;
    local.tm_mday = day.day;
    local.tm_sec = static_cast<int>((*ticks - dayOf(*ticks) * kTicksPerDay) / kTicksPerSecond);
    local.tm_isdst = -1;
    // The system clock's own type ends in 2262.
    return UtcTime(std::chrono::seconds(std::mktime(&local)));
}

void muteAlert(Session& session, int alert, const MuteRequest& request) {
    std::optional<UtcTime> until;
    if (request.until)
        until = readUntil(*request.until);
    session.check(session.viewer().muteAlert(alert, loginName(), request.reason, request.runs, until));
}

void removeAlert(Session& session, const AlertState& alert, bool isSure) {
    if (!alert.isOfUser)
        throw CommandError(ExitCode::Usage,
                           fmt::format("alert {} is defined by the job file: remove it there, or mute it", alert.id));
    const std::string which = fmt::format("alert {}: {}: {}", alert.id, alert.table, alert.condition());
    if (!isSure) {
        if (!canAsk())
            throw CommandError(
                ExitCode::Usage,
                fmt::format("this removes {}; there is no terminal to ask on: confirm with --yes", which));
        if (!askYesNo(fmt::format("Remove {}?", which)))
            throw CommandError(ExitCode::Cancelled, "nothing was removed");
    }
    session.check(session.viewer().deleteAlert(alert.id));
    say(fmt::format("removed {}", which));
}

void showAlert(Session& session, const CommonOptions& options, const AlertState& alert) {
    const JobNames jobs{{session.jobId(), session.jobName()}};
    const bool isCsv = options.format == Format::Csv;
    Listing listing(options, isCsv ? Sections::One : Sections::Several);
    listAlert(listing, alert, jobs);
    if (!isCsv) {
        listChanges(session, listing, alert.id);
        listNotes(session, listing, alert.id);
    }
    listing.finish();
}

} // namespace tavix::cli
