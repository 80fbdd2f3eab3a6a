#include "report/ChangeRanking.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

namespace tavix {
namespace {

using ::testing::ElementsAre;
using Subject = RunChange::Subject;
using Kind = RunChange::Kind;

RunChange metric(const char* field, const char* name, KvbDatavar before, KvbDatavar after, double weight,
                 bool follows = false) {
    return {Subject::Metric, Kind::Changed, "t", field, name, std::move(before), std::move(after), {}, {},
            weight,          follows};
}
RunChange records(const char* name, std::int64_t before, std::int64_t after) {
    return {Subject::Records, Kind::Changed, "t", "", name, before, after, {}, {}, 2, false};
}
RunChange values(const char* field, Kind kind, std::int64_t count, double percent, double weight) {
    return {Subject::Values, kind, "t", field, {}, count, count, percent, percent, weight, false};
}
RunChange value(const char* field, const KvbString& text, double before, double after) {
    return {Subject::Value, Kind::Changed, "t", field, text, 1, 2, before, after, std::abs(after - before), false};
}

/// The lines as "weight table.field what: before, after, change (changes)".
std::vector<std::string> ranked(const std::vector<RunChange>& changes) {
    ChangeRanking ranking;
    for (const RunChange& change : changes)
        ranking.add(change);
    std::vector<std::string> lines;
    std::int64_t sum = 0;
    for (const RankedChange& line : ranking.ranked()) {
        lines.push_back(fmt::format("{:.2f} {}{}{} {}: {}, {}, {} ({})", line.weight, line.table,
                                    line.field.empty() ? "" : ".", line.field, line.what, line.before, line.after,
                                    line.change, line.changes));
        sum += line.changes;
    }
    EXPECT_EQ(sum, ranking.size()) << "each change is part of one line";
    return lines;
}

TEST(ChangeRanking, AFigureOverWhatFitsIsMarked) {
    RunChange mean = metric("a", "Mean", 3, 4, 2);
    RunChange median = metric("a", "Median", 3, 4, 1);
    mean.basis = FigureBasis::FitsAfter;
    median.basis = FigureBasis::Fits;
    EXPECT_THAT(ranked({mean, median}),
                ElementsAre("2.00 t.a Mean (fits in the later run only): 3, 4, +1; also Median (fits) (2)"));
}

TEST(ChangeRanking, FiguresThatFollowFromTheRecordsAreToldWithThem) {
    EXPECT_THAT(ranked({records(kTotalRecords, 10'000, 10'200), records(kProcessedRecords, 10'000, 10'200),
                        metric("a", "Count", 10'000, 10'200, 2, true), metric("a", "Non-null Count", 9, 10, 0, true),
                        metric("b", "Count", 10'000, 10'200, 2, true), metric("b", "Mean", 1.5, 1.25, 3)}),
                ElementsAre("3.00 t.b Mean: 1.5, 1.25, -0.25 (1)",
                            "2.00 t Records: 10,000, 10,200, +200 (+2.00 %); counts of 2 fields follow (5)"));
    EXPECT_THAT(ranked({records(kTotalRecords, 20, 10), records(kProcessedRecords, 5, 10)}),
                ElementsAre("2.00 t Records: 20, 10, -10 (-50.00 %) (1)",
                            "2.00 t Processed records: 5, 10, +5 (+100.00 %) (1)"));
    EXPECT_THAT(ranked({metric("a", "Count", 1, 2, 2, true)}),
                ElementsAre("0.00 t Records: , , counts of 1 field follow (1)"));
}

TEST(ChangeRanking, TheValuesOfAFieldAreOneLineWithSumsAndTheLargestExamples) {
    EXPECT_THAT(ranked({values("a", Kind::New, 3, 8.4, 8.5), value("a", "x\n\"y\"", 0, 8.4), value("a", "z", 0, 0.1),
                        values("a", Kind::Vanished, 1, 0.1, 8.5), value("a", KvbString(), 0.1, 0),
                        values("a", Kind::Changed, 1200, 40, 8.5), value("a", "w", 40, 32)}),
                ElementsAre("8.50 t.a Values: , , 3 new (8.40 %), 1 vanished (0.10 %), 1,200 moved: \"x \"y\"\" 0.00 → "
                            "8.40 %, \"w\" 40.00 → 32.00 %, \"z\" 0.00 → 0.10 % (7)"));
}

TEST(ChangeRanking, NullsStandForTheValuesThatTheyReplace) {
    const std::vector<RunChange> nulls = {metric("a", "Null Count", 20, 104, 8.4),
                                          metric("a", "Non-null Count", 980, 896, 8.4),
                                          metric("a", "Percent Null", 2, 10.4, 8.4)};
    auto all = nulls;
    all.push_back(values("a", Kind::Changed, 5, 60, 8.41));
    EXPECT_THAT(ranked(all), ElementsAre("8.40 t.a Nulls: 2.00 %, 10.40 %, +8.40 points, +84 rows (4)"));
    RunChange patterns = values("a", Kind::Changed, 2, 60, 0);
    patterns.subject = Subject::Patterns;
    all.push_back(patterns);
    EXPECT_THAT(ranked(all), ElementsAre("8.40 t.a Nulls: 2.00 %, 10.40 %, +8.40 points, +84 rows (5)"))
        << "fewer rows have a pattern";
    all = nulls;
    all.push_back(values("b", Kind::Changed, 5, 60, 8.4));
    EXPECT_THAT(ranked(all), ElementsAre("8.40 t.a Nulls: 2.00 %, 10.40 %, +8.40 points, +84 rows (3)",
                                         "8.40 t.b Values: , , 5 moved (1)"));
    all = nulls;
    all.push_back(values("a", Kind::Changed, 5, 60, 20));
    EXPECT_THAT(ranked(all), ElementsAre("20.00 t.a Values: , , 5 moved (1)",
                                         "8.40 t.a Nulls: 2.00 %, 10.40 %, +8.40 points, +84 rows (3)"));
}

TEST(ChangeRanking, MetricsOfAFieldShareALineUnderTheOneThatMattersMost) {
    EXPECT_THAT(ranked({metric("a", "Mode", "x", "y", 0.1), metric("a", "Actual Type", "integer", "text", 100),
                        metric("a", "Mean", 1000.0, 2500.5, 7), metric("a", "Maximum Value", 5, 6, 0.1),
                        metric("a", "Ordinal", 1, 2, 0)}),
                ElementsAre("100.00 t.a Actual Type: integer, text, also Ordinal (2)",
                            "7.00 t.a Mean: 1000, 2500.5, +1500.5; also Mode, Maximum Value (3)"));
}

TEST(ChangeRanking, TablesFieldsRulesAndMetricsOfTheTableHaveLinesOfTheirOwn) {
    const auto change = [](Subject subject, Kind kind, const char* item, KvbDatavar before, KvbDatavar after,
                           double weight) {
        return RunChange{subject,
                         kind,
                         "t",
                         subject == Subject::Field ? "f" : "",
                         item ? KvbString(item) : KvbString(),
                         std::move(before),
                         std::move(after),
                         1,
                         3,
                         weight,
                         false};
    };
    EXPECT_THAT(
        ranked({change(Subject::Rule, Kind::Changed, "r", 10, 30, 2), change(Subject::Rule, Kind::New, "s", {}, 3, 100),
                change(Subject::Condition, Kind::Changed, "r", "a", "b", 100),
                change(Subject::CustomMetric, Kind::Changed, "m", 10.0, 12.5, 20),
                change(Subject::Field, Kind::Vanished, nullptr, {}, {}, 100)}),
        ElementsAre("100.00 t.f Vanished field: , ,  (1)", "100.00 t New rule \"s\": , 3,  (1)",
                    "100.00 t Condition \"r\": a, b,  (1)", "20.00 t Custom metric \"m\": 10, 12.5, +2.5 (1)",
                    "2.00 t Rule \"r\": 10, 30, 1.00 → 3.00 % of the rows (1)"));
}

} // namespace
} // namespace tavix
