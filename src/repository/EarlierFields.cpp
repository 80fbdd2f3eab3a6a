#include "repository/EarlierFields.h"

namespace tavix::repository {

Result<std::map<std::string, EarlierField, std::less<>>> readEarlierFields(sql::Connection& connection,
                                                                           std::string_view job, int run, int table) {
    auto select = connection.prepare(
        "SELECT f.name, r.started, rf.type_code, rf.decimal_precision, CAST(rf.maximum_value AS TEXT), "
        "rf.non_null_count FROM run_field rf JOIN run r ON r.id = rf.run JOIN field f ON f.id = rf.field "
        "WHERE rf.table_id = ?3 AND rf.run = (SELECT max(r2.id) FROM run r2 JOIN job j ON j.id = r2.job "
        "JOIN run_table rt ON rt.run = r2.id AND rt.table_id = ?3 WHERE j.name = ?1 AND r2.id < ?2)");
    if (!select)
        return select.error();
    select->bind(1, job).bind(2, run).bind(3, table);
    std::map<std::string, EarlierField, std::less<>> fields;
    for (;;) {
        const sql::Step step = select->step();
        if (step == sql::Step::Failed)
            return Error{std::string(connection.errorText())};
        if (step == sql::Step::Done)
            return fields;
        EarlierField& field = fields[std::string(select->text(0))];
        field.started = UtcTime(std::chrono::milliseconds(select->integer(1)));
        const std::string_view type = select->text(2);
        field.typeCode = type.empty() ? '\0' : type.front();
        if (!select->isNull(3))
            field.precision = select->integer(3);
        field.maximum = select->text(4);
        field.nonNullCount = select->integer(5);
    }
}

} // namespace tavix::repository
