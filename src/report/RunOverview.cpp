#include "report/RunOverview.h"

#include "access/CursorText.h"
#include "access/Layouts.h"
#include "access/PrViewer.h"
#include "report/CheckedCursor.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

namespace tavix {

namespace {

constexpr int kAllTables = -1;
constexpr int kFiles = 4; // the kind of a data source of text files

void readRun(PrViewer& viewer, RunOverview& overview) {
    using namespace layout;
    const ProfileCursorHandle runs = checked(viewer, viewer.getJobs());
    const int current = viewer.getCurrentJob();
    while (runs->next()) {
        RunInfo run{runs->getColumnInt(JobRunId), runs->getColumnDouble(JobDate), textAt(*runs, JobDescription)};
        if (run.id == current) {
            overview.seconds = runs->getColumnDouble(JobSeconds);
            overview.run = std::move(run);
        } else if (run.id < current) {
            overview.before = std::move(run);
            return;
        }
    }
}

std::vector<RunOverview::Table> readTablesOfRun(PrViewer& viewer, int run) {
    using namespace layout;
    std::vector<RunOverview::Table> tables;
    const ProfileCursorHandle rows = checked(viewer, viewer.getTablesOfRun(run));
    while (rows->next()) {
        RunOverview::Table& table = tables.emplace_back();
        table.id = rows->getColumnInt(RunTableId);
        table.source = rows->getColumnInt(RunTableSourceId);
        table.name = textAt(*rows, RunTableName);
        table.kind = tableKindOf(textAt(*rows, RunTableKindLetter)).value_or(TableKind::Plain);
        table.records =
            int64Or(*rows, table.kind == TableKind::Filter ? RunTableProcessedRecords : RunTableTotalRecords, -1);
        table.damaged = int64Or(*rows, RunTableDamagedRecords, 0);
        table.fields = int64Or(*rows, RunTableFields, 0);
    }
    return tables;
}

std::vector<RunOverview::Field> readFieldsOfRun(PrViewer& viewer, int run) {
    using namespace layout;
    std::vector<RunOverview::Field> fields;
    const ProfileCursorHandle rows = checked(viewer, viewer.getFieldsOfRun(run));
    while (rows->next())
        fields.push_back({rows->getColumnInt(RunFieldId), rows->getColumnInt(RunFieldTableId),
                          textAt(*rows, RunFieldName), int64Or(*rows, RunFieldNulls, 0),
                          rows->getColumnDouble(RunFieldNullPercent)});
    return fields;
}

/// Those of `fields` that are not among `others`, in tables that the run of the others has too.
std::vector<RunOverview::Field> missingFrom(const std::vector<RunOverview::Field>& others,
                                            const std::vector<RunOverview::Table>& otherTables,
                                            const std::vector<RunOverview::Field>& fields) {
    std::set<int> tables;
    for (const RunOverview::Table& table : otherTables)
        tables.insert(table.id);
    std::set<int> ids;
    for (const RunOverview::Field& field : others)
        ids.insert(field.id);
    std::vector<RunOverview::Field> missing;
    for (const RunOverview::Field& field : fields) {
        if (tables.contains(field.table) && !ids.contains(field.id))
            missing.push_back(field);
    }
    return missing;
}

void readRules(PrViewer& viewer, RunOverview& overview) {
    using namespace layout;
    const ProfileCursorHandle rows = checked(viewer, viewer.getBusinessRules(kAllTables));
    while (rows->next()) {
        RunOverview::Rule rule{rows->getColumnInt(RuleId), rows->getColumnInt(RuleTableId), textAt(*rows, RuleName),
                               rows->getColumnInt64(RuleFailedRows), rows->getColumnInt64(RuleCheckedRows)};
        if (rule.failed > 0)
            overview.violatedRules.push_back(std::move(rule));
    }
    const auto share = [](const RunOverview::Rule& rule) {
        return static_cast<double>(rule.failed) / static_cast<double>(std::max<std::int64_t>(rule.checked, 1));
    };
    std::stable_sort(overview.violatedRules.begin(), overview.violatedRules.end(),
                     [&](const auto& a, const auto& b) { return share(a) > share(b); });
}

void readSources(PrViewer& viewer, RunOverview& overview) {
    using namespace layout;
    const ProfileCursorHandle rows = checked(viewer, viewer.getDSNList());
    while (rows->next())
        overview.sources.push_back(
            {rows->getColumnInt(DsnId), textAt(*rows, DsnName), rows->getColumnInt(DsnKind) == kFiles});
}

void keepFieldsWithNulls(std::vector<RunOverview::Field> fields, RunOverview& overview) {
    std::erase_if(fields, [](const RunOverview::Field& field) { return field.nulls <= 0; });
    std::stable_sort(fields.begin(), fields.end(),
                     [](const auto& a, const auto& b) { return a.nullPercent > b.nullPercent; });
    overview.fieldsWithNulls = std::move(fields);
}

} // namespace

RunOverview readRunOverview(PrViewer& viewer, int job) {
    RunOverview overview;
    readRun(viewer, overview);
    readSources(viewer, overview);
    overview.tables = readTablesOfRun(viewer, overview.run.id);
    std::vector<RunOverview::Field> fields = readFieldsOfRun(viewer, overview.run.id);
    if (overview.before) {
        overview.tablesBefore = readTablesOfRun(viewer, overview.before->id);
        const std::vector<RunOverview::Field> fieldsBefore = readFieldsOfRun(viewer, overview.before->id);
        overview.newFields = missingFrom(fieldsBefore, overview.tablesBefore, fields);
        overview.vanishedFields = missingFrom(fields, overview.tables, fieldsBefore);
    }
    keepFieldsWithNulls(std::move(fields), overview);
    readRules(viewer, overview);
    std::vector<AlertState> alerts = readAlertStates(viewer, job);
    orderAlerts(alerts);
    for (AlertState& state : alerts)
        (state.isRaised() ? overview.raisedAlerts : overview.otherAlerts).push_back(std::move(state));
    overview.isExamined = viewer.isExamined();
    overview.findings = readFindings(viewer);
    std::erase_if(overview.findings, [](const FindingRecord& finding) { return finding.dismissal.has_value(); });
    return overview;
}

} // namespace tavix
