#include "repository/AlertMutes.h"

#include "base/NoteText.h"
#include "repository/BindValue.h"
#include "repository/Existence.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <vector>

namespace tavix::repository {

namespace {

Status requireAlert(sql::Connection& connection, int alert) {
    return requireRow(connection, "SELECT 1 FROM alert WHERE id = ?1", alert, "alert");
}

Result<std::string> checkedNote(std::string_view text) {
    std::string tidied = tidyNote(text);
    if (Status checked = checkNote(tidied); !checked)
        return checked.error();
    return tidied;
}

/// The rows of a query of one number; ?1 is `parameter`.
Result<std::vector<std::int64_t>> readNumbers(sql::Connection& connection, std::string_view sql, int parameter) {
    auto select = connection.prepare(sql);
    if (!select)
        return select.error();
    std::vector<std::int64_t> numbers;
    select->bind(1, parameter);
    sql::Step step = select->step();
    for (; step == sql::Step::Row; step = select->step())
        numbers.push_back(select->integer(0));
    if (step == sql::Step::Failed)
        return Error{connection.errorText()};
    return numbers;
}

} // namespace

Status muteAlert(sql::Connection& connection, int alert, std::string_view user, std::string_view reason,
                 const MuteSpan& span, UtcTime now) {
    if (Status found = requireAlert(connection, alert); !found)
        return found;
    const auto tidied = checkedNote(reason);
    if (!tidied)
        return tidied.error();
    if (span.runs < 0 || span.runs > kMostMutedRuns)
        return Error{fmt::format("An alert is muted for 1 to {} runs, or without such an end.", kMostMutedRuns)};
    auto put = connection.prepare("INSERT OR REPLACE INTO alert_mute(alert, reason, author, muted, first_run, runs, "
                                  "until) VALUES(?1,?2,?3,?4,?5,?6,?7)");
    if (!put)
        return put.error();
    put->bind(1, alert).bind(2, std::string_view(*tidied)).bind(3, user).bind(4, storedTime(now));
    put->bind(5, span.firstRun);
    if (span.runs > 0)
        put->bind(6, span.runs);
    else
        put->bindNull(6);
    if (span.until)
        put->bind(7, storedTime(*span.until));
    else
        put->bindNull(7);
    return put->run();
}

Status unmuteAlert(sql::Connection& connection, int alert) {
    if (Status found = requireAlert(connection, alert); !found)
        return found;
    auto remove = connection.prepare("DELETE FROM alert_mute WHERE alert = ?1");
    if (!remove)
        return remove.error();
    if (Status done = remove->bind(1, alert).run(); !done)
        return done;
    return connection.changes() == 0 ? Status{Error{"The alert is not muted."}} : Status{};
}

Status keepMutesOfOtherRuns(sql::Connection& connection, int job, std::int64_t first, std::int64_t last) {
    auto runs = readNumbers(connection, "SELECT id FROM run WHERE job = ?1 ORDER BY id", job);
    auto select = connection.prepare("SELECT m.alert, m.first_run, m.runs FROM alert_mute m JOIN alert a ON a.id = "
                                     "m.alert WHERE a.job = ?1 AND m.runs IS NOT NULL AND m.last_run IS NULL");
    auto update = connection.prepare("UPDATE alert_mute SET runs = ?2, last_run = ?3 WHERE alert = ?1");
    if (!runs || !select || !update)
        return runs ? Status{Error{connection.errorText()}} : Status{runs.error()};
    // Where the last muted run is known, it stays the last; otherwise fewer runs are left to come.
    select->bind(1, job);
    sql::Step step = select->step();
    for (; step == sql::Step::Row; step = select->step()) {
        const auto begin = std::lower_bound(runs->begin(), runs->end(), select->integer(1));
        const std::int64_t count = select->integer(2);
        update->bind(1, select->integer(0)).bind(2, count).bindNull(3);
        if (runs->end() - begin >= count)
            update->bind(3, *(begin + count - 1));
        else
            update->bind(2, count - std::count_if(begin, runs->end(),
                                                  [&](std::int64_t run) { return run >= first && run <= last; }));
        if (Status done = update->run(); !done)
            return done;
    }
    return step == sql::Step::Failed ? Status{Error{connection.errorText()}} : Status{};
}

Status addAlertNote(sql::Connection& connection, int alert, std::string_view author, std::string_view text,
                    UtcTime written) {
    if (Status found = requireAlert(connection, alert); !found)
        return found;
    const auto tidied = checkedNote(text);
    if (!tidied)
        return tidied.error();
    auto insert = connection.prepare("INSERT INTO alert_note(alert, author, written, text) VALUES(?1,?2,?3,?4)");
    if (!insert)
        return insert.error();
    insert->bind(1, alert).bind(2, author).bind(3, storedTime(written)).bind(4, std::string_view(*tidied));
    return insert->run();
}

Status deleteAlertNote(sql::Connection& connection, int note) {
    auto remove = connection.prepare("DELETE FROM alert_note WHERE id = ?1");
    if (!remove)
        return remove.error();
    remove->bind(1, note);
    return changeRow(connection, *remove, note, "note");
}

} // namespace tavix::repository
