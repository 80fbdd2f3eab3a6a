#include "access/tests/AlertRuns.h"
#include "base/LibraryDate.h"
#include "sql/tests/StoredRows.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <limits>
#include <utility>

namespace tavix {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;

class PrViewerAlerts : public testing::AlertRuns {
  protected:
    /// The number of the first alert after those of the sample.
    int first() { return std::stoi(alerts().front()); }
    /// "alert: run weekday value rows", runs by their place in the job.
    std::vector<std::string> figures(ProfileCursorHandle cursor) {
        std::vector<int> runs = ids(m_viewer->getJobs());
        std::reverse(runs.begin(), runs.end());
        std::vector<std::string> lines;
        while (cursor && cursor->next()) {
            const auto at = [&](int column) {
                return cursor->isColumnNull(column) ? "-" : cursor->getColumnValue(column).str();
            };
            const auto run = std::find(runs.begin(), runs.end(), cursor->getColumnInt(layout::FigureRun));
            lines.push_back(fmt::format("{}: {} {} {} {}", at(layout::FigureAlert), run - runs.begin() + 1,
                                        at(layout::FigureWeekday), at(layout::FigureValue), at(layout::FigureRows)));
        }
        return lines;
    }
    /// "reason by author: first-last", runs by their place in the job as `runs` has them; "..." while there is no end.
    std::string mute(int alert, const std::vector<int>& runs) {
        const auto place = [&](int run) {
            return std::to_string(std::upper_bound(runs.begin(), runs.end(), run) - runs.begin());
        };
        const ProfileCursorHandle cursor = m_viewer->getAlertMutes();
        while (cursor && cursor->next())
            if (cursor->getColumnInt(layout::MutedAlert) == alert)
                return fmt::format(
                    "{} by {}: {}-{}", cursor->getColumnValue(layout::MuteReason).str(),
                    cursor->getColumnValue(layout::MuteAuthor).str(), place(cursor->getColumnInt(layout::MuteFirstRun)),
                    cursor->isColumnNull(layout::MuteLastRun) ? "..."
                                                              : place(cursor->getColumnInt(layout::MuteLastRun)));
        return cursor ? "none" : error();
    }
};

TEST_F(PrViewerAlerts, OfAJobKeepTheirIdsAsLongAsTheyWatchTheSameFigure) {
    run({onNulls(above(0)), onNulls(above(10)), onSum(above(5)), onPositive(above(1)),
         onRecords({.comparison = AlertComparison::Less})});
    const int a = first();
    const auto was = alerts();
    EXPECT_THAT(was, ElementsAre(fmt::format("{} Null Count for field x is greater than 0", a),
                                 fmt::format("{} Null Count for field x is greater than 10", a + 1),
                                 fmt::format("{} total for custom metric Sum is greater than 5", a + 2),
                                 fmt::format("{} Failed row count for business rule Positive is greater than 1", a + 3),
                                 fmt::format("{} Number of records is less than 0", a + 4)));
    // The first column of the table is another one, and the alerts have another order.
    run({onRecords({.comparison = AlertComparison::Less}), onNulls(above(10)), onPositive(above(1)), onNulls(above(0)),
         onSum(above(5))},
        {"new", "x", "y"});
    EXPECT_THAT(alerts(), ElementsAre(was[4], was[1], was[3], was[0], was[2]));
    EXPECT_THAT(changes(a), IsEmpty());

    // One limit differs: the equal rule finds its alert, the other one is the same comparison. A range is the one left.
    run({onNulls({.comparison = AlertComparison::Outside, .value1 = 1, .value2 = 2}), onNulls(above(12)),
         onNulls(above(0)), onPositive({.ofFailedPercent = true, .value1 = 1, .level = AlertLevel::Error}),
         onSum(above(5))});
    EXPECT_THAT(
        alerts(),
        ElementsAre(fmt::format("{} Null Count for field x is outside the range 1 to 2", a + 5),
                    fmt::format("{} Null Count for field x is greater than 12", a + 1), was[0],
                    fmt::format("{} Percentage of failed rows for business rule Positive is greater than 1", a + 3),
                    was[2]));
    EXPECT_THAT(changes(a + 1), ElementsAre("run: Null Count for field x is greater than 10 (warning) -> Null Count "
                                            "for field x is greater than 12 (warning)"));
    EXPECT_THAT(changes(a + 3),
                ElementsAre("run: Failed row count for business rule Positive is greater than 1 (warning) -> "
                            "Percentage of failed rows for business rule Positive is greater than 1 (error)"));
    EXPECT_FALSE(m_viewer->getAlertProperties(a + 4)) << "the job does not have it any more";

    run({onNulls(above(20), "Too many nulls")});
    EXPECT_THAT(alerts(), ElementsAre(fmt::format("{} Too many nulls", a + 1)))
        << "the same comparison, then the order";
    run({});
    EXPECT_THAT(alerts(), IsEmpty());
    run({onNulls(above(0))});
    EXPECT_THAT(alerts(), ElementsAre(fmt::format("{} Null Count for field x is greater than 0", a + 6)))
        << "ids are not used again";
}

TEST_F(PrViewerAlerts, OfUsersOutliveRunsAndAreChangedAndRemoved) {
    run({onNulls(above(0))});
    const int a = first();
    int id = create(definition(above(0)));
    const int records = create({.table = m_orders, .rule = above(200), .description = "Many records \n"});
    const auto before = alerts();
    EXPECT_THAT(before, ElementsAre(fmt::format("{} Null Count for field x is greater than 0", a),
                                    fmt::format("{} Null Count for field x is greater than 0 by ada", id),
                                    fmt::format("{} Many records by ada", records)));
    const ProfileCursorHandle row = m_viewer->getAlerts();
    while (row->next() && row->getColumnInt(layout::AlertId) != id) {
    }
    EXPECT_EQ(row->getColumnDouble(layout::AlertCreated), toLibraryDate(m_clock.now()));

    run({onSum(above(0))});
    EXPECT_THAT(alerts(), ElementsAre(StartsWith(std::to_string(a + 3)), before[1], before[2]));
    EXPECT_THAT(read(m_viewer->getAlertProperties(records)),
                ElementsAre("COMPARE|0", "JOB|" + std::to_string(m_job), "LEVEL|warning", "METRIC|0", "RECORDS|1",
                            "REFERENCE|mean", "RUNS|1", "VALUE1|200", "VALUE2|0"));

    AlertDefinition changed = definition({.comparison = AlertComparison::ChangedByPercent,
                                          .value1 = 5,
                                          .runs = 3,
                                          .level = AlertLevel::Error,
                                          .reference = AlertReference::Median});
    ASSERT_TRUE(m_viewer->createEditAlert(id, changed, "bob")) << error();
    changed.description = "Only described";
    ASSERT_TRUE(m_viewer->setCurrentJobSetup(m_sample.salesJob) && m_viewer->createEditAlert(id, changed, "bob"))
        << "it stays with its report, whichever is open: " << error();
    ASSERT_TRUE(m_viewer->setCurrentJobSetup(m_job));
    EXPECT_THAT(alerts(), ElementsAre(::testing::_, fmt::format("{} Only described by ada", id), before[2]));
    EXPECT_THAT(changes(id), ElementsAre("bob: Null Count for field x is greater than 0 (warning) -> Null Count for "
                                         "field x has changed by more than 5% against the median of 3 runs (error)"));

    int ofJob = a + 3;
    const char* const kOfJob = "The job defines this alert; each run stores it again. Change it in the job file.";
    expectFailure(!m_viewer->createEditAlert(ofJob, changed, "bob"), kOfJob);
    expectFailure(!m_viewer->deleteAlert(ofJob), kOfJob);
    ASSERT_TRUE(m_viewer->muteAlert(id, "bob", "known", 0, {}) && m_viewer->createNewAlertNote(id, "bob", "Ask Eve."));
    ASSERT_TRUE(m_viewer->deleteAlert(id)) << error();
    EXPECT_THAT(alerts(), ElementsAre(StartsWith(std::to_string(ofJob)), before[2]));
    EXPECT_THAT(read(m_viewer->getAlertMutes()), IsEmpty());
    EXPECT_EQ(create(definition(above(1))), id + 3) << "the number of a removed alert is not used again";
    expectFailure(!m_viewer->deleteAlert(id), fmt::format("There is no alert with the number {}.", id));
    expectFailure(!m_viewer->getAlertNotes(id), fmt::format("There is no alert with the number {}.", id));
}

TEST_F(PrViewerAlerts, WhatMakesNoSenseIsRefused) {
    run({});
    const double infinity = std::numeric_limits<double>::infinity();
    const auto with = [&](auto change) {
        AlertDefinition made = definition(above(0));
        change(made);
        return made;
    };
    using D = AlertDefinition;
    const std::vector<std::pair<AlertDefinition, std::string>> cases{
        {definition(above(infinity)), "The limit of an alert must be a number."},
        {definition({.comparison = AlertComparison::Inside, .value1 = 2, .value2 = 1}),
         "The first number of a range must not be above the second."},
        {definition({.comparison = AlertComparison::ChangedBy, .value1 = -1}),
         "A change is measured up and down; its limit must not be below 0."},
        {definition({.runs = 0}), "A change is measured against 1 to 1000 earlier runs."},
        {with([](D& d) { d.table = 1; }), "The report has no table with the number 1."},
        {with([](D& d) { d.field = 1; }), "The table has no field with the number 1."},
        {with([](D& d) { d.metric = MetricId::ActualType; }), "An alert watches a metric that is a number."},
        {with([](D& d) { d.metric = static_cast<MetricId>(-77); }), "An alert watches a metric that is a number."},
        {with([](D& d) { d.subject = AlertSubject::CustomMetric; }),
         "The table has no custom metric with the number -1."},
        {with([](D& d) { d.subject = AlertSubject::BusinessRule, d.watched = 99; }),
         "The table has no rule with the number 99."},
        {with([](D& d) { d.description = std::string(30'000, 'x'); }),
         "The description is too long: 30000 characters, and 10000 is the most."}};
    for (const auto& [made, text] : cases) {
        int id = -1;
        expectFailure(!m_viewer->createEditAlert(id, made, "ada"), text);
        EXPECT_EQ(id, -1);
    }
    int missing = 12'345;
    expectFailure(!m_viewer->createEditAlert(missing, definition(above(0)), "ada"),
                  "There is no alert with the number 12345.");
    EXPECT_THAT(alerts(), IsEmpty());
}

TEST_F(PrViewerAlerts, FiguresAreThoseOfEachRunTheLatestFirst) {
    const std::vector<AlertFacts> all{
        onSum(above(0)),
        onPositive(above(0)),
        onRecords(above(0)),
        {"orders", AlertSubject::StandardMetric, "y", MetricId::MinimumLength, "", above(0), ""}};
    run(all);
    const AlertDefinition nulls = definition(above(0));
    create(nulls);
    const int second = run(all, {"new", "y"}); // without x
    run(all);
    const int a = first();
    const auto line = [a](int alert, const char* rest) { return fmt::format("{}: {}", a + alert, rest); };
    EXPECT_THAT(figures(m_viewer->getAlertFigures(m_job, -1, 2)),
                ElementsAre(line(0, "3 6 3.5 -"), line(0, "2 5 2.5 -"), line(1, "3 6 3 10"), line(1, "2 5 2 10"),
                            line(2, "3 6 103 -"), line(2, "2 5 102 -"), line(3, "3 6 - -"), line(3, "2 5 - -"),
                            line(4, "3 6 3 -"), line(4, "2 5 - -")));
    EXPECT_THAT(figures(m_viewer->getAlertFigures(m_job, second, 0, {a + 4, a + 2, -5, a + 4})),
                ElementsAre(line(2, "2 5 102 -"), line(2, "1 4 101 -"), line(4, "2 5 - -"), line(4, "1 4 1 -")));
    EXPECT_THAT(figures(m_viewer->getAlertFigures(m_job, 0, 0)), IsEmpty()) << "before all runs";
    expectFailure(!m_viewer->getAlertFigures(99, -1, 0), "There is no report with the number 99.");
    EXPECT_EQ(testing::storedRows(m_sample.path, fmt::format("SELECT alert_id - {}, figure, checked_rows FROM "
                                                             "v_alert_figures WHERE run = {} ORDER BY alert_id",
                                                             a, second)),
              "0|2.5|NULL\n1|2|10\n2|102|NULL\n3|NULL|NULL\n4|NULL|NULL\n")
        << "what other programs read";

    // The same for alerts that are not stored.
    EXPECT_THAT(figures(m_viewer->getWatchedFigures(nulls, -1, 2)), ElementsAre("-1: 3 6 3 -", "-1: 2 5 - -"));
    EXPECT_THAT(figures(m_viewer->getWatchedFigures({.table = m_orders, .rule = {}, .description = {}}, second, 0)),
                ElementsAre("-1: 2 5 102 -", "-1: 1 4 101 -"));
    const auto watched = [&](AlertSubject subject, ProfileCursorHandle cursor) {
        EXPECT_TRUE(cursor && cursor->next());
        return figures(m_viewer->getWatchedFigures(
            {.table = m_orders, .subject = subject, .watched = cursor->getColumnInt(0), .rule = {}, .description = {}},
            -1, 1));
    };
    EXPECT_THAT(watched(AlertSubject::CustomMetric, m_viewer->getCustomMetrics(m_orders)),
                ElementsAre("-1: 3 6 3.5 -"));
    EXPECT_THAT(watched(AlertSubject::BusinessRule, m_viewer->getBusinessRules(m_orders)), ElementsAre("-1: 3 6 3 10"));
}

TEST_F(PrViewerAlerts, AMuteBeginsWithTheRunShownAndEndsByRunsOrByDate) {
    std::vector<int> runs{run({onNulls(above(0))}), run({onNulls(above(0))})};
    const int a = first();
    const auto day = [](int number) { return testing::SampleRepository::runTime(0) + std::chrono::hours(24 * number); };
    EXPECT_EQ(mute(a, runs), "none");
    ASSERT_TRUE(m_viewer->setCurrentJob(runs[0]) && m_viewer->muteAlert(a, "ada", "known \n", 0, {})) << error();
    EXPECT_EQ(mute(a, runs), "known by ada: 1-...");
    ASSERT_TRUE(m_viewer->setCurrentJob(runs[1]) && m_viewer->muteAlert(a, "bob", "for two runs", 2, {}));
    EXPECT_EQ(mute(a, runs), "for two runs by bob: 2-...") << "replaces the other one";
    for (int i = 0; i < 3; ++i)
        runs.push_back(run({onNulls(above(1.0 * i))}));
    EXPECT_EQ(mute(a, runs), "for two runs by bob: 2-3") << "also when the job has another limit";

    ASSERT_TRUE(m_viewer->setCurrentJob(runs[2]) && m_viewer->muteAlert(a, "bob", "until a day", 0, day(3)));
    EXPECT_EQ(mute(a, runs), "until a day by bob: 3-3") << "the fourth run starts on that day";
    ASSERT_TRUE(m_viewer->muteAlert(a, "bob", "both", 2, day(9)));
    EXPECT_EQ(mute(a, runs), "both by bob: 3-4");
    ASSERT_TRUE(m_viewer->muteAlert(a, "bob", "too late", 9, day(0)));
    EXPECT_EQ(mute(a, runs), "too late by bob: 3-2") << "no run";

    // Of another report, the latest run is meant.
    ASSERT_TRUE(m_viewer->setCurrentJobSetup(m_sample.salesJob) && m_viewer->muteAlert(a, "eve", "later", 1, {}));
    EXPECT_EQ(mute(a, runs), "later by eve: 5-5");
    ASSERT_TRUE(m_viewer->unmuteAlert(a));
    EXPECT_EQ(mute(a, runs), "none");
    expectFailure(!m_viewer->unmuteAlert(a), "The alert is not muted.");
    expectFailure(!m_viewer->muteAlert(a, "eve", "", 1, {}), "A note needs a text.");
    expectFailure(!m_viewer->muteAlert(a, "eve", "x", -1, {}),
                  "An alert is muted for 1 to 100000 runs, or without such an end.");
    expectFailure(!m_viewer->muteAlert(9999, "eve", "x", 1, {}), "There is no alert with the number 9999.");
}

TEST_F(PrViewerAlerts, AMuteIsNotStretchedToOtherRunsWhenRunsAreDeleted) {
    std::vector<int> runs;
    while (runs.size() < 4)
        runs.push_back(run({onNulls(above(0)), onSum(above(0))}));
    const int a = first();
    ASSERT_TRUE(m_viewer->setCurrentJob(runs[1]) && m_viewer->muteAlert(a, "ada", "past", 2, {}) &&
                m_viewer->muteAlert(a + 1, "ada", "still", 4, {}));
    EXPECT_EQ(mute(a, runs), "past by ada: 2-3");
    EXPECT_EQ(mute(a + 1, runs), "still by ada: 2-...");
    ASSERT_TRUE(m_viewer->deleteJobs(runs[1], runs[2], -1)) << error();
    EXPECT_EQ(mute(a, runs), "past by ada: 2-3");
    runs.push_back(run({onNulls(above(0)), onSum(above(0))}));
    EXPECT_EQ(mute(a, runs), "past by ada: 2-3");
    EXPECT_EQ(mute(a + 1, runs), "still by ada: 2-5") << "two deleted runs and two that are left";
}

TEST_F(PrViewerAlerts, HaveNotesTheLatestFirst) {
    run({onNulls(above(0))});
    const int a = first();
    ASSERT_TRUE(m_viewer->createNewAlertNote(a, "ada", "One\r\ntwo  ") &&
                m_viewer->createNewAlertNote(a, "bob", "Three"));
    const auto texts = [&] {
        std::vector<std::string> lines;
        const ProfileCursorHandle notes = m_viewer->getAlertNotes(a);
        while (notes && notes->next())
            lines.push_back(notes->getColumnValue(layout::AlertNoteUser).str() + ": " +
                            notes->getColumnValue(layout::AlertNoteText).str());
        return lines;
    };
    EXPECT_THAT(texts(), ElementsAre("bob: Three", "ada: One\ntwo"));
    const std::vector<int> numbers = ids(m_viewer->getAlertNotes(a));
    ASSERT_TRUE(m_viewer->deleteAlertNote(numbers.front()));
    EXPECT_THAT(texts(), ElementsAre("ada: One\ntwo"));
    expectFailure(!m_viewer->deleteAlertNote(numbers.front()),
                  fmt::format("There is no note with the number {}.", numbers.front()));
    expectFailure(!m_viewer->createNewAlertNote(a, "ada", " \n"), "A note needs a text.");
    run({});
    expectFailure(!m_viewer->getAlertNotes(a), fmt::format("There is no alert with the number {}.", a));
}

} // namespace
} // namespace tavix
