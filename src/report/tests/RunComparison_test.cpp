#include "report/RunComparison.h"
#include "support/RunScript.h"
#include "support/SampleFits.h"
#include "support/SampleRules.h"
#include "support/SampleViewer.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

namespace tavix {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;

class RunComparisonOfSample : public testing::SampleViewer {
  protected:
    /// The changes between two runs of "Sales", as "subject kind table.field item: before -> after".
    std::vector<std::string> changes(std::size_t before, std::size_t after, const RunComparisonOptions& options) {
        const PrViewer::Handle other = PrViewer::create();
        EXPECT_TRUE(other->init(m_sample.path));
        EXPECT_TRUE(other->setCurrentJobSetup(m_sample.salesJob));
        EXPECT_TRUE(other->setCurrentJob(m_sample.salesRuns[before]));
        EXPECT_TRUE(m_viewer->setCurrentJob(m_sample.salesRuns[after]));
        std::vector<std::string> lines;
        compareRuns(*other, *m_viewer, options, [&](const RunChange& change) { lines.push_back(line(change)); });
        other->close();
        return lines;
    }

  private:
    static std::string line(const RunChange& change) {
        static constexpr const char* kSubjects[] = {"table", "field",     "records", "metric", "custom",   "expression",
                                                    "rule",  "condition", "values",  "value",  "patterns", "pattern"};
        static constexpr const char* kKinds[] = {"new", "vanished", "changed"};
        const auto share = [](const std::optional<double>& percent) {
            return percent ? fmt::format(" ({:.2f}%)", *percent) : std::string();
        };
        return fmt::format("{} {} {}{}{} {}{}{}: {}{} -> {}{}", kSubjects[static_cast<int>(change.subject)],
                           kKinds[static_cast<int>(change.kind)], change.table, change.field.empty() ? "" : ".",
                           change.field, change.item.isNull() ? "-" : change.item.str(),
                           basisMark(change.basis).empty() ? "" : " ", basisMark(change.basis),
                           change.before.toText().str(), share(change.percentBefore), change.after.toText().str(),
                           share(change.percentAfter));
    }
};

TEST_F(RunComparisonOfSample, ATableOfOneRunOnlyIsNewOrHasVanished) {
    EXPECT_THAT(changes(0, 1, {.top = 0, .table = "late orders"}), ElementsAre("table new late orders -:  -> "));
    EXPECT_THAT(changes(1, 0, {.top = 0, .table = "late orders"}), ElementsAre("table vanished late orders -:  -> "));
    EXPECT_THAT(changes(1, 2, {.top = 0, .table = "late orders"}), ElementsAre());
    EXPECT_THAT(changes(0, 1, {.top = 0}), Contains("table new late orders -:  -> "));
}

TEST_F(RunComparisonOfSample, MetricsValuesAndPatternsOfAFieldAreCompared) {
    EXPECT_THAT(changes(0, 2, {.top = 1, .table = "customers"}),
                ElementsAre("metric changed customers.name Null Count: 230 -> 228",
                            "metric changed customers.name Non-null Count: 770 -> 772",
                            "metric changed customers.name Percent Null: 23 -> 22.8",
                            "values changed customers.name -: 2 (53.00%) -> 2 (53.00%)",
                            "value changed customers.name -: 230 (23.00%) -> 228 (22.80%)",
                            "patterns changed customers.name -: 1 (38.96%) -> 1 (39.12%)",
                            "pattern changed customers.name Aaaaa: 300 (38.96%) -> 302 (39.12%)",
                            "values changed customers.balance -: 2 (69.90%) -> 2 (69.90%)",
                            "value changed customers.balance 0.1: 199 (19.90%) -> 197 (19.70%)",
                            "patterns changed customers.balance -: 2 (69.90%) -> 2 (69.90%)",
                            "pattern changed customers.balance 9.9: 199 (19.90%) -> 197 (19.70%)"));
}

TEST_F(RunComparisonOfSample, AFigureOverWhatFitsIsToldApart) {
    testing::makeFits(m_sample, 999, "real", 1);
    testing::runScript(m_sample.path,
                       fmt::format("UPDATE run_field SET mean = 10 + run, mode = 'm' || run WHERE field = {}",
                                   m_sample.fields.at("customers/balance")));
    const RunComparisonOptions options{.top = 0, .fields = {{{"customers", "balance"}}}};
    EXPECT_THAT(changes(0, 1, options),
                ElementsAre("metric changed customers.balance Mean (fits in the later run only): 11 -> 12",
                            "metric changed customers.balance Mode: m1 -> m2",
                            "metric changed customers.balance Actual Type: real -> text"));
    EXPECT_THAT(changes(1, 0, options),
                Contains("metric changed customers.balance Mean (fits in the earlier run only): 12 -> 11"));
    EXPECT_THAT(changes(1, 2, options), ElementsAre("metric changed customers.balance Mean (fits): 12 -> 13",
                                                    "metric changed customers.balance Mode: m2 -> m3"));
}

TEST_F(RunComparisonOfSample, RecordsFieldsCustomMetricsAndRulesAreCompared) {
    testing::addRules(m_sample);
    testing::runScript(m_sample.path,
                       fmt::format("UPDATE run_table SET total_records = 2000, damaged_records = 3 WHERE run = {0} AND "
                                   "table_id = {1};"
                                   "UPDATE run_rule SET condition = 'TRUE' WHERE run = {0} AND rule = 21;"
                                   "DELETE FROM run_custom_metric WHERE run = {0} AND metric = 11;"
                                   "DELETE FROM run_field WHERE run = {0} AND field = {2};",
                                   m_sample.salesRuns[2], m_sample.tables.at("customers"),
                                   m_sample.fields.at("customers/name")));
    EXPECT_THAT(changes(0, 2, {.top = 0, .table = "customers"}),
                ElementsAre("records changed customers Total records: 1000 -> 2000",
                            "records changed customers Damaged records: 0 -> 3",
                            "custom changed customers Margin: 20 -> 22", "custom vanished customers Spread: 10 -> ",
                            "condition changed customers Name is known: `balance` > 0 -> TRUE",
                            "rule changed customers Name is known: 10 (1.00%) -> 12 (1.20%)",
                            "rule changed customers Balance is positive: 20 (2.00%) -> 22 (2.20%)",
                            "field vanished customers.name -:  -> "));
}

TEST(RunComparison, ADifferenceIsExactBetweenWholeNumbersAndAbsentBetweenTexts) {
    const auto difference = [](KvbDatavar before, KvbDatavar after) {
        RunChange change;
        change.before = std::move(before);
        change.after = std::move(after);
        return differenceOf(change).toText().str();
    };
    EXPECT_EQ("-1", difference(std::int64_t{9007199254740993}, std::int64_t{9007199254740992}));
    EXPECT_EQ("-0.5", difference(std::int64_t{1}, 0.5));
    EXPECT_EQ("", difference("a", std::int64_t{1}));
    EXPECT_EQ("", difference({}, std::int64_t{1}));
}

} // namespace
} // namespace tavix
