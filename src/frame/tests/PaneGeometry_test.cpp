#include "frame/PaneGeometry.h"
#include "frame/PaneMemory.h"
#include "settings/Settings.h"

#include <gtest/gtest.h>

namespace tavix {
namespace {

TEST(PaneGeometry, ThreePanesShareTheWidth) {
    const PaneLayout layout = layOutPanes(1000, {}, true);
    EXPECT_EQ(layout.leftSplitter, 248);
    EXPECT_EQ(layout.rightSplitter, 796);
    EXPECT_EQ(layout.navigator, (PaneSpan{0, 248}));
    EXPECT_EQ(layout.report, (PaneSpan{255, 541}));
    EXPECT_EQ(layout.info, (PaneSpan{803, 197}));
}

TEST(PaneGeometry, WithoutTheInformationTheReportReachesTheEdge) {
    const PaneLayout layout = layOutPanes(1000, {}, false);
    EXPECT_EQ(layout.leftSplitter, 248);
    EXPECT_EQ(layout.navigator, (PaneSpan{0, 248}));
    EXPECT_EQ(layout.report, (PaneSpan{255, 745}));
    EXPECT_EQ(layout.info, PaneSpan());
}

TEST(PaneGeometry, ANavigatorThatNobodyMovedKeepsItsWidthInWideWindows) {
    EXPECT_EQ(0.25, unmovedNavigatorRatio(800));
    EXPECT_EQ(0.25, unmovedNavigatorRatio(1280));
    for (int width = 1280; width < 8000; ++width)
        ASSERT_EQ(318, layOutPanes(width, {unmovedNavigatorRatio(width), 0.2}, false).navigator.width) << width;
}

TEST(PaneMemory, OnlyARatioThatTheUserChoseIsStored) {
    const auto settings = makeMemorySettings();
    ASSERT_TRUE(writePaneMemory(*settings, {{0.125, 0.3}, false, true}));
    EXPECT_EQ((PaneMemory{{0.25, 0.3}, false, true}), readPaneMemory(*settings));
    ASSERT_TRUE(writePaneMemory(*settings, {{0.125, 0.3}, true, true}));
    EXPECT_EQ((PaneMemory{{0.125, 0.3}, true, true}), readPaneMemory(*settings));
    for (const char* text : {"0.25", "-1", "1.5", "wide"}) {
        ASSERT_TRUE(writeText(*settings, Setting::NavigatorShare, text));
        EXPECT_EQ((PaneMemory{{0.25, 0.3}, false, true}), readPaneMemory(*settings)) << text;
    }
}

TEST(PaneGeometry, SharesAreCutAndNotRounded) {
    // 1279 * 0.25 = 319.75, 1279 * 0.2 = 255.8
    const PaneLayout layout = layOutPanes(1279, {}, true);
    EXPECT_EQ(layout.navigator, (PaneSpan{0, 317}));
    EXPECT_EQ(layout.info, (PaneSpan{1027, 252}));
    EXPECT_EQ(layout.report, (PaneSpan{324, 696}));
    EXPECT_EQ(layout.rightSplitter, 1020);
}

TEST(PaneGeometry, ANarrowWindowHasPanesWithoutWidth) {
    for (int width = 0; width < 60; ++width) {
        for (const bool hasInfo : {false, true}) {
            for (const PaneRatios& ratios : {PaneRatios{}, PaneRatios{0, 0}, PaneRatios{1, 1}, PaneRatios{0.9, 0.5}}) {
                const PaneLayout layout = layOutPanes(width, ratios, hasInfo);
                EXPECT_GE(layout.navigator.width, 0);
                EXPECT_GE(layout.report.width, 0);
                EXPECT_GE(layout.info.width, 0);
            }
        }
    }
    EXPECT_EQ(layOutPanes(4, {}, true).leftSplitter, -1);
    EXPECT_EQ(layOutPanes(4, {}, true).navigator, (PaneSpan{0, 0}));
    EXPECT_EQ(layOutPanes(4, {}, true).report, (PaneSpan{6, 0}));
    EXPECT_EQ(layOutPanes(10, {}, true).info, (PaneSpan{11, 0}));
}

TEST(PaneGeometry, ABarIsSixPixelsWideAndTheLeftOneWins) {
    PaneLayout layout = layOutPanes(1000, {}, true);
    EXPECT_EQ(splitterAt(247, layout), Splitter::None);
    EXPECT_EQ(splitterAt(248, layout), Splitter::Left);
    EXPECT_EQ(splitterAt(253, layout), Splitter::Left);
    EXPECT_EQ(splitterAt(254, layout), Splitter::None);
    EXPECT_EQ(splitterAt(795, layout), Splitter::None);
    EXPECT_EQ(splitterAt(796, layout), Splitter::Right);
    EXPECT_EQ(splitterAt(801, layout), Splitter::Right);
    EXPECT_EQ(splitterAt(802, layout), Splitter::None);
    layout.rightSplitter = 250;
    EXPECT_EQ(splitterAt(252, layout), Splitter::Left);
    EXPECT_EQ(splitterAt(255, layout), Splitter::Right);
    EXPECT_EQ(splitterAt(798, layOutPanes(1000, {}, false)), Splitter::None);
}

TEST(PaneGeometry, TheLeftBarStaysInTheWindowAndLeftOfTheOther) {
    const PaneLayout alone = layOutPanes(1000, {}, false);
    EXPECT_EQ(clampedDrag(Splitter::Left, -50, alone), 3);
    EXPECT_EQ(clampedDrag(Splitter::Left, 2, alone), 3);
    EXPECT_EQ(clampedDrag(Splitter::Left, 3, alone), 3);
    EXPECT_EQ(clampedDrag(Splitter::Left, 4, alone), 4);
    EXPECT_EQ(clampedDrag(Splitter::Left, 996, alone), 996);
    EXPECT_EQ(clampedDrag(Splitter::Left, 997, alone), 997);
    EXPECT_EQ(clampedDrag(Splitter::Left, 998, alone), 996);
    EXPECT_EQ(clampedDrag(Splitter::Left, 5000, alone), 996);

    const PaneLayout both = layOutPanes(1000, {}, true);
    EXPECT_EQ(clampedDrag(Splitter::Left, 792, both), 792);
    EXPECT_EQ(clampedDrag(Splitter::Left, 793, both), 792);
    EXPECT_EQ(clampedDrag(Splitter::Left, 900, both), 792);
}

TEST(PaneGeometry, TheRightBarStaysInTheWindowAndRightOfTheOther) {
    const PaneLayout both = layOutPanes(1000, {}, true);
    EXPECT_EQ(clampedDrag(Splitter::Right, -20, both), 258);
    EXPECT_EQ(clampedDrag(Splitter::Right, 257, both), 258);
    EXPECT_EQ(clampedDrag(Splitter::Right, 258, both), 258);
    EXPECT_EQ(clampedDrag(Splitter::Right, 259, both), 259);
    EXPECT_EQ(clampedDrag(Splitter::Right, 997, both), 997);
    EXPECT_EQ(clampedDrag(Splitter::Right, 998, both), 996);
}

TEST(PaneGeometry, LettingGoChangesOneRatio) {
    EXPECT_EQ(ratiosAfterDrag(Splitter::Left, 400, {}, 1000), (PaneRatios{0.4, 0.2}));
    EXPECT_EQ(ratiosAfterDrag(Splitter::Right, 700, {}, 1000), (PaneRatios{0.25, 1 - 0.7}));
    EXPECT_EQ(ratiosAfterDrag(Splitter::None, 700, {}, 1000), PaneRatios());
    EXPECT_EQ(ratiosAfterDrag(Splitter::Left, 3, {}, 1000), (PaneRatios{0.003, 0.2}));
    EXPECT_EQ(ratiosAfterDrag(Splitter::Left, 3, {}, 0), PaneRatios());
    EXPECT_EQ(ratiosAfterDrag(Splitter::Left, -2, {}, 5), (PaneRatios{0, 0.2}));
    EXPECT_EQ(splitterOfDrag(400), 397);
    EXPECT_EQ(layOutPanes(1000, ratiosAfterDrag(Splitter::Left, 400, {}, 1000), false).report, (PaneSpan{405, 595}));
}

} // namespace
} // namespace tavix
