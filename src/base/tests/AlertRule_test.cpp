#include "base/AlertRule.h"

#include <gtest/gtest.h>

#include <vector>

namespace tavix {
namespace {

using State = AlertVerdict::State;
using C = AlertComparison;

TEST(AlertRule, ThresholdsAreStrictAndChangesNeedAnEarlierRun) {
    struct Case {
        AlertRule rule;
        std::optional<double> figure;
        std::vector<double> earlier; ///< the latest first
        State state;
        std::optional<double> reference = {};
    };
    const std::vector<Case> cases{
        {{C::Greater, false, 5}, 5, {}, State::Quiet},
        {{C::Greater, false, 5}, 5.5, {}, State::Raised},
        {{C::Greater, false, 5}, std::nullopt, {9}, State::Unknown},
        {{C::Less, false, -1}, -1, {}, State::Quiet},
        {{C::Less, false, -1}, -1.5, {}, State::Raised},
        {{C::Equal, false, 0}, 0, {}, State::Raised},
        {{C::Equal, false, 0}, 0.1, {}, State::Quiet},
        {{C::Outside, false, 1, 3}, 1, {}, State::Quiet},
        {{C::Outside, false, 1, 3}, 3, {}, State::Quiet},
        {{C::Outside, false, 1, 3}, 3.01, {}, State::Raised},
        {{C::Outside, false, 1, 3}, 0, {}, State::Raised},
        {{C::Inside, false, 1, 3}, 3, {}, State::Raised},
        {{C::Inside, false, 1, 3}, 4, {}, State::Quiet},
        {{C::ChangedBy, false, 10}, 100, {}, State::Unknown},
        {{C::ChangedBy, false, 10}, 100, {90, 1}, State::Quiet, 90},
        {{C::ChangedBy, false, 10}, 79, {90}, State::Raised, 90},
        {{C::ChangedBy, false, 10}, std::nullopt, {90}, State::Unknown, 90},
        {{C::ChangedByPercent, false, 10}, 110, {100}, State::Quiet, 100},
        {{C::ChangedByPercent, false, 10}, 111, {100}, State::Raised, 100},
        {{C::ChangedByPercent, false, 10}, -111, {-100}, State::Raised, -100},
        // Anything is more than a share of nothing.
        {{C::ChangedByPercent, false, 10}, 1, {0}, State::Raised, 0},
        {{C::ChangedByPercent, false, 10}, 0, {0}, State::Quiet, 0},
        // The mean of the last three, of as many as there are.
        {{C::ChangedBy, false, 2, 0, 3}, 10, {9, 8, 7, 1000}, State::Quiet, 8},
        {{C::ChangedBy, false, 2, 0, 3}, 10.5, {9, 8, 7, 1000}, State::Raised, 8},
        {{C::ChangedBy, false, 2, 0, 3}, 10, {9, 7}, State::Quiet, 8},
    };
    for (std::size_t i = 0; i < cases.size(); ++i) {
        std::vector<RunFigure> earlier;
        for (const double value : cases[i].earlier)
            earlier.push_back({value, 1});
        const AlertVerdict verdict = checkAlert(cases[i].rule, cases[i].figure, 1, earlier);
        EXPECT_EQ(verdict.state, cases[i].state) << i;
        EXPECT_EQ(verdict.reference, cases[i].reference) << i;
    }
}

TEST(AlertRule, ReferencesAreMeanMedianOrTheSameWeekday) {
    const std::vector<RunFigure> earlier{{10, 7}, {20, 6}, {90, 5}, {12, 7}, {1000, 7}};
    const auto reference = [&](AlertReference kind, int runs, int weekday) {
        AlertRule rule{C::ChangedBy, false, 5, 0, runs, AlertLevel::Warning, kind};
        return checkAlert(rule, 10, weekday, earlier).reference;
    };
    EXPECT_EQ(reference(AlertReference::Mean, 1, 7), 10);
    EXPECT_EQ(reference(AlertReference::Mean, 3, 7), 40);
    EXPECT_EQ(reference(AlertReference::Median, 3, 7), 20);
    EXPECT_EQ(reference(AlertReference::Median, 4, 7), 16);
    EXPECT_EQ(reference(AlertReference::SameWeekday, 2, 7), 11);
    EXPECT_EQ(reference(AlertReference::SameWeekday, 2, 6), 20);
    EXPECT_EQ(reference(AlertReference::SameWeekday, 2, 1), std::nullopt);

    const auto needs = [&](AlertReference kind, int runs, int weekday) {
        return needsEarlierRuns({C::ChangedBy, false, 5, 0, runs, AlertLevel::Warning, kind}, weekday, earlier);
    };
    EXPECT_FALSE(needs(AlertReference::Median, 5, 7));
    EXPECT_TRUE(needs(AlertReference::Median, 6, 7));
    EXPECT_FALSE(needs(AlertReference::SameWeekday, 3, 7));
    EXPECT_TRUE(needs(AlertReference::SameWeekday, 2, 6));
    EXPECT_FALSE(needsEarlierRuns({C::Greater, false, 5}, 7, {}));
}

TEST(AlertRule, CodesReadBackAndNameTheirSentence) {
    const auto sentence = [](AlertSubject subject, int code) -> std::string {
        AlertRule rule{C::Greater, false, 0.1, 1e20};
        if (!setAlertCode(rule, subject, code))
            return "none";
        EXPECT_EQ(alertCode(subject, rule), code);
        return alertSentence(subject, rule, "Mean", "x");
    };
    const auto metric = AlertSubject::StandardMetric;
    EXPECT_EQ(sentence(metric, 0), "Mean for field x is greater than 0.1");
    EXPECT_EQ(sentence(metric, 1), "Mean for field x is less than 0.1");
    EXPECT_EQ(sentence(metric, 2), "Mean for field x is equal to 0.1");
    EXPECT_EQ(sentence(metric, 3), "Mean for field x is outside the range 0.1 to 1e+20");
    EXPECT_EQ(sentence(metric, 4), "Mean for field x is inside the range 0.1 to 1e+20");
    EXPECT_EQ(sentence(metric, 5), "Mean for field x has changed by more than 0.1");
    EXPECT_EQ(sentence(metric, 6), "Mean for field x has changed by more than 0.1%");
    EXPECT_EQ(sentence(metric, 7), "none");
    const auto against = [](int runs, AlertReference reference) {
        return alertSentence(AlertSubject::StandardMetric,
                             {C::ChangedBy, false, 2, 0, runs, AlertLevel::Warning, reference}, "Mean", "x");
    };
    EXPECT_EQ(against(1, AlertReference::Median), "Mean for field x has changed by more than 2");
    EXPECT_EQ(against(3, AlertReference::Mean),
              "Mean for field x has changed by more than 2 against the mean of 3 runs");
    EXPECT_EQ(against(3, AlertReference::Median),
              "Mean for field x has changed by more than 2 against the median of 3 runs");
    EXPECT_EQ(against(1, AlertReference::SameWeekday),
              "Mean for field x has changed by more than 2 against the last run of the same weekday");
    EXPECT_EQ(against(4, AlertReference::SameWeekday),
              "Mean for field x has changed by more than 2 against the mean of 4 runs of the same weekday");
    EXPECT_EQ(sentence(AlertSubject::CustomMetric, 3), "Mean for custom metric x is outside the range 0.1 to 1e+20");
    const auto rule = AlertSubject::BusinessRule;
    EXPECT_EQ(sentence(rule, 0), "Failed row count for business rule x is greater than 0.1");
    EXPECT_EQ(sentence(rule, 4), "Failed row count for business rule x is inside the range 0.1 to 1e+20");
    EXPECT_EQ(sentence(rule, 5), "Percentage of failed rows for business rule x is greater than 0.1");
    EXPECT_EQ(sentence(rule, 8), "Percentage of failed rows for business rule x is outside the range 0.1 to 1e+20");
    EXPECT_EQ(sentence(rule, 11), "Failed row count for business rule x has changed by more than 0.1%");
    EXPECT_EQ(sentence(rule, 12), "Percentage of failed rows for business rule x has changed by more than 0.1");
    EXPECT_EQ(sentence(rule, 14), "none");
    EXPECT_EQ(sentence(rule, -1), "none");
}

} // namespace
} // namespace tavix
