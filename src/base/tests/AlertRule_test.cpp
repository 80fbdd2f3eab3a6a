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
        const AlertVerdict verdict = checkAlert(cases[i].rule, cases[i].figure, cases[i].earlier);
        EXPECT_EQ(verdict.state, cases[i].state) << i;
        EXPECT_EQ(verdict.reference, cases[i].reference) << i;
    }
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
