#include "cli/DryRun.h"

#include "access/Layouts.h"
#include "cli/Command.h"
#include "cli/Session.h"
#include "profiling/JobDescription.h"

#include <fmt/format.h>

#include <filesystem>

namespace tavix::cli {

namespace {

using profiling::JobDescription;
using profiling::TableDescription;

constexpr int kSecondsPlaces = 1;

struct LastRun {
    KvbDatavar seconds; ///< null when there is none
    KvbDatavar records;
    std::int64_t runs = 0;
};

/// A repository that is not there yet has no run.
LastRun lastRunOf(const std::string& job, const std::string& repository) {
    LastRun last;
    std::error_code missing;
    if (!std::filesystem::exists(repository, missing))
        return last;
    Session session(repository);
    const ProfileCursorHandle reports = session.checked(session.viewer().getReports());
    while (reports->next()) {
        if (reports->getColumnValue(layout::ReportName).view() != job)
            continue;
        last.runs = KvbDatavar(reports->getColumnValue(layout::ReportRunCount)).toInt64();
        session.selectJob(job);
        const ProfileCursorHandle runs = session.checked(session.viewer().getJobs());
        if (runs->next()) {
            last.seconds = runs->getColumnDouble(layout::JobSeconds);
            last.records = KvbDatavar(runs->getColumnValue(layout::JobRecords)).toInt64();
        }
        break;
    }
    return last;
}

KvbDatavar bytesOf(const std::string& path) {
    std::error_code failure;
    const auto size = std::filesystem::file_size(path, failure);
    return failure ? KvbDatavar() : KvbDatavar(static_cast<std::int64_t>(size));
}

void listRun(Listing& listing, const JobDescription& job, const std::string& repository) {
    const LastRun last = lastRunOf(job.name, repository);
    const Column::Kind number = Column::Kind::Number;
    Section section{"run",
                    "Run",
                    {{"job", "Job"},
                     {"repository", "Repository"},
                     {"runs", "Runs so far", number},
                     {"last_run_seconds", "Last run, seconds", number, kSecondsPlaces},
                     {"last_run_records", "Last run, records", number}}};
    section.isRecord = true;
    listing.begin(section);
    listing.row(Row{job.name, repository, last.runs, last.seconds, last.records});
    listing.end();
}

void listTables(Listing& listing, const JobDescription& job) {
    const Column::Kind number = Column::Kind::Number;
    listing.begin({"tables",
                   "Tables",
                   {{"table", "Table"},
                    {"reads", "Reads"},
                    {"bytes", "Bytes", number},
                    {"custom_metrics", "Custom metrics", number},
                    {"rules", "Rules", number},
                    {"alerts", "Alerts", number},
                    {"filter", "Filter", Column::Kind::Prose}}});
    const auto count = [](const auto& entries) { return static_cast<std::int64_t>(entries.size()); };
    for (const TableDescription& table : job.tables) {
        const bool isFiltered = table.isFiltered();
        listing.row(Row{table.name, isFiltered ? fmt::format("the rows of {}", table.basedOn) : table.path,
                        isFiltered ? KvbDatavar() : bytesOf(table.path), count(table.metrics), count(table.rules),
                        count(table.alerts), isFiltered ? KvbDatavar(table.where.text) : KvbDatavar()});
    }
    listing.end();
}

void listFigures(Listing& listing, const JobDescription& job) {
    listing.begin(
        {"figures",
         "Figures",
         {{"table", "Table"}, {"kind", "Kind"}, {"name", "Name"}, {"expression", "Expression", Column::Kind::Prose}}});
    for (const TableDescription& table : job.tables) {
        listing.row(
            Row{table.name, "of every field", "24 metrics, values, patterns, percentiles, outliers", KvbDatavar()});
        for (const auto& metric : table.metrics)
            listing.row(Row{table.name, std::string(figureWord(metric.figure)), metric.name, metric.expression.text});
        for (const auto& rule : table.rules)
            listing.row(Row{table.name, "rule", rule.name, rule.condition.text});
    }
    listing.end();
}

} // namespace

void listPlan(const CommonOptions& options, const JobDescription& job, const std::string& repository) {
    if (options.format == Format::Csv) {
        Listing listing(options);
        listTables(listing, job);
        listing.finish();
        return;
    }
    Listing listing(options, Sections::Several);
    listRun(listing, job, repository);
    listTables(listing, job);
    listFigures(listing, job);
    listing.finish();
}

} // namespace tavix::cli
