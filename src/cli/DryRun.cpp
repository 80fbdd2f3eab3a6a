#include "cli/DryRun.h"

#include "access/Layouts.h"
#include "cli/Command.h"
#include "cli/Session.h"
#include "profiling/JobPlan.h"

#include <fmt/format.h>

#include <filesystem>
#include <optional>

namespace tavix::cli {

namespace {

using job::JobDescription;
using job::TableDescription;
using profiling::JobPlan;
using profiling::PlannedTable;

constexpr int kSecondsPlaces = 1;

struct LastRun {
    KvbDatavar seconds; ///< null when there is none
    KvbDatavar records;
    std::int64_t runs = 0;
};

/// The last run of the job; empty when the repository does not exist yet.
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
        last.runs = reports->getColumnInt64(layout::ReportRunCount);
        session.selectJob(job);
        const ProfileCursorHandle runs = session.checked(session.viewer().getJobs());
        if (runs->next()) {
            last.seconds = runs->getColumnDouble(layout::JobSeconds);
            last.records = runs->getColumnInt64(layout::JobRecords);
        }
        break;
    }
    return last;
}

KvbDatavar cell(const std::optional<std::int64_t>& number) {
    return number ? KvbDatavar(*number) : KvbDatavar();
}

KvbDatavar cell(const std::string& text) {
    return text.empty() ? KvbDatavar() : KvbDatavar(text);
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
                     {"last_run_processed_records", "Last run, processed records", number}}};
    section.isRecord = true;
    listing.begin(section);
    listing.row(Row{job.name, repository, last.runs, last.seconds, last.records});
    listing.end();
}

void listTables(Listing& listing, const JobPlan& plan) {
    const Column::Kind number = Column::Kind::Number;
    listing.begin({"tables",
                   "Tables",
                   {{"table", "Table"},
                    {"reads", "Reads"},
                    {"files", "Files", number},
                    {"bytes", "Bytes", number},
                    {"fields", "Fields", number},
                    {"sample", "Sample"},
                    {"custom_metrics", "Custom metrics", number},
                    {"rules", "Rules", number},
                    {"alerts", "Alerts", number},
                    {"filter", "Filter", Column::Kind::Prose}}});
    const auto count = [](const auto& entries) { return static_cast<std::int64_t>(entries.size()); };
    for (const PlannedTable& planned : plan.tables) {
        const TableDescription& table = *planned.table;
        listing.row(Row{table.name, planned.reads, cell(planned.files), cell(planned.bytes), cell(planned.fields),
                        cell(planned.sample), count(table.metrics), count(table.rules), count(table.alerts),
                        cell(table.where.text)});
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

void listPlan(const CommonOptions& options, const JobPlan& plan, const std::string& repository) {
    if (options.format == Format::Csv) {
        Listing listing(options);
        listTables(listing, plan);
        listing.finish();
        return;
    }
    Listing listing(options, Sections::Several);
    listRun(listing, plan.job, repository);
    listTables(listing, plan);
    listFigures(listing, plan.job);
    listing.finish();
}

} // namespace tavix::cli
