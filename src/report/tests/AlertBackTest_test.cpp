#include "report/AlertBackTest.h"
#include "report/tests/SlowJudge.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <random>

namespace tavix {
namespace {

using C = AlertComparison;
using State = AlertVerdict::State;
using ::testing::ElementsAre;

constexpr double kNone = -1e300; // a run without the figure

/// One run a day from a Monday on, the oldest first.
std::vector<BackTestRun> history(const std::vector<double>& figures) {
    std::vector<BackTestRun> runs;
    for (std::size_t i = 0; i < figures.size(); ++i)
        runs.push_back({static_cast<int>(i) + 1,
                        static_cast<LibraryDate>(i),
                        static_cast<int>(i % 7) + 1,
                        figures[i] == kNone ? std::nullopt : std::optional(figures[i]),
                        {}});
    return runs;
}

/// "! raised, . quiet, ? unknown", a letter for each run.
std::string judged(const AlertRule& rule, const std::vector<BackTestRun>& runs) {
    const AlertBackTest test = backTest(rule, runs);
    std::string letters;
    int raised = 0;
    int known = 0;
    for (const BackTestRun& run : test.runs) {
        letters += run.verdict.state == State::Raised ? '!' : run.verdict.state == State::Quiet ? '.' : '?';
        raised += run.verdict.state == State::Raised ? 1 : 0;
        known += run.verdict.state == State::Unknown ? 0 : 1;
    }
    EXPECT_EQ(raised, test.raised);
    EXPECT_EQ(known, test.judged);
    return letters;
}

TEST(AlertBackTest, EachRunIsJudgedByThoseBeforeIt) {
    const auto runs = history({10, 12, kNone, 20, 21, 10, 10});
    EXPECT_EQ("..?!!..", judged({C::Greater, false, 15}, runs));
    EXPECT_EQ("?.?!.!.", judged({C::ChangedBy, false, 5}, runs));
    EXPECT_EQ("?.?!!!!", judged({C::ChangedBy, false, 4, 0, 3}, runs));
    EXPECT_EQ("", judged({C::Greater, false, 15}, {}));
    const AlertBackTest test = backTest({C::ChangedBy, false, 4, 0, 3}, runs);
    EXPECT_EQ(14, test.runs[4].verdict.reference) << "the mean of 10, 12 and 20";
}

TEST(AlertBackTest, RandomHistoriesAreJudgedAsASlowJudgeDoesAndLaterRunsChangeNothing) {
    std::mt19937 random(19);
    const auto below = [&](int end) { return static_cast<int>(random() % static_cast<unsigned>(end)); };
    int raised = 0;
    for (int round = 0; round < 400; ++round) {
        std::vector<double> figures;
        for (int i = below(40); i >= 0; --i)
            figures.push_back(below(4) == 0 ? kNone : below(30) - 5);
        std::vector<BackTestRun> runs = history(figures);
        for (BackTestRun& run : runs)
            run.weekday = below(7) + 1;
        // Odd limits keep clear of what rounding decides.
        const double limit = below(20) + 0.37;
        AlertRule rule{static_cast<C>(below(7)), false, limit, limit + below(9), 1 + below(9)};
        if (rule.comparison == C::Equal)
            rule.value1 = below(9);
        rule.reference = static_cast<AlertReference>(below(3));
        const AlertBackTest test = backTest(rule, runs);
        for (std::size_t i = 0; i < runs.size(); ++i) {
            ASSERT_EQ(testing::judgeSlowly(rule, runs, i), test.runs[i].verdict.state) << round << ", run " << i;
            const std::vector<BackTestRun> upTo(runs.begin(), runs.begin() + static_cast<std::ptrdiff_t>(i) + 1);
            ASSERT_EQ(test.runs[i].verdict, backTest(rule, upTo).runs.back().verdict) << round << ", run " << i;
        }
        raised += test.raised;
    }
    EXPECT_GT(raised, 1000);
}

std::vector<std::string> proposals(const AlertRule& rule, const std::vector<double>& figures) {
    std::vector<std::string> lines;
    for (const LimitProposal& one : proposeLimits(rule, history(figures))) {
        AlertRule proposed = rule;
        proposed.comparison = one.comparison;
        proposed.value1 = one.value1;
        proposed.value2 = one.value2;
        lines.push_back(fmt::format("{}: {}, raised {}", alertSentence({}, proposed, "Mean", "x").substr(17),
                                    one.reason, one.raised));
    }
    return lines;
}

TEST(AlertBackTest, LimitsAreProposedFromTheFiguresOfTheHistory) {
    const AlertRule greater{C::Greater, false, 0};
    EXPECT_THAT(proposals(greater, {1, 2, 3, 4}), ElementsAre());
    EXPECT_THAT(proposals(greater, {1, 2, kNone, 3, 4}), ElementsAre()) << "four figures of five runs";
    EXPECT_THAT(proposals(greater, {12, 14, 13, 31, 12}),
                ElementsAre("is greater than 31: above all 5 runs, raised 0",
                            "is less than 12: below all 5 runs, raised 0",
                            "is outside the range 12 to 31: outside the range of 5 runs, raised 0"));
    EXPECT_THAT(proposals({C::Outside}, {0.52, 0.71, 0.688, 0.63, 0.6349}),
                ElementsAre("is outside the range 0.52 to 0.71: outside the range of 5 runs, raised 0",
                            "is greater than 0.71: above all 5 runs, raised 0",
                            "is less than 0.52: below all 5 runs, raised 0"));
    EXPECT_THAT(proposals({C::Less}, {100512.4, 100533.1, 100547.9, 100521, 100530}),
                ElementsAre("is less than 100512: below all 5 runs, raised 0",
                            "is greater than 100548: above all 5 runs, raised 0",
                            "is outside the range 100512 to 100548: outside the range of 5 runs, raised 0"));
    // A figure that never changed is its own limit, and nothing is counted below zero.
    EXPECT_THAT(proposals(greater, {0, 0, 0, 0, 0}), ElementsAre("is greater than 0: above all 5 runs, raised 0"));
    EXPECT_THAT(proposals(greater, {0.1 + 0.2, 0.3, 0.3, 0.3, 0.3}).front(),
                ::testing::HasSubstr("all 5 runs, raised 0"));
}

TEST(AlertBackTest, LongerHistoriesAlsoProposeLimitsThatFewRunsPassed) {
    std::vector<double> figures;
    for (int i = 1; i <= 24; ++i)
        figures.push_back(1000 + i * 7 % 24 * 10);
    EXPECT_THAT(
        proposals({C::Greater}, figures),
        ElementsAre("is greater than 1230: above all 24 runs, raised 0",
                    "is greater than 1220: above the 95th percentile of 24 runs, raised 1",
                    "is less than 1000: below all 24 runs, raised 0",
                    "is outside the range 1000 to 1230: outside the range of 24 runs, raised 0",
                    "is less than 1010: below the 5th percentile of 24 runs, raised 1",
                    "is outside the range 1010 to 1220: outside the 5th to 95th percentile of 24 runs, raised 2"));
    for (int i = 0; i < 100; ++i)
        figures.push_back(1100);
    figures.push_back(5000);
    EXPECT_THAT(proposals({C::Greater}, figures),
                ::testing::Contains("is greater than 1300: above the 99th percentile of 125 runs, raised 1"));
}

TEST(AlertBackTest, ChangesAreProposedFromTheChangesOfTheHistory) {
    EXPECT_THAT(proposals({C::ChangedByPercent}, {100, 110, 105, 100, 90, 120}),
                ElementsAre("has changed by more than 34%: more than all 5 changes, raised 0",
                            "has changed by more than 30: more than all 5 changes, raised 0"));
    EXPECT_THAT(proposals({C::ChangedBy}, {100, 110, 105, 100, 90}), ElementsAre()) << "four changes";
    // No percentage of nothing: the changes from 0 are left out.
    EXPECT_THAT(proposals({C::ChangedByPercent}, {0, 1, 0, 1, 0, 1, 0}),
                ElementsAre("has changed by more than 1: more than all 6 changes, raised 0"));
}

} // namespace
} // namespace tavix
