#include "repository/ExaminationStore.h"

#include "base/NoteText.h"
#include "repository/BindValue.h"

#include <fmt/format.h>

#include <string>

namespace tavix::repository {

namespace {

Error noFinding(std::string_view code) {
    return Error{fmt::format("There is no finding \"{}\" there.", code)};
}

std::int64_t asInteger(std::uint64_t number) {
    return static_cast<std::int64_t>(number);
}

Status storeForms(sql::Connection& connection, int run, int field, const TypeBreakdown& breakdown) {
    auto insert = connection.prepare("INSERT INTO type_form(run, field, position, form, value_count, row_count, "
                                     "example) VALUES(?1,?2,?3,?4,?5,?6,?7)");
    if (!insert)
        return insert.error();
    int position = 0;
    for (const FormFacts& form : breakdown.forms) {
        insert->bind(1, run).bind(2, field).bind(3, position++).bind(4, form.form);
        insert->bind(5, asInteger(form.values)).bind(6, asInteger(form.rows)).bind(7, form.example.view());
        if (Status done = insert->run(); !done)
            return done;
        insert->reset();
    }
    return {};
}

} // namespace

Status storeExamination(sql::Connection& connection, int run, bool hasTypedExpressions) {
    auto insert = connection.prepare("INSERT INTO run_examination(run, expressions) VALUES(?1, ?2)");
    if (!insert)
        return insert.error();
    return insert->bind(1, run).bind(2, hasTypedExpressions ? kTypedExpressions : kTextExpressions).run();
}

Status storeBreakdown(sql::Connection& connection, int run, int field, const TypeBreakdown& breakdown) {
    auto insert =
        connection.prepare("INSERT INTO type_breakdown(run, field, value_count, row_count, reading, "
                           "fit_values, fit_rows, ambiguity, has_figures) VALUES(?1,?2,?3,?4,?5,?6,?7,?8,?9)");
    if (!insert)
        return insert.error();
    insert->bind(1, run).bind(2, field).bind(3, asInteger(breakdown.values)).bind(4, asInteger(breakdown.rows));
    insert->bind(5, breakdown.reading).bind(6, asInteger(breakdown.fitValues)).bind(7, asInteger(breakdown.fitRows));
    insert->bind(8, breakdown.ambiguity).bind(9, breakdown.hasFigures ? 1 : 0);
    if (Status done = insert->run(); !done)
        return done;
    return storeForms(connection, run, field, breakdown);
}

Status storeFinding(sql::Connection& connection, const FindingPlace& place, const FindingFacts& finding) {
    auto insert = connection.prepare("INSERT INTO finding(run, table_id, field, code, likelihood, value_count, "
                                     "row_count, detail, condition) VALUES(?1,?2,?3,?4,?5,?6,?7,?8,?9)");
    if (!insert)
        return insert.error();
    insert->bind(1, place.run).bind(2, place.table).bind(3, place.field).bind(4, finding.code);
    insert->bind(5, finding.likelihood).bind(6, asInteger(finding.values)).bind(7, asInteger(finding.rows));
    return insert->bind(8, finding.detail).bind(9, finding.condition).run();
}

Status dismissFinding(sql::Connection& connection, int table, int field, std::string_view code, std::string_view author,
                      std::string_view reason, UtcTime dismissed) {
    const std::string tidied = tidyNote(reason);
    if (tidied.empty())
        return Error{"A finding is dismissed with a reason."};
    if (Status checked = checkNote(tidied); !checked)
        return checked;
    auto insert = connection.prepare(
        "INSERT OR REPLACE INTO dismissed_finding(table_id, field, code, reason, author, dismissed) "
        "SELECT ?1, ?2, ?3, ?4, ?5, ?6 WHERE EXISTS (SELECT 1 FROM finding b JOIN run_table rt ON rt.run = b.run AND "
        "rt.table_id = b.table_id WHERE rt.table_id = ?1 AND b.field = ?2 AND b.code = ?3)");
    if (!insert)
        return insert.error();
    insert->bind(1, table).bind(2, field).bind(3, code).bind(4, tidied).bind(5, author).bind(6, storedTime(dismissed));
    if (Status done = insert->run(); !done)
        return done;
    return connection.changes() > 0 ? Status{} : Status{noFinding(code)};
}

Status restoreFinding(sql::Connection& connection, int table, int field, std::string_view code) {
    auto erase = connection.prepare("DELETE FROM dismissed_finding WHERE table_id = ?1 AND field = ?2 AND code = ?3");
    if (!erase)
        return erase.error();
    if (Status done = erase->bind(1, table).bind(2, field).bind(3, code).run(); !done)
        return done;
    return connection.changes() > 0 ? Status{} : Status{noFinding(code)};
}

} // namespace tavix::repository
