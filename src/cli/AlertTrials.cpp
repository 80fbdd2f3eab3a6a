#include "cli/AlertTrials.h"

#include "cli/AlertLists.h"
#include "cli/Command.h"
#include "cli/ShownDate.h"
#include "report/AlertBackTest.h"
#include "report/AlertEntryText.h"
#include "report/AlertStates.h"

#include <algorithm>

namespace tavix::cli {

namespace {

constexpr auto kNumber = Column::Kind::Number;

KvbDatavar idCell(int id) {
    return id < 0 ? KvbDatavar() : KvbDatavar(id);
}

std::vector<Column> summaryColumns() {
    return {{"alert", "Alert", kNumber},   {"table", "Table"},
            {"runs", "Runs", kNumber},     {"judged", "Judged", kNumber},
            {"raised", "Raised", kNumber}, {"last_raised_run", "Last raised in run", kNumber},
            {"entry", "Raised by"},        {"condition", "Condition", Column::Kind::Prose}};
}

Row summaryCells(const TrialAlert& alert, const AlertBackTest& test) {
    const auto last = std::find_if(test.runs.rbegin(), test.runs.rend(), [](const BackTestRun& run) {
        return run.verdict.state == AlertVerdict::State::Raised;
    });
    return {idCell(alert.id),
            alert.table,
            static_cast<std::int64_t>(test.runs.size()),
            test.judged,
            test.raised,
            last == test.runs.rend() ? KvbDatavar() : KvbDatavar(last->id),
            alertConditionText(alert.definition.rule),
            alert.condition};
}

AlertBackTest tried(PrViewer& viewer, const TrialAlert& alert) {
    return backTest(alert.definition.rule, readWatchedFigures(viewer, alert.definition));
}

void listRuns(Listing& listing, const AlertBackTest& test) {
    listing.begin({"runs",
                   "Runs",
                   {{"run", "Run", kNumber},
                    {"date", "Date"},
                    {"figure", "Figure", kNumber},
                    {"reference", "Reference", kNumber},
                    {"verdict", "Verdict"}}});
    for (const BackTestRun& run : test.runs)
        listing.row(Row{run.id, shownDate(run.date), figureCell(run.figure), figureCell(run.verdict.reference),
                        verdictWord(run.verdict)});
    listing.end();
}

void listProposals(Listing& listing, const AlertRule& rule, const AlertBackTest& test) {
    listing.begin({"proposals",
                   "Limits that the history suggests",
                   {{"entry", "Raised by"}, {"raised", "Raised", kNumber}, {"reason", "Reason"}}});
    for (const LimitProposal& proposal : proposeLimits(rule, test.runs)) {
        AlertRule proposed = rule;
        proposed.comparison = proposal.comparison;
        proposed.value1 = proposal.value1;
        proposed.value2 = proposal.value2;
        listing.row(Row{alertConditionText(proposed), proposal.raised, proposal.reason});
    }
    listing.end();
}

void listOne(const CommonOptions& options, PrViewer& viewer, const TrialAlert& alert) {
    const AlertBackTest test = tried(viewer, alert);
    if (options.format == Format::Csv) {
        Listing listing(options);
        listRuns(listing, test);
        listing.finish();
        return;
    }
    Listing listing(options, Sections::Several);
    Section section{"back_test", "Back-test", summaryColumns()};
    section.isRecord = true;
    listing.begin(section);
    listing.row(summaryCells(alert, test));
    listing.end();
    listRuns(listing, test);
    listProposals(listing, alert.definition.rule, test);
    listing.finish();
}

} // namespace

void listTrials(const CommonOptions& options, PrViewer& viewer, const std::vector<TrialAlert>& alerts) {
    if (alerts.size() == 1) {
        listOne(options, viewer, alerts.front());
        return;
    }
    Listing listing(options);
    listing.begin({"back_tests", "Back-tests", summaryColumns()});
    for (const TrialAlert& alert : alerts)
        listing.row(summaryCells(alert, tried(viewer, alert)));
    listing.end();
    listing.finish();
}

} // namespace tavix::cli
