#include "base/tests/TempFolder.h"
#include "doc/CTavixApp.h"
#include "settings/MetricDisplay.h"

#include <gtest/gtest.h>

#include <fstream>

namespace tavix {
namespace {

TEST(TavixApp, FirstStartShowsEveryMetricAndALaterOneChangesNothing) {
    const testing::TempFolder folder;
    const std::string path = folder.file("settings.ini");
    {
        const CTavixApp app(path);
        EXPECT_EQ(app.GetStartProblem(), "");
        EXPECT_EQ(shownMetrics(standardMetricDisplay(app.GetSettings())).size(), 24u);
        EXPECT_EQ(app.GetSettings().read("TAVIX", "Metric23"), "S1");
        ASSERT_TRUE(app.GetSettings().write("TAVIX", "Metric5", "U0"));
        ASSERT_TRUE(app.GetSettings().write("TAVIX", "Metric6", ""));
        ASSERT_TRUE(app.GetSettings().write("Settings", "ConnectionType", "local"));
    }
    const CTavixApp again(path);
    EXPECT_EQ(again.GetSettings().read("TAVIX", "Metric5"), "U0");
    EXPECT_EQ(again.GetSettings().read("TAVIX", "Metric6"), "");
    EXPECT_EQ(again.GetSettings().read("Settings", "ConnectionType"), "local");
}

TEST(TavixApp, StartsWithoutAUsableSettingsFileAndSaysSo) {
    const testing::TempFolder folder;
    const CTavixApp app(folder.path().string());
    EXPECT_NE(app.GetStartProblem().find(folder.path().string()), std::string::npos);
    EXPECT_EQ(shownMetrics(standardMetricDisplay(app.GetSettings())).size(), 24u);

    std::ofstream(folder.file("occupied")) << "x";
    const CTavixApp unwritable(folder.file("occupied") + "/settings.ini");
    EXPECT_NE(unwritable.GetStartProblem(), "");
    EXPECT_EQ(shownMetrics(standardMetricDisplay(unwritable.GetSettings())).size(), 24u);
}

} // namespace
} // namespace tavix
