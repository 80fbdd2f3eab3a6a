#include "frame/DeleteHistoryModel.h"
#include "frame/OptionsModel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tavix {
namespace {

using ::testing::ElementsAre;

std::vector<std::string> rows(const OptionsModel& model) {
    std::vector<std::string> result;
    for (int row = 0; row < model.RowCount(); ++row)
        result.push_back(model.Row(row).description + (model.Row(row).shown ? " +" : " -"));
    return result;
}

TEST(OptionsModel, ValuesComeFromTheSettingsAndGoBack) {
    const auto store = makeMemorySettings();
    ASSERT_TRUE(store->write("TAVIX", "MaxFreqVals", "0"));
    OptionsModel model(*store, {});
    EXPECT_EQ(model.values.maxFreqVals, 1);
    EXPECT_EQ(model.values.maxDrillThruRows, 1000);
    EXPECT_FALSE(model.values.newestNotesFirst);

    model.values = {5, 6, 7, 8, 9, 30, 40, true, true, {"Mono", 1, 120, true, true}, "en_US", true, ColorScheme::Dark};
    ASSERT_TRUE(model.Save(*store));
    EXPECT_EQ(OptionsModel(*store, {}).values, model.values);
    EXPECT_EQ(store->read("TAVIX", "SecondRDAThreshold"), "40");
    // A program that does not follow the choice leaves it as it is.
    model.values.colorScheme.reset();
    ASSERT_TRUE(model.Save(*store));
    EXPECT_EQ(OptionsModel(*store, {}).values.colorScheme, ColorScheme::Dark);
}

TEST(OptionsModel, SecondThresholdBelowTheFirstIsRefused) {
    OptionsModel model(*makeMemorySettings(), {});
    model.values.firstThreshold = 30;
    model.values.secondThreshold = 20;
    EXPECT_EQ(model.Check(), (OptionProblem{Setting::SecondRDAThreshold, "The second RDA warning threshold must be "
                                                                         "greater than or equal to the first"}));
    model.values.secondThreshold = 30;
    EXPECT_EQ(model.Check(), std::nullopt);
}

TEST(OptionsModel, MetricsMoveAndPlacesChangeOnlyThen) {
    const std::vector<MetricDisplay> metrics = {{"a", true, 9}, {"b", false, 0}, {"c", true, 0}};
    OptionsModel model(*makeMemorySettings(), metrics);
    EXPECT_THAT(rows(model), ElementsAre("b -", "c +", "a +"));
    EXPECT_EQ(model.Metrics(), metrics);
    EXPECT_FALSE(model.Move(0, -1));
    EXPECT_FALSE(model.Move(2, 1));
    EXPECT_FALSE(model.Move(-1, 1));
    EXPECT_EQ(model.Metrics(), metrics);

    ASSERT_TRUE(model.Move(2, -2));
    EXPECT_THAT(rows(model), ElementsAre("a +", "b -", "c +"));
    ASSERT_TRUE(model.Move(0, 1));
    EXPECT_THAT(rows(model), ElementsAre("b -", "a +", "c +"));
    model.SetShown(0, true);
    EXPECT_EQ(model.ShownCount(), 3);
    EXPECT_EQ(model.Metrics(), (std::vector<MetricDisplay>{{"a", true, 1}, {"b", true, 0}, {"c", true, 2}}));
    model.ShowAll(false);
    EXPECT_EQ(model.ShownCount(), 0);
}

std::vector<RunInfo> threeRuns() {
    return {{3, 46000.0, "spring"}, {8, 46100.0, "autumn"}, {5, 46050.5, "summer"}};
}

TEST(DeleteHistoryModel, ARunGoesWithAllOlderOnesAndTheNewestStays) {
    DeleteHistoryModel model(threeRuns(), 8);
    EXPECT_EQ(model.Runs().front().id, 8);
    EXPECT_EQ(model.Runs().back().id, 3);
    EXPECT_EQ(model.Summary(std::locale::classic()),
              "Select the newest run to delete. It is deleted together with all older runs.");
    model.DeleteFrom(0);
    EXPECT_FALSE(model.DeletesAnything());
    model.DeleteFrom(3);
    EXPECT_FALSE(model.DeletesAnything());

    model.DeleteFrom(1);
    EXPECT_FALSE(model.IsDeleted(0));
    EXPECT_TRUE(model.IsDeleted(1) && model.IsDeleted(2));
    EXPECT_EQ(model.Deletion().bound, 5);
    EXPECT_EQ(model.Deletion().runAfter, 8);
    EXPECT_EQ(model.Summary(std::locale::classic()),
              "2 runs from Tue Dec  9 00:00:00 2025 to Wed Jan 28 12:00:00 2026 will be deleted.");
    model.DeleteFrom(2);
    EXPECT_EQ(model.Summary(std::locale::classic()), "1 run of Tue Dec  9 00:00:00 2025 will be deleted.");
}

TEST(DeleteHistoryModel, WhatIsShownAfterwardsMustStay) {
    DeleteHistoryModel model(threeRuns(), 3);
    model.DeleteFrom(2);
    EXPECT_TRUE(model.DeletesCurrent());
    EXPECT_EQ(model.StayingCount(), 2);
    EXPECT_EQ(model.Deletion().runAfter, 8);
    model.ShowAfterwards(5);
    EXPECT_EQ(model.Deletion().runAfter, 5);
    model.DeleteFrom(1);
    EXPECT_EQ(model.Deletion().runAfter, 8);
}

TEST(DeleteHistoryModel, OneRunOrNoneCannotBeDeleted) {
    for (const std::vector<RunInfo>& runs : {std::vector<RunInfo>{}, {{4, 46000, ""}}}) {
        DeleteHistoryModel model(runs, 4);
        model.DeleteFrom(0);
        EXPECT_FALSE(model.DeletesAnything());
        EXPECT_EQ(model.Summary(std::locale::classic()),
                  "There is nothing to delete: a report keeps at least one run.");
    }
}

} // namespace
} // namespace tavix
