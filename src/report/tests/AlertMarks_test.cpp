#include "base/Metrics.h"
#include "report/AlertMarks.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <functional>

namespace tavix {
namespace {

using ::testing::ElementsAre;
using Verdict = AlertVerdict::State;

/// An alert on the nulls of a field of the plain table north.crm.customers of Warehouse.
AlertState alertOn(const std::string& field, Verdict verdict, AlertLevel level = AlertLevel::Warning) {
    AlertState alert;
    alert.dataSource = "Warehouse";
    alert.catalog = "north";
    alert.schema = "crm";
    alert.tableName = "customers";
    alert.tableId = 7;
    alert.typeCode = "SM";
    alert.input = field;
    alert.watchedId = static_cast<int>(MetricId::NullCount);
    alert.rule = AlertRule{.level = level};
    alert.sentence = "Null Count for field " + field + " is greater than 0";
    alert.description = alert.sentence;
    alert.verdict.state = verdict;
    return alert;
}

AlertState watching(AlertSubject subject, const std::string& key, bool ofPercent = false) {
    AlertState alert = alertOn("", Verdict::Raised);
    alert.subject = subject;
    alert.typeCode = alertTypeCode(subject);
    alert.key = key;
    alert.rule->ofFailedPercent = ofPercent;
    return alert;
}

TableIdentity customers() {
    TableIdentity table;
    table.id = 7;
    table.dataSource = "Warehouse";
    table.catalog = "north";
    table.schema = "crm";
    table.name = "customers";
    return table;
}

/// "mark list" of a changed alert and a changed table, as far as the rules hold.
std::string rules(const std::function<void(AlertState&, TableIdentity&)>& change) {
    AlertState alert = alertOn("name", Verdict::Raised);
    TableIdentity table = customers();
    change(alert, table);
    return fmt::format("{}{}", marksTable(alert, table) ? "mark " : "", isListedFor(alert, table) ? "list" : "");
}

TEST(AlertMarks, ATableOfTheSameNameInAnotherCatalogHasNeitherMarkNorRow) {
    EXPECT_EQ("mark list", rules([](AlertState&, TableIdentity&) {}));
    EXPECT_EQ("", rules([](AlertState&, TableIdentity& table) { table.catalog = "south"; }));
    EXPECT_EQ("", rules([](AlertState&, TableIdentity& table) { table.catalog.clear(); }));
    EXPECT_EQ("", rules([](AlertState& alert, TableIdentity&) { alert.catalog.clear(); }));
    EXPECT_EQ("", rules([](AlertState&, TableIdentity& table) { table.schema = "CRM"; }));
    EXPECT_EQ("", rules([](AlertState&, TableIdentity& table) { table.dataSource = "warehouse"; }));
    EXPECT_EQ("", rules([](AlertState&, TableIdentity& table) { table.name = "customer"; }));
    EXPECT_EQ("mark list", rules([](AlertState& alert, TableIdentity& table) {
                  alert.catalog.clear();
                  table.catalog.clear();
              }));
}

TEST(AlertMarks, OnlyTheMarkDependsOnTheTypeAndTheKindOfTable) {
    for (const char* code : {"CM", "BR", "sm", ""})
        EXPECT_EQ("list", rules([code](AlertState& alert, TableIdentity&) { alert.typeCode = code; })) << code;
    EXPECT_EQ("list", rules([](AlertState&, TableIdentity& table) { table.kind = TableKind::Query; }));
    // A filtered table is listed by its own name, but marked only for alerts on the same base table.
    const auto filtered = [](AlertState& alert, TableIdentity& table) {
        alert.kind = table.kind = TableKind::Filter;
        alert.objectName = table.objectName = "german customers";
    };
    EXPECT_EQ("mark list", rules(filtered));
    EXPECT_EQ("list", rules([&](AlertState& alert, TableIdentity& table) {
                  filtered(alert, table);
                  table.name = "old customers";
              }));
    EXPECT_EQ("", rules([&](AlertState& alert, TableIdentity& table) {
                  filtered(alert, table);
                  table.objectName.clear();
              }));
}

TEST(AlertMarks, AFigureHasTheMarkOfItsGravestAlert) {
    AlertState muted = alertOn("city", Verdict::Raised, AlertLevel::Error);
    muted.mute.emplace();
    AlertState elsewhere = alertOn("city", Verdict::Raised, AlertLevel::Error);
    elsewhere.catalog = "south";
    const std::vector<AlertState> alerts = {alertOn("name", Verdict::Quiet),
                                            alertOn("name", Verdict::Raised),
                                            alertOn("name", Verdict::Unknown),
                                            alertOn("id", Verdict::Raised),
                                            alertOn("id", Verdict::Raised, AlertLevel::Error),
                                            muted,
                                            alertOn("city", Verdict::Quiet),
                                            elsewhere,
                                            alertOn("since", Verdict::Quiet),
                                            alertOn("since", Verdict::Unknown)};
    const AlertMarks marks(alerts, customers());
    const auto markOn = [&](const std::string& field, MetricId metric) {
        return markOf(marks.OfMetric(field, static_cast<int>(metric)));
    };
    EXPECT_EQ(AlertMark::Warning, markOn("name", MetricId::NullCount));
    EXPECT_EQ(AlertMark::Error, markOn("id", MetricId::NullCount));
    EXPECT_EQ(AlertMark::Muted, markOn("city", MetricId::NullCount));
    EXPECT_EQ(AlertMark::CannotBeJudged, markOn("since", MetricId::NullCount));
    EXPECT_EQ(AlertMark::None, markOn("name", MetricId::Count));
    EXPECT_EQ(AlertMark::None, markOn("NAME", MetricId::NullCount));
    EXPECT_EQ(AlertMark::Error, markOf(AlertCounts{.errors = 1, .warnings = 2}));
    EXPECT_EQ(AlertMark::Warning, markOf(AlertCounts{.warnings = 2, .muted = 1}));
    EXPECT_EQ(AlertMark::None, markOf(AlertCounts{.muted = 1, .unjudged = 1, .quiet = 1}));
}

TEST(AlertMarks, MetricsAndRulesAreFoundByKeyAndARuleByWhatIsCounted) {
    AlertState oddCode = watching(AlertSubject::CustomMetric, "M1");
    oddCode.typeCode = "cm";
    const std::vector<AlertState> alerts = {
        watching(AlertSubject::CustomMetric, "M1"), oddCode, watching(AlertSubject::BusinessRule, "B1"),
        watching(AlertSubject::BusinessRule, "B1", true), watching(AlertSubject::BusinessRule, "B2", true)};
    const AlertMarks marks(alerts, customers());
    EXPECT_EQ(1U, marks.OfKey("M1").size());
    EXPECT_EQ(2U, marks.OfKey("B1").size());
    EXPECT_EQ(1U, marks.OfRule("B1", true).size());
    EXPECT_TRUE(marks.OfRule("B2", false).empty());
    EXPECT_TRUE(marks.OfKey("B3").empty());
}

TEST(AlertMarks, TheTooltipSaysWhichAlertAndWhy) {
    const std::locale& classic = std::locale::classic();
    EXPECT_EQ("", alertLines({}, classic));
    AlertState error = alertOn("name", Verdict::Raised, AlertLevel::Error);
    error.raisedRuns = 1;
    error.description = "Names went missing";
    AlertState change = alertOn("name", Verdict::Quiet);
    change.rule->comparison = AlertComparison::ChangedBy;
    change.sentence = change.description = "Null Count for field name has changed by more than 5";
    change.verdict.reference = 12;
    AlertState muted = alertOn("name", Verdict::Raised);
    muted.raisedRuns = 1;
    muted.mute = AlertMute{.reason = "known gap", .author = "anna", .date = 0, .runs = 3, .until = {}};
    std::vector<AlertState> alerts = {error, change};
    EXPECT_EQ("Alert raised, error: Null Count for field name is greater than 0 (Names went missing) · this run\n"
              "Alert, quiet: Null Count for field name has changed by more than 5 · run before: 12",
              alertLines(alerts, classic));
    EXPECT_THAT(alertLines({&muted, 1}, classic),
                ::testing::MatchesRegex("Alert, muted: Null Count for field name is greater than 0 · this run · "
                                        "Muted by anna on .* for 3 runs: known gap"));
    alerts.insert(alerts.end(), 5, change);
    EXPECT_THAT(alertLines(alerts, classic), ::testing::EndsWith("\nand 1 more alert"));
    alerts.insert(alerts.end(), 2, change);
    EXPECT_THAT(alertLines(alerts, classic), ::testing::EndsWith("\nand 3 more alerts"));
}

} // namespace
} // namespace tavix
