#include "alert/tests/GivenAlerts.h"
#include "support/RowsText.h"

#include <gmock/gmock.h>

namespace tavix {
namespace {

using ::testing::ElementsAre;
using testing::GivenAlerts;
using testing::priceAlert;

std::vector<AlertState> fourAlerts() {
    std::vector<AlertState> alerts;
    alerts.push_back(priceAlert(MetricId::NullCount, {.value1 = 100}, 7));
    alerts.push_back(priceAlert(MetricId::NullCount, {.value1 = 100}, 1200));
    alerts.back().description = "Prices are missing";
    alerts.back().raisedRuns = 3;
    alerts.back().sinceDate = 46000;
    alerts.push_back(priceAlert(MetricId::Mean, {.comparison = AlertComparison::ChangedBy, .value1 = 0.5}, 12.25));
    alerts.back().isOfUser = true;
    alerts.back().author = "anna";
    AlertRule error{.comparison = AlertComparison::Inside, .value1 = 1, .value2 = 9};
    error.level = AlertLevel::Error;
    alerts.push_back(priceAlert(MetricId::PercentNull, error, 2.5));
    alerts.back().job = 4;
    alerts.push_back(priceAlert(MetricId::NullCount, {.value1 = 100}, 1201));
    alerts.back().mute = AlertMute{"known gap", "anna", 46000.5, 2, {}};
    int id = 0;
    for (AlertState& alert : alerts)
        alert.id = ++id;
    return alerts;
}

TEST(AlertRows, ShowRaisedOnesFirstAndWhyTheyAreRaised) {
    const GivenAlerts rows(fourAlerts(), {{4, "Nightly"}});
    EXPECT_EQ("Description:280|Type:120|Input:140|Data Source/Catalog/Schema/Table:230|State:105|Level:70|>Figure:95|"
              "Compared With:150|Raised:150|Defined By:90|Report:130",
              headingsOf(rows));
    constexpr const char* kPlace = "|Standard Metric|price|Sales.north.public.orders|";
    EXPECT_THAT(linesOf(rows),
                ElementsAre("Percent Null for field price is inside the range 1 to 9" + std::string(kPlace) +
                                "raised|error|>2.50 %|inside 1 % to 9 %|this run|job|Nightly",
                            "Prices are missing" + std::string(kPlace) +
                                "raised|warning|>1,200|above 100|3 runs, since Tue Dec  9 00:00:00 2025|job|",
                            "Mean for field price has changed by more than 0.5" + std::string(kPlace) +
                                "cannot be judged|warning|>12.25|run before: none||anna|",
                            "Null Count for field price is greater than 100" + std::string(kPlace) +
                                "muted|warning|>1,201|above 100|this run|job|",
                            "Null Count for field price is greater than 100" + std::string(kPlace) +
                                "quiet|warning|>7|above 100||job|"));
    std::vector<AlertMark> marks;
    for (std::int64_t row = 0; row < rows.GetRowCount(); ++row)
        marks.push_back(rows.GetCell(0, row).alert);
    EXPECT_THAT(marks, ElementsAre(AlertMark::Error, AlertMark::Warning, AlertMark::CannotBeJudged, AlertMark::Muted,
                                   AlertMark::Quiet));
    EXPECT_EQ("1200", rows.GetCell(6, 1).text) << "copied without groups of digits";
    EXPECT_EQ("raised (error): this run", rows.GetToolTip(0, 0));
    EXPECT_EQ("Null Count for field price is greater than 100\n"
              "raised (warning): 3 runs, since Tue Dec  9 00:00:00 2025",
              rows.GetToolTip(0, 1));
    EXPECT_EQ("muted: this run\nMuted by anna on Tue Dec  9 12:00:00 2025 for 2 runs: known gap",
              rows.GetToolTip(4, 3));
    EXPECT_EQ(1, rows.FindAlert(2));
    EXPECT_EQ(-1, rows.FindAlert(9));
}

TEST(AlertRows, SortByStateFigureAndTime) {
    GivenAlerts rows(fourAlerts());
    const auto ids = [&rows] {
        std::vector<int> listed;
        for (std::int64_t row = 0; row < rows.GetRowCount(); ++row)
            listed.push_back(rows.GetAlert(row).id);
        return listed;
    };
    ASSERT_TRUE(rows.Sort(6, false));
    EXPECT_THAT(ids(), ElementsAre(4, 1, 3, 2, 5));
    ASSERT_TRUE(rows.Sort(4, true));
    EXPECT_THAT(ids(), ElementsAre(1, 5, 3, 2, 4)) << "raised ones last, errors after warnings";
    ASSERT_TRUE(rows.Sort(8, true));
    EXPECT_EQ(2, ids().front()) << "raised for three runs";
}

TEST(AlertRows, WithoutARuleSayThatItCannotBeRetrieved) {
    AlertState alert = priceAlert(MetricId::Mean, {}, {});
    alert.rule.reset();
    alert.sentence = "Unable to retrieve alert properties";
    const GivenAlerts rows({alert});
    EXPECT_EQ("Unable to retrieve alert properties", rows.GetCell(9, 0).text);
    EXPECT_EQ("", rows.GetCell(5, 0).text);
    EXPECT_EQ("Unable to retrieve alert properties\ncannot be judged", rows.GetToolTip(0, 0));
}

} // namespace
} // namespace tavix
