#include "profiling/JobPlan.h"

#include "job/JobChecks.h"
#include "profiling/SourceChecks.h"
#include "profiling/TableFiles.h"
#include "profiling/TablePrograms.h"
#include "repository/Schema.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

namespace tavix::profiling {

namespace {

std::string databaseText(const job::TableDescription& table) {
    const source::TableRequest& wanted = table.database;
    if (!wanted.query.empty())
        return fmt::format("a query of {}", table.source);
    std::string name;
    for (const std::string* part : {&wanted.catalog, &wanted.schema})
        if (!part->empty())
            name += *part + ".";
    return fmt::format("{}{} of {}", name, wanted.table, table.source);
}

class Planner {
  public:
    Planner(JobPlan& plan, source::AskCredentials ask, source::KeepGoing keepGoing)
        : m_plan(plan), m_databases(plan.job, std::move(ask)), m_keepGoing(std::move(keepGoing)) {}

    Status plan() {
        if (Status status = job::checkJob(m_plan.job); !status)
            return status;
        for (const job::TableDescription& table : m_plan.job.tables) {
            PlannedTable& planned = m_plan.tables.emplace_back();
            planned.table = &table;
            Status status = table.isFiltered()   ? planFiltered(planned)
                            : table.isDatabase() ? planDatabase(planned)
                                                 : planFiles(planned);
            if (!status)
                return status;
        }
        return {};
    }

  private:
    Status planFiltered(PlannedTable& planned) const {
        planned.reads = fmt::format("the rows of {}", planned.table->basedOn);
        return {};
    }

    Status planDatabase(PlannedTable& planned) {
        planned.reads = databaseText(*planned.table);
        const auto opened = openCheckedDatabase(m_plan.job, *planned.table, m_databases);
        if (!opened)
            return opened.error();
        return addRemarks(*planned.table, planned, opened->table.columnNames());
    }

    Status planFiles(PlannedTable& planned) {
        const job::TableDescription& table = *planned.table;
        planned.reads = table.path;
        planned.sample = table.sample.text();
        const std::vector<std::string> paths = pathsOf(table);
        planned.files = static_cast<std::int64_t>(paths.size());
        std::int64_t bytes = 0;
        for (const std::string& path : paths) {
            std::error_code failure;
            if (std::filesystem::is_other(path, failure) || std::filesystem::is_character_file(path, failure))
                return {}; // examining a pipe would consume it
            if (const auto size = std::filesystem::file_size(path, failure); !failure)
                bytes += static_cast<std::int64_t>(size);
        }
        planned.bytes = bytes;
        const auto opened = openCheckedFiles(m_plan.job, table, m_keepGoing);
        if (!opened)
            return opened.error();
        return addRemarks(table, planned, opened->reader->columnNames());
    }

    Status addRemarks(const job::TableDescription& base, PlannedTable& planned, std::span<const std::string> columns) {
        planned.fields = static_cast<std::int64_t>(columns.size());
        for (const job::TableDescription* table : tablesOver(m_plan.job, base)) {
            const auto compiled = compileTable(*table, columns, SystemClock().now());
            if (!compiled)
                return compiled.error();
            for (const ProgramRemark& remark : compiled->remarks)
                m_plan.remarks.push_back(remark.place + remark.text);
        }
        return {};
    }

    JobPlan& m_plan;
    Databases m_databases;
    source::KeepGoing m_keepGoing;
};

} // namespace

Result<JobPlan> planJob(const job::JobDescription& job, const std::string& repositoryPath, source::AskCredentials ask,
                        source::KeepGoing keepGoing) {
    JobPlan plan;
    JobWithoutEmptyFiles found = withoutEmptyFiles(job);
    plan.job = std::move(found.job);
    plan.leftOut = std::move(found.left);
    if (Status status = Planner(plan, std::move(ask), std::move(keepGoing)).plan(); !status)
        return status.error();
    if (Status status = repository::checkWritable(repositoryPath); !status)
        return status.error();
    return plan;
}

} // namespace tavix::profiling
