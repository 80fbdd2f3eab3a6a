#include "drill/DrillReader.h"
#include "drill/DrillTexts.h"
#include "drill/tests/FakeCursors.h"
#include "settings/Settings.h"

#include <gmock/gmock.h>

namespace tavix {
namespace {

using ::testing::ElementsAre;
using testing::FakeSource;
using ::testing::IsEmpty;
using testing::openDrill;
using testing::openProfile;
using testing::sampleSource;

constexpr std::int64_t kMany = 1000;

std::vector<std::string> linesOf(const DrillRows& rows) {
    std::vector<std::string> lines;
    for (std::uint32_t row = 0; row < rows.count(); ++row) {
        std::string line;
        for (int column = 0; column < static_cast<int>(rows.columns().size()); ++column) {
            const DrillRows::Cell cell = rows.cell(column, row);
            line += (column > 0 ? "|" : "") + (cell.isNull ? std::string("<null>") : std::string(cell.text));
        }
        lines.push_back(line);
    }
    return lines;
}

std::vector<std::string> headingsOf(const DrillRows& rows) {
    std::vector<std::string> headings;
    for (const DrillColumn& column : rows.columns())
        headings.push_back(column.name + ":" + std::to_string(static_cast<int>(column.type)));
    return headings;
}

TEST(DrillReader, RowsOfADrillCursorWithItsTypes) {
    FakeSource source = sampleSource({"a", ""});
    source.rows.push_back({KvbString(), KvbString("7"), KvbString()});
    const DrillResult result = readDrillRows(openDrill(source), DrillSourceMode::Rows, kMany, nullptr);
    EXPECT_EQ(result.end, DrillEnd::Complete);
    EXPECT_THAT(headingsOf(result.rows), ElementsAre("id:2", "price:3", "name:4"));
    EXPECT_THAT(linesOf(result.rows), ElementsAre("0|0.5|a", "1|1.5|", "<null>|7|<null>"));
    EXPECT_EQ(source.released, 1);
}

TEST(DrillReader, ColumnsOfAProfileCursorAreTexts) {
    FakeSource source = sampleSource({"a"});
    const DrillResult result = readDrillRows(openProfile(source), DrillSourceMode::Rows, kMany, nullptr);
    EXPECT_THAT(headingsOf(result.rows), ElementsAre("id:4", "price:4", "name:4"));
    EXPECT_THAT(linesOf(result.rows), ElementsAre("0|0.5|a"));
    EXPECT_EQ(source.released, 1);
}

TEST(DrillReader, ARuleLogBeginsWithItsFourthColumn) {
    FakeSource source{{"Row", "Rule Id", "Position", "id"}, {}, {{"9", "1", "0", "x"}, {"12", "1", "1", KvbString()}}};
    DrillResult result = readDrillRows(openProfile(source), DrillSourceMode::RuleLog, kMany, nullptr);
    EXPECT_THAT(headingsOf(result.rows), ElementsAre("id:4"));
    EXPECT_THAT(linesOf(result.rows), ElementsAre("x", "<null>"));
    source.names.pop_back();
    result = readDrillRows(openProfile(source), DrillSourceMode::RuleLog, kMany, nullptr);
    EXPECT_THAT(headingsOf(result.rows), IsEmpty());
    EXPECT_EQ(result.rows.count(), 0U);
    EXPECT_EQ(source.released, 2);
}

TEST(DrillReader, StopsAtTheLimitWithoutAskingForMore) {
    FakeSource source = sampleSource({"a", "b", "c"});
    source.failsAt = 2;
    const DrillResult result = readDrillRows(openDrill(source), DrillSourceMode::Rows, 2, nullptr);
    EXPECT_EQ(result.end, DrillEnd::LimitReached);
    EXPECT_EQ(result.rows.count(), 2U);
    EXPECT_EQ(source.asked, 2U);
    EXPECT_EQ(source.released, 1);
}

TEST(DrillReader, AFailureLeavesTheWholeRowsThatWereRead) {
    for (const bool inside : {false, true}) {
        FakeSource source = sampleSource({"a", "b", "c"});
        (inside ? source.failsInside : source.failsAt) = 1;
        const DrillResult result = readDrillRows(openDrill(source), DrillSourceMode::Rows, kMany, nullptr);
        EXPECT_EQ(result.end, DrillEnd::Failed);
        EXPECT_EQ(result.reason, inside ? "The row is damaged." : "The source is gone.");
        EXPECT_THAT(linesOf(result.rows), ElementsAre("0|0.5|a"));
        EXPECT_EQ(source.released, 1);
    }
    EXPECT_EQ(readDrillRows(PrViewerDrillCursorHandle(), DrillSourceMode::Rows, kMany, nullptr).end, DrillEnd::Failed);
}

TEST(DrillReader, CancellingKeepsWhatWasRead) {
    FakeSource source = sampleSource(std::vector<std::string>(5000, "x"));
    const auto watch = [](std::int64_t rows) { return rows < 1000; };
    DrillResult result = readDrillRows(openDrill(source), DrillSourceMode::Rows, 1'000'000, watch);
    EXPECT_EQ(result.end, DrillEnd::Cancelled);
    EXPECT_GE(result.rows.count(), 1000U);
    EXPECT_LT(result.rows.count(), 2000U);
    // A source that was told to stop ends or throws.
    source.rows.resize(3);
    const auto never = [](std::int64_t) { return false; };
    EXPECT_EQ(readDrillRows(openDrill(source), DrillSourceMode::Rows, kMany, never).end, DrillEnd::Cancelled);
    source.failsAt = 2;
    EXPECT_EQ(readDrillRows(openDrill(source), DrillSourceMode::Rows, kMany, never).end, DrillEnd::Cancelled);
    EXPECT_EQ(source.released, 3);
}

TEST(DrillTexts, TheLimit) {
    const auto settings = makeMemorySettings();
    const auto limit = [&settings](const char* text) {
        EXPECT_TRUE(settings->write("TAVIX", "MaxDrillThruRows", text).ok());
        return readInteger(*settings, Setting::MaxDrillThruRows);
    };
    EXPECT_EQ(readInteger(*settings, Setting::MaxDrillThruRows), 1000);
    EXPECT_EQ(limit(""), 1000);
    EXPECT_EQ(limit("0"), 1);
    EXPECT_EQ(limit("-5"), 1);
    EXPECT_EQ(limit("many"), 1);
    EXPECT_EQ(limit("250 rows"), 250);
    EXPECT_EQ(limit("3000000000"), 2'000'000'000);
}

TEST(DrillTexts, NotOfferedWithOneTypeOfConnection) {
    const auto settings = makeMemorySettings();
    EXPECT_TRUE(isDrillOffered(*settings));
    for (const char* type : {"CTDD", "ctdd", "CtDd"}) {
        ASSERT_TRUE(settings->write("Settings", "ConnectionType", type).ok());
        EXPECT_FALSE(isDrillOffered(*settings)) << type;
    }
    ASSERT_TRUE(settings->write("Settings", "ConnectionType", "CTDDX").ok());
    EXPECT_TRUE(isDrillOffered(*settings));
}

TEST(DrillTexts, TheStatusSaysWhyThereAreTheseRows) {
    DrillResult result;
    result.rows = DrillRows({{"x", kvbType::Text}});
    for (int row = 0; row < 1198; ++row) {
        result.rows.add(KvbString("v"));
        result.rows.endRow();
    }
    EXPECT_EQ(drillStatus(result, {}), "1,198 rows");
    EXPECT_EQ(drillStatus(result, 1198), "1,198 rows");
    EXPECT_EQ(drillStatus(result, 1204), "1,204 in the run, 1,198 now: the source changed since");
    EXPECT_EQ(drillStatus(result, 0), "0 in the run, 1,198 now: the source changed since");
    result.end = DrillEnd::LimitReached;
    EXPECT_EQ(drillStatus(result, 1198), "1,198 rows");
    EXPECT_EQ(drillStatus(result, 5000), "The first 1,198 rows of 5,000: the limit in the options is reached");
    EXPECT_EQ(drillStatus(result, {}), "The first 1,198 rows: the limit in the options is reached");
    result.end = DrillEnd::Failed;
    result.reason = "The file is gone.";
    EXPECT_EQ(drillStatus(result, 5000), "Incomplete: the first 1,198 rows. The file is gone.");
    result = {std::move(result.rows), DrillEnd::Complete, "", "The file is newer than the run."};
    EXPECT_EQ(drillStatus(result, 1198), "1,198 rows. The file is newer than the run.");
    result = {std::move(result.rows), DrillEnd::Cancelled, "", ""};
    EXPECT_EQ(drillStatus(result, 5000), "Cancelled: the first 1,198 rows");
}

} // namespace
} // namespace tavix
