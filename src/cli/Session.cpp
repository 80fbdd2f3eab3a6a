#include "cli/Session.h"

#include "access/Layouts.h"
#include "cli/CommandError.h"
#include "cli/Console.h"
#include "cli/Names.h"
#include "cli/RepositoryChoice.h"
#include "report/ReportTables.h"

#include <fmt/format.h>

#include <algorithm>

namespace tavix::cli {

namespace {

std::vector<std::string> namesOf(const std::vector<TableIdentity>& tables) {
    std::vector<std::string> names;
    names.reserve(tables.size());
    for (const TableIdentity& table : tables)
        names.push_back(table.displayName());
    return names;
}

std::vector<std::string> namesOf(const std::vector<NamedField>& fields) {
    std::vector<std::string> names;
    names.reserve(fields.size());
    for (const NamedField& field : fields)
        names.push_back(field.name);
    return names;
}

bool contains(const std::vector<std::string>& names, const std::string& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

/// Throws CommandError unless exactly one of the fields has that name.
ChosenField pickField(const std::vector<NamedField>& fields, const std::string& name, TableIdentity table) {
    const NamedField& field = fields[pickByName("field", name, namesOf(fields))];
    return {field.id, field.name, field.typeCode, std::move(table)};
}

} // namespace

Session::Session(const std::string& repository) : m_viewer(PrViewer::create()) {
    check(m_viewer->init(requiredRepository(repository)));
}

void Session::selectJob(const std::optional<std::string>& name) {
    std::vector<int> ids;
    std::vector<std::string> names;
    const ProfileCursorHandle cursor = checked(m_viewer->getReports());
    while (cursor->next()) {
        ids.push_back(cursor->getColumnInt(layout::ReportId));
        names.push_back(cursor->getColumnValue(layout::ReportName).str());
    }
    if (!name && names.empty())
        throw CommandError(ExitCode::Usage, "the repository has no job yet; \"tavix profile\" makes one");
    if (!name && names.size() > 1)
        throw CommandError(ExitCode::Usage, fmt::format("which job? Name it with --job; known: {}", listNames(names)));
    const std::size_t chosen = name ? pickByName("job", *name, names) : 0;
    m_jobId = ids[chosen];
    m_jobName = names[chosen];
    check(m_viewer->setCurrentJobSetup(m_jobId));
}

void Session::selectRun(std::optional<int> run) {
    if (run && *run != m_viewer->getCurrentJob())
        changeRun(*run);
    if (const KvbString warning = m_viewer->getRunWarning(); !warning.isNull())
        say(warning.str());
}

void Session::changeRun(int run) {
    std::vector<std::string> known;
    for (const RunInfo& entry : runs()) {
        if (entry.id == run) {
            check(m_viewer->setCurrentJob(run));
            return;
        }
        known.push_back(fmt::format("{}", entry.id));
    }
    throw CommandError(ExitCode::Usage, fmt::format("job \"{}\" has no run {}; it has {}", m_jobName, run,
                                                    known.empty() ? "none" : listNames(known)));
}

std::vector<RunInfo> Session::runs() {
    return readRuns(*m_viewer);
}

std::vector<TableIdentity> Session::tables() {
    return readTables(*m_viewer);
}

TableIdentity Session::table(const std::string& name) {
    std::vector<TableIdentity> all = tables();
    return std::move(all[pickByName("table", name, namesOf(all))]);
}

ChosenField Session::field(const std::string& address, const std::optional<std::string>& tableName) {
    if (tableName) {
        TableIdentity owner = table(*tableName);
        const std::vector<NamedField> fields = readFieldNames(*m_viewer, owner.id);
        // --table may be combined with TABLE.FIELD too.
        if (!contains(namesOf(fields), address))
            for (const FieldAddress& way : readFieldAddress(address, std::span(&*tableName, 1)))
                return pickField(fields, way.field, std::move(owner));
        return pickField(fields, address, std::move(owner));
    }
    std::vector<TableIdentity> all = tables();
    const std::vector<std::string> names = namesOf(all);
    std::string firstMiss;
    for (const FieldAddress& way : readFieldAddress(address, names)) {
        TableIdentity& owner = all[pickByName("table", way.table, names)];
        const std::vector<NamedField> fields = readFieldNames(*m_viewer, owner.id);
        const std::vector<std::string> fieldNames = namesOf(fields);
        if (contains(fieldNames, way.field))
            return pickField(fields, way.field, std::move(owner));
        if (firstMiss.empty())
            firstMiss =
                fmt::format("table \"{}\" has no field \"{}\"; it has {}", way.table, way.field, listNames(fieldNames));
    }
    throw CommandError(ExitCode::Usage, !firstMiss.empty()
                                            ? firstMiss
                                            : fmt::format("\"{}\" names no table: write TABLE.FIELD; the tables are {}",
                                                          address, listNames(names)));
}

void Session::addressSubject(const std::string& subject, std::optional<std::string>& table,
                             std::optional<std::string>& field) {
    if (field || (table && subject == *table))
        throw CommandError(ExitCode::Usage,
                           fmt::format("\"{}\" and --table or --field name the same thing twice", subject));
    if (table) {
        field = subject;
        return;
    }
    const std::vector<TableIdentity> all = tables();
    const std::vector<std::string> names = namesOf(all);
    const bool isTable = contains(names, subject);
    const std::vector<FieldAddress> ways = readFieldAddress(subject, names);
    const bool isField = isTable && std::any_of(ways.begin(), ways.end(), [&](const FieldAddress& way) {
                             const TableIdentity& owner = all[pickByName("table", way.table, names)];
                             return contains(namesOf(readFieldNames(*m_viewer, owner.id)), way.field);
                         });
    if (isField)
        throw CommandError(ExitCode::Usage,
                           fmt::format("\"{}\" is a table and a field: say which with --table or --field", subject));
    if (!isTable && ways.empty())
        (void)pickByName("table", subject, names); // throws
    (isTable ? table : field) = subject;
}

ProfileCursorHandle Session::checked(ProfileCursorHandle cursor) {
    check(cursor != nullptr);
    return cursor;
}

void Session::check(bool succeeded) {
    if (!succeeded)
        throw CommandError(ExitCode::Source, m_viewer->getErrorString().str());
}

} // namespace tavix::cli
