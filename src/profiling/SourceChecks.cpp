#include "profiling/SourceChecks.h"

#include "job/AlertEntries.h"
#include "job/JobChecks.h"
#include "profiling/JobRunner.h"
#include "profiling/TablePrograms.h"

#include <fmt/format.h>

#include <filesystem>
#include <utility>

namespace tavix::profiling {

std::vector<const job::TableDescription*> tablesOver(const job::JobDescription& job,
                                                     const job::TableDescription& base) {
    std::vector<const job::TableDescription*> tables{&base};
    for (const job::TableDescription& table : job.tables)
        if (table.basedOn == base.name && table.isFiltered())
            tables.push_back(&table);
    return tables;
}

Status checkFieldsOver(const job::JobDescription& job, const job::TableDescription& base,
                       std::span<const std::string> columns) {
    for (const job::TableDescription* table : tablesOver(job, base)) {
        if (auto compiled = compileTable(*table, columns, SystemClock().now()); !compiled)
            return compiled.error();
        if (Status status = job::checkCollectionFields(job, table->name, columns); !status)
            return status;
        if (Status status = job::checkAlertFields(*table, columns); !status)
            return status;
    }
    return {};
}

Error failureIn(const job::TableDescription& table, const Error& error) {
    return {fmt::format("Table \"{}\": {}", table.name, error.text)};
}

Result<OpenedFiles> openCheckedFiles(const job::JobDescription& job, const job::TableDescription& table,
                                     source::KeepGoing keepGoing) {
    auto opened = openTable(table, std::move(keepGoing));
    if (!opened)
        return failureIn(table, opened.error());
    if (Status status = opened->files->checkColumns(); !status)
        return failureIn(table, status.error());
    if (Status status = checkFieldsOver(job, table, opened->reader->columnNames()); !status)
        return status.error();
    return opened;
}

Result<OpenedDatabaseTable> openCheckedDatabase(const job::JobDescription& job, const job::TableDescription& table,
                                                Databases& databases) {
    auto opened = databases.open(table);
    if (!opened)
        return failureIn(table, opened.error());
    if (Status status = checkFieldsOver(job, table, opened->table.columnNames()); !status)
        return status.error();
    return opened;
}

Status checkFields(const job::JobDescription& job) {
    for (const job::TableDescription& table : job.tables) {
        if (table.isFiltered() || table.isDatabase())
            continue;
        std::error_code failure;
        if (table.files.empty() && !std::filesystem::is_regular_file(table.path, failure))
            continue; // examining a pipe would consume it
        if (const auto opened = openTable(table); opened)
            if (Status status = checkFieldsOver(job, table, opened->reader->columnNames()); !status)
                return status;
    }
    return {};
}

} // namespace tavix::profiling
