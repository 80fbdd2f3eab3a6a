#include "cli/DamageReport.h"
#include "cli/DisplayText.h"
#include "cli/ProgressLine.h"

#include <gtest/gtest.h>

namespace tavix::cli {
namespace {

profiling::ProgressState halfway() {
    profiling::ProgressState state;
    state.table = "airports";
    state.tableIndex = 1;
    state.tableCount = 3;
    state.rows = 1234;
    state.bytesDone = 50'000'000;
    state.bytesTotal = 200'000'000;
    state.seconds = 30;
    return state;
}

TEST(ProgressText, TellsTableRowsShareRateAndTimeLeft) {
    EXPECT_EQ(progressText(halfway(), 80), "[2/3] airports: reading, 1234 rows, 25 %, 1.7 MB/s, 1:30 min left");
}

TEST(ProgressText, FitsEveryWidthAndForetellsNothingTooEarly) {
    for (std::size_t width = 0; width < 70; ++width)
        EXPECT_LE(displayWidth(progressText(halfway(), width)), width);
    EXPECT_EQ(progressText(halfway(), 45), "[2/3] airports: reading, 1234 rows, 25 %");
    profiling::ProgressState early = halfway();
    early.seconds = 0.1;
    EXPECT_EQ(progressText(early, 80), "[2/3] airports: reading, 1234 rows, 25 %");
    early.bytesTotal = 0;
    early.table = "\x1b[2Jx";
    early.tableCount = 1;
    EXPECT_EQ(progressText(early, 80), "\\x1b[2Jx: reading, 1234 rows");
}

TEST(DamageText, NamesTheFirstRowsAndCountsTheRest) {
    profiling::TableOutcome outcome;
    outcome.fields = 14;
    EXPECT_EQ(damageText("a.csv", outcome), "");
    outcome.damagedRows = 1;
    outcome.damage = {{17, source::Damage::TooFewCells, 3}};
    EXPECT_EQ(damageText("a.csv", outcome), "a.csv: 1 damaged row; line 17: too few cells (3 of 14)");
    outcome.damagedRows = 2000;
    outcome.damage = std::vector<source::DamagedRow>(1000, {2, source::Damage::OpenQuote, 1});
    outcome.damage[1] = {3, source::Damage::TooManyCells, 20};
    outcome.damage[2] = {4, source::Damage::BadBytes, 14};
    EXPECT_EQ(damageText("a.csv", outcome),
              "a.csv: 2000 damaged rows; line 2: a quote that is never closed, line 3: too many cells (20 for 14), "
              "line 4: bytes that are no UTF-8, line 2: a quote that is never closed, line 2: a quote that is never "
              "closed and 1995 more");
}

} // namespace
} // namespace tavix::cli
