#include "base/Metrics.h"
#include "report/AlertTexts.h"

#include <gmock/gmock.h>

namespace tavix {
namespace {

using C = AlertComparison;
using ::testing::ElementsAre;

const std::locale& classic() {
    return std::locale::classic();
}

AlertState alertOn(MetricId metric, const AlertRule& rule) {
    AlertState alert;
    alert.watchedId = static_cast<int>(metric);
    alert.rule = rule;
    return alert;
}

std::string figure(MetricId metric, double value) {
    AlertState alert = alertOn(metric, {});
    alert.figure = value;
    return alertFigureText(alert);
}

std::string reference(const AlertRule& rule, std::optional<double> reference = {}, MetricId metric = MetricId::Count) {
    AlertState alert = alertOn(metric, rule);
    alert.verdict.reference = reference;
    return alertReferenceText(alert);
}

AlertRule change(AlertReference reference, int runs) {
    return {C::ChangedBy, false, 5, 0, runs, AlertLevel::Warning, reference};
}

TEST(AlertTexts, APathNamesTheSourceAndTheTableOrTheObjectAlone) {
    AlertState alert;
    alert.dataSource = "Sales";
    alert.tableName = "orders";
    EXPECT_EQ("Sales.orders", alertPath(alert));
    alert.schema = "public";
    EXPECT_EQ("Sales.public.orders", alertPath(alert));
    alert.catalog = "north";
    EXPECT_EQ("Sales.north.public.orders", alertPath(alert));
    alert.objectName = "late orders";
    EXPECT_EQ("Sales.late orders", alertPath(alert));
}

TEST(AlertTexts, FiguresAndLimitsHaveTheirUnitAndNoMoreDigitsThanPeopleRead) {
    EXPECT_EQ("3,376", figure(MetricId::NullCount, 3376));
    EXPECT_EQ("12.345679", figure(MetricId::Mean, 12.3456789));
    EXPECT_EQ("1e+20", figure(MetricId::Mean, 1e20));
    EXPECT_EQ("0.36 %", figure(MetricId::PercentNull, 0.3579));
    EXPECT_EQ("0.004 %", figure(MetricId::PercentNull, 0.004));
    EXPECT_EQ("> 99.99 %", figure(MetricId::UniquePercent, 99.9999));
    EXPECT_EQ("", alertFigureText(alertOn(MetricId::Mean, {})));
    AlertState rule;
    rule.subject = AlertSubject::BusinessRule;
    rule.watchedId = static_cast<int>(MetricId::PercentNull); // the id of a rule, which may be any number
    rule.rule = AlertRule{};
    rule.figure = 12;
    EXPECT_EQ("12", alertFigureText(rule));
    rule.rule->ofFailedPercent = true;
    EXPECT_EQ("12.00 %", alertFigureText(rule));

    EXPECT_EQ("above 5,000", reference({C::Greater, false, 5000}));
    EXPECT_EQ("above 0.5 %", reference({C::Greater, false, 0.5}, {}, MetricId::PercentNull));
    EXPECT_EQ("below -1", reference({C::Less, false, -1}));
    EXPECT_EQ("equal to 0.1", reference({C::Equal, false, 0.1}));
    EXPECT_EQ("outside 1 to 2,000", reference({C::Outside, false, 1, 2000}));
    EXPECT_EQ("inside 1 to 2", reference({C::Inside, false, 1, 2}));
    EXPECT_EQ("", alertReferenceText(AlertState{}));
}

TEST(AlertTexts, ChangesNameWhatTheyAreMeasuredAgainst) {
    EXPECT_EQ("run before: 1,234", reference(change(AlertReference::Mean, 1), 1234));
    EXPECT_EQ("run before: 1,234", reference(change(AlertReference::Median, 1), 1234));
    EXPECT_EQ("mean of 3 runs: 8.5", reference(change(AlertReference::Mean, 3), 8.5));
    EXPECT_EQ("median of 3 runs: 8.50 %", reference(change(AlertReference::Median, 3), 8.5, MetricId::PercentNull));
    EXPECT_EQ("last run of the same weekday: 8", reference(change(AlertReference::SameWeekday, 1), 8));
    EXPECT_EQ("mean of 4 runs of the same weekday: 8", reference(change(AlertReference::SameWeekday, 4), 8));
    EXPECT_EQ("run before: none", reference(change(AlertReference::Mean, 1)));
}

TEST(AlertTexts, ARaisedAlertSaysSinceWhenEvenWhileItIsMuted) {
    AlertState alert = alertOn(MetricId::Count, {});
    alert.raisedRuns = 1;
    alert.sinceDate = 46346.34375;
    EXPECT_EQ("", alertSinceText(alert, classic()));
    alert.verdict.state = AlertVerdict::State::Raised;
    EXPECT_EQ("this run", alertSinceText(alert, classic()));
    alert.raisedRuns = 3;
    alert.mute = AlertMute{};
    EXPECT_EQ("3 runs, since Fri Nov 20 08:15:00 2026", alertSinceText(alert, classic()));
    alert.raisedRuns = 1024;
    alert.raisedLonger = true;
    EXPECT_EQ("at least 1,024 runs, since Fri Nov 20 08:15:00 2026 or before", alertSinceText(alert, classic()));
}

TEST(AlertTexts, LevelOriginAndMuteSayWhoAndForHowLong) {
    AlertState alert;
    EXPECT_EQ("", alertLevelText(alert));
    EXPECT_EQ("job", alertOriginText(alert));
    EXPECT_EQ("", alertMuteText(alert, classic()));
    alert.rule = AlertRule{};
    EXPECT_EQ("warning", alertLevelText(alert));
    alert.rule->level = AlertLevel::Error;
    EXPECT_EQ("error", alertLevelText(alert));
    alert.isOfUser = true;
    EXPECT_EQ("unknown user", alertOriginText(alert));
    alert.author = "anna";
    EXPECT_EQ("anna", alertOriginText(alert));
    alert.mute = AlertMute{"known gap", "ben", 46346.34375, 3, {}};
    EXPECT_EQ("Muted by ben on Fri Nov 20 08:15:00 2026 for 3 runs: known gap", alertMuteText(alert, classic()));
    alert.mute->until = 46357;
    EXPECT_EQ("Muted by ben on Fri Nov 20 08:15:00 2026 for 3 runs, at the longest until Tue Dec  1 00:00:00 2026: "
              "known gap",
              alertMuteText(alert, classic()));
    alert.mute = AlertMute{"", "", 46346.34375, 0, 46357.0};
    EXPECT_EQ("Muted on Fri Nov 20 08:15:00 2026 until Tue Dec  1 00:00:00 2026", alertMuteText(alert, classic()));
}

TEST(AlertTexts, CountsNameOnlyWhatAsksForAttention) {
    EXPECT_EQ("no alerts", alertCountsText({}));
    EXPECT_EQ("no alert raised", alertCountsText({.quiet = 7}));
    EXPECT_EQ("no alert raised, 1 muted, 3 cannot be judged", alertCountsText({.muted = 1, .unjudged = 3}));
    EXPECT_EQ("2 errors, 1 warning, 1,000 muted",
              alertCountsText({.errors = 2, .warnings = 1, .muted = 1000, .quiet = 4}));
}

// Errors before warnings, raised before the rest; otherwise as they came.
TEST(AlertTexts, AMuteWinsOverEveryVerdictAndListsBeginWithWhatIsRaised) {
    const auto state = [](int id, AlertVerdict::State verdict, AlertLevel level, bool isMuted) {
        AlertState alert;
        alert.id = id;
        alert.rule = AlertRule{};
        alert.rule->level = level;
        alert.verdict.state = verdict;
        if (isMuted)
            alert.mute = AlertMute{};
        return alert;
    };
    using V = AlertVerdict::State;
    std::vector<AlertState> alerts{
        state(1, V::Quiet, AlertLevel::Error, false),    state(2, V::Raised, AlertLevel::Error, true),
        state(3, V::Unknown, AlertLevel::Error, false),  state(4, V::Raised, AlertLevel::Warning, false),
        state(5, V::Raised, AlertLevel::Error, false),   state(6, V::Quiet, AlertLevel::Warning, true),
        state(7, V::Raised, AlertLevel::Warning, false), state(8, V::Raised, AlertLevel::Error, false)};
    EXPECT_EQ((AlertCounts{.errors = 2, .warnings = 2, .muted = 2, .unjudged = 1, .quiet = 1}), countAlerts(alerts));
    orderAlerts(alerts);
    std::vector<std::string> lines;
    lines.reserve(alerts.size());
    for (const AlertState& alert : alerts)
        lines.push_back(std::to_string(alert.id) + " " + std::string(alertShownWord(alert.shown())));
    EXPECT_THAT(lines, ElementsAre("5 raised", "8 raised", "4 raised", "7 raised", "3 cannot be judged", "2 muted",
                                   "6 muted", "1 quiet"));
    EXPECT_FALSE(alerts[5].isRaisedAt(AlertLevel::Warning)) << "muted ones fail no run";
}

} // namespace
} // namespace tavix
