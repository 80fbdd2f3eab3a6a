#include "base/Metrics.h"
#include "grid/CellOrder.h"
#include "tabs/FieldPictures.h"

#include <gmock/gmock.h>

#include <cmath>

namespace tavix {
namespace {

using ::testing::DoubleNear;
using ::testing::ElementsAre;

const double kNone = std::nan("");

TEST(FieldPictures, TheBarOfFilledRowsSaysItsFigures) {
    const GridCell cell = filledCell(3376, 12, 3);
    EXPECT_EQ("12 null, 3 blank, 3,361 filled of 3,376", cell.text);
    EXPECT_THAT(cell.picture.parts, ElementsAre(DoubleNear(12.0 / 3376, 1e-9), DoubleNear(3.0 / 3376, 1e-9),
                                                DoubleNear(3361.0 / 3376, 1e-9)));
    EXPECT_EQ("3,376 filled of 3,376", filledCell(3376, 0, 0).text);
    EXPECT_EQ("3,376 null, 0 filled of 3,376", filledCell(3376, 3376, 0).text);
    EXPECT_EQ(GridCell(), filledCell(0, 0, 0));
    EXPECT_LT(CellOrderKey(orderText(filledCell(100, 50, 0))), CellOrderKey(orderText(filledCell(1000, 0, 400))));
}

std::string changeOf(MetricId metric, const std::vector<double>& figures) {
    const GridCell cell = trendCell(static_cast<int>(metric), figures);
    return cell.text + (cell.picture.line.empty() ? " without line" : "") +
           (cell.state == CellState::Unknown ? "?" : "");
}

TEST(FieldPictures, TheLineOfRunsSaysItsLastChange) {
    EXPECT_EQ("▲ 1,204", changeOf(MetricId::NullCount, {10, 12, 1216}));
    EXPECT_EQ("▼ 2", changeOf(MetricId::NullCount, {12, 10}));
    EXPECT_EQ("▲ 2.10 %", changeOf(MetricId::PercentNull, {0.36, 2.46}));
    EXPECT_EQ("▼ < 0.01 %", changeOf(MetricId::PercentNull, {0.361, 0.36}));
    EXPECT_EQ("▲ 0.1", changeOf(MetricId::Mean, {0.2, 0.30000000000000004}));
    EXPECT_EQ("=", changeOf(MetricId::NullCount, {3, 12, 12}));
    EXPECT_EQ("new", changeOf(MetricId::NullCount, {kNone, kNone, 12}));
    EXPECT_EQ("", changeOf(MetricId::NullCount, {3, kNone, 12})) << "it was there, but not in the run before";
    EXPECT_EQ("", changeOf(MetricId::NullCount, {3, 12, kNone}));
    EXPECT_EQ(" without line?", changeOf(MetricId::Mean, {kNone, kNone}));
    EXPECT_EQ(" without line?", changeOf(MetricId::Mean, {}));
    EXPECT_LT(CellOrderKey(orderText(trendCell(2, {12, 10}))), CellOrderKey(orderText(trendCell(2, {10, 19}))));
}

TEST(FieldPictures, TheTooltipListsTheRunsTheLatestFirst) {
    MetricHistory history;
    history.runs = {1, 2, 3};
    history.dates = {46022, 46053.5, 46081};
    EXPECT_EQ(
        "Sat Feb 28 00:00:00 2026: 0.36 %\nSat Jan 31 12:00:00 2026: no figure\nWed Dec 31 00:00:00 2025: 2.46 %",
        trendToolTip(static_cast<int>(MetricId::PercentNull), history, {2.46, kNone, 0.36}, std::locale::classic()));
    EXPECT_EQ("", trendToolTip(23, history, {}, std::locale::classic()));
}

} // namespace
} // namespace tavix
