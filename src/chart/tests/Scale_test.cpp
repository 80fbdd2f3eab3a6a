#include "base/DateTicks.h"
#include "chart/Picture.h"
#include "chart/Scale.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace tavix::chart {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<std::string> labels(const std::vector<Tick>& ticks) {
    std::vector<std::string> texts;
    for (const Tick& tick : ticks)
        texts.push_back(tick.label);
    return texts;
}

double seconds(std::string_view date) {
    return static_cast<double>(*parseDate(date)) / static_cast<double>(kTicksPerSecond);
}

TEST(Ticks, OfNumbersAreFewAndRound) {
    EXPECT_THAT(labels(numberTicks(0, 873, 4)), ElementsAre("0", "500"));
    EXPECT_THAT(labels(numberTicks(0, 1000, 5)), ElementsAre("0", "200", "400", "600", "800", "1,000"));
    EXPECT_THAT(labels(numberTicks(-0.31, 0.3, 4)), ElementsAre("-0.2", "0", "0.2"));
    EXPECT_THAT(labels(numberTicks(0, 3, 8, true)), ElementsAre("0", "1", "2", "3"));
    EXPECT_THAT(labels(numberTicks(0, 2'500'000, 5)), ElementsAre("0", "0.5 M", "1 M", "1.5 M", "2 M", "2.5 M"));
    EXPECT_THAT(labels(numberTicks(1'234'567, 1'234'571, 4)),
                ElementsAre("1,234,567", "1,234,568", "1,234,569", "1,234,570", "1,234,571"));
    EXPECT_THAT(labels(numberTicks(-1.7e308, 1.7e308, 3)), ElementsAre("0"));
    EXPECT_THAT(labels(numberTicks(0, 3e-12, 3)), ElementsAre("0", "1e-12", "2e-12", "3e-12"));
    EXPECT_THAT(numberTicks(7, 7, 4), IsEmpty());
    EXPECT_THAT(numberTicks(1e15, 1e15 + 0.125, 4), IsEmpty()) << "labels would be the same";
}

TEST(Ticks, OfDatesAreCalendarUnits) {
    EXPECT_THAT(labels(dateTicks(seconds("2024-01-15"), seconds("2026-02-01"), 5)),
                ElementsAre("Jul 2024", "Jan 2025", "Jul 2025", "Jan 2026"));
    EXPECT_THAT(labels(dateTicks(seconds("1850-01-01"), seconds("1950-01-01"), 5)),
                ElementsAre("1860", "1880", "1900", "1920", "1940"));
    EXPECT_THAT(labels(dateTicks(seconds("2026-11-21"), seconds("2026-11-21 12:00"), 4)),
                ElementsAre("21 Nov", "03:00", "06:00", "09:00", "12:00"));
    EXPECT_THAT(labels(dateTicks(seconds("2026-11-01"), seconds("2026-11-30"), 5)),
                ElementsAre("2 Nov", "9 Nov", "16 Nov", "23 Nov", "30 Nov"));
    EXPECT_THAT(labels(dateTicks(seconds("0001-01-01"), seconds("9999-12-31"), 4)),
                ElementsAre("2000", "4000", "6000", "8000"));
}

TEST(Scale, MapsAnySpan) {
    EXPECT_EQ(Scale(10, 20, 0, 100).at(15), 50);
    EXPECT_EQ(Scale(-1.7e308, 1.7e308, 0, 100).at(0), 50);
    EXPECT_EQ(Scale(3, 3, 0, 100).at(3), 50);
    EXPECT_EQ(Scale(0, 1, 100, 0).at(1e300), -100) << "far outside, but drawable";
}

TEST(Shown, FiguresAreShort) {
    EXPECT_EQ(shownShare(94, 1000), "9.4 %");
    EXPECT_EQ(shownShare(1, 2000), "0.05 %");
    EXPECT_EQ(shownShare(0, 2000), "0.0 %");
    EXPECT_EQ(shownShare(1, 0), "");
    EXPECT_EQ(rowsText(1, 0), "1 row");
    EXPECT_EQ(rowsText(318, 3383), "318 rows, 9.4 %");
    EXPECT_EQ(shortCount(999'999), "999,999");
    EXPECT_EQ(shortCount(5'000'000), "5 M");
    EXPECT_EQ(shownNumber(-12345), "-12,345");
    EXPECT_EQ(shownNumber(0.1 + 0.2), "0.3");
    EXPECT_EQ(shownNumber(1e300), "1e+300");
}

TEST(FittedText, KeepsTheBeginning) {
    const Canvas canvas = plainCanvas(100, 100); // 7 pixels a character
    EXPECT_EQ(fittedText(canvas, "Bern", 28), "Bern");
    EXPECT_EQ(fittedText(canvas, "Øresund", 28), "Øre…");
    EXPECT_EQ(fittedText(canvas, "Bern", 3), "…");
    EXPECT_EQ(fittedText(canvas, std::string(1'000'000, 'x'), 21), "xx…");
}

} // namespace
} // namespace tavix::chart
