#include "cli/Session.h"

#include "access/Layouts.h"
#include "base/KvbDatavar.h"
#include "cli/CommandError.h"
#include "cli/Console.h"
#include "cli/Names.h"
#include "cli/RepositoryChoice.h"

#include <fmt/format.h>

#include <algorithm>

namespace tavix::cli {

namespace {

template <typename Entry>
std::vector<std::string> namesOf(const std::vector<Entry>& entries) {
    std::vector<std::string> names;
    names.reserve(entries.size());
    for (const Entry& entry : entries)
        names.push_back(entry.name);
    return names;
}

TableEntry readTable(const ProfileCursor& cursor, const std::string& dataSource) {
    TableEntry table;
    table.id = cursor.getColumnInt(layout::TableId);
    const KvbString objectName = cursor.getColumnValue(layout::TableObjectName);
    table.name = (objectName.isEmpty() ? cursor.getColumnValue(layout::TableName) : objectName).str();
    table.dataSource = dataSource;
    const KvbString kind = cursor.getColumnValue(layout::TableKindLetter);
    table.kind = kind.isEmpty() ? 'Y' : kind.view().front();
    table.fields = cursor.getColumnInt64(layout::TableFields);
    table.totalRecords = cursor.getColumnInt64(layout::TableTotalRecords);
    table.processedRecords = cursor.getColumnInt64(layout::TableProcessedRecords);
    table.damagedRecords = cursor.getColumnInt64(layout::TableDamagedRecords);
    table.base = cursor.getColumnValue(layout::TableBase).str();
    table.isSample = table.kind != 'D' && table.processedRecords < table.totalRecords;
    return table;
}

} // namespace

Session::Session(const std::string& repository) : m_viewer(PrViewer::create()) {
    check(m_viewer->init(requiredRepository(repository)));
}

void Session::selectJob(const std::optional<std::string>& name) {
    std::vector<JobEntry> jobs;
    const ProfileCursorHandle cursor = checked(m_viewer->getReports());
    while (cursor->next())
        jobs.push_back({cursor->getColumnInt(layout::ReportId), cursor->getColumnValue(layout::ReportName).str()});
    const std::vector<std::string> names = namesOf(jobs);
    if (name)
        m_job = jobs[pickByName("job", *name, names)];
    else if (jobs.size() == 1)
        m_job = jobs.front();
    else if (jobs.empty())
        throw CommandError(ExitCode::Usage, "the repository has no job yet; \"tavix profile\" makes one");
    else
        throw CommandError(ExitCode::Usage,
                           fmt::format("which job? Name it with --job; there is {}", listNames(names)));
    check(m_viewer->setCurrentJobSetup(m_job.id));
}

void Session::selectRun(std::optional<int> run) {
    if (run && *run != m_viewer->getCurrentJob())
        changeRun(*run);
    if (const KvbString warning = m_viewer->getRunWarning(); !warning.isNull())
        say(warning.str());
}

void Session::changeRun(int run) {
    std::vector<std::string> known;
    for (const RunEntry& entry : runs()) {
        if (entry.id == run) {
            check(m_viewer->setCurrentJob(run));
            return;
        }
        known.push_back(fmt::format("{}", entry.id));
    }
    throw CommandError(ExitCode::Usage, fmt::format("job \"{}\" has no run {}; it has {}", m_job.name, run,
                                                    known.empty() ? "none" : listNames(known)));
}

std::vector<RunEntry> Session::runs() {
    std::vector<RunEntry> runs;
    const ProfileCursorHandle cursor = checked(m_viewer->getJobs());
    while (cursor->next())
        runs.push_back({cursor->getColumnInt(layout::JobRunId), cursor->getColumnDouble(layout::JobDate),
                        cursor->getColumnValue(layout::JobDescription).str()});
    return runs;
}

std::vector<TableEntry> Session::tables() {
    std::vector<TableEntry> tables;
    const ProfileCursorHandle sources = checked(m_viewer->getDSNList());
    while (sources->next()) {
        const std::string dataSource = sources->getColumnValue(layout::DsnName).str();
        const ProfileCursorHandle cursor = checked(m_viewer->getTableList(sources->getColumnInt(layout::DsnId)));
        while (cursor->next())
            tables.push_back(readTable(*cursor, dataSource));
    }
    for (TableEntry& table : tables)
        if (table.kind == 'D')
            table.isSample = std::any_of(tables.begin(), tables.end(), [&](const TableEntry& base) {
                return base.isSample && base.name == table.base && base.dataSource == table.dataSource;
            });
    return tables;
}

TableEntry Session::table(const std::string& name) {
    const std::vector<TableEntry> all = tables();
    return all[pickByName("table", name, namesOf(all))];
}

std::vector<FieldEntry> Session::fieldsOf(const TableEntry& table) {
    std::vector<FieldEntry> fields;
    const ProfileCursorHandle cursor = checked(m_viewer->getFieldList(table.id));
    while (cursor->next()) {
        FieldEntry field{cursor->getColumnInt(layout::FieldId), cursor->getColumnValue(layout::FieldName).str(), 0,
                         table};
        const KvbString code = cursor->getColumnValue(layout::FieldTypeCode);
        if (!code.isEmpty())
            field.typeCode = code.view().front();
        fields.push_back(std::move(field));
    }
    return fields;
}

FieldEntry Session::field(const std::string& address, const std::optional<std::string>& tableName) {
    if (tableName) {
        const std::vector<FieldEntry> fields = fieldsOf(table(*tableName));
        const std::vector<std::string> names = namesOf(fields);
        // TABLE.FIELD beside --table is understood too.
        if (std::find(names.begin(), names.end(), address) == names.end())
            for (const FieldAddress& way : readFieldAddress(address, std::span(&*tableName, 1)))
                return fields[pickByName("field", way.field, names)];
        return fields[pickByName("field", address, names)];
    }
    const std::vector<TableEntry> all = tables();
    const std::vector<std::string> names = namesOf(all);
    std::string firstMiss;
    for (const FieldAddress& way : readFieldAddress(address, names)) {
        const std::vector<FieldEntry> fields = fieldsOf(all[pickByName("table", way.table, names)]);
        const std::vector<std::string> fieldNames = namesOf(fields);
        if (std::find(fieldNames.begin(), fieldNames.end(), way.field) != fieldNames.end())
            return fields[pickByName("field", way.field, fieldNames)];
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
        throw CommandError(ExitCode::Usage, fmt::format("\"{}\" beside --table or --field says it twice", subject));
    if (table) {
        field = subject;
        return;
    }
    const std::vector<TableEntry> all = tables();
    const std::vector<std::string> names = namesOf(all);
    const bool isTable = std::find(names.begin(), names.end(), subject) != names.end();
    const std::vector<FieldAddress> ways = readFieldAddress(subject, names);
    const bool isField = isTable && std::any_of(ways.begin(), ways.end(), [&](const FieldAddress& way) {
                             const std::vector<std::string> fields =
                                 namesOf(fieldsOf(all[pickByName("table", way.table, names)]));
                             return std::find(fields.begin(), fields.end(), way.field) != fields.end();
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
