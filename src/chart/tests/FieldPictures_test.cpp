#include "access/PrViewer.h"
#include "base/tests/TempFolder.h"
#include "chart/FieldPictures.h"
#include "chart/tests/DrawingText.h"
#include "report/FieldHistogram.h"
#include "report/FieldRecords.h"
#include "report/ReportTables.h"
#include "sql/Connection.h"
#include "support/SampleFits.h"
#include "support/SampleRepository.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <string>

namespace tavix::chart {
namespace {

using tavix::testing::SampleRepository;
using tavix::testing::TempFolder;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::SizeIs;

class FieldPictures : public ::testing::Test {
  protected:
    void SetUp() override { open(); }

    void open() {
        m_viewer = PrViewer::create();
        ASSERT_TRUE(m_viewer->init(m_sample.path) && m_viewer->setCurrentJobSetup(m_sample.salesJob));
    }
    FieldRecord field(const std::string& table, const std::string& name) {
        ReportSelection selection;
        selection.kind = ReportSelection::Kind::Table;
        selection.table.id = m_sample.tables.at(table);
        selection.fieldId = m_sample.fields.at(table + "/" + name);
        FieldRecords records;
        return **records.Find(*m_viewer, selection);
    }
    void change(const std::string& sql) {
        m_viewer->close();
        auto connection = sql::Connection::openFile(m_sample.path, sql::OpenMode::Write);
        ASSERT_TRUE(connection && (*connection)->execute(sql)) << sql;
        open();
    }

    TempFolder m_folder;
    SampleRepository m_sample = SampleRepository::build(m_folder.file("sample.tavix"));
    PrViewer::Handle m_viewer = PrViewer::create();
};

TEST_F(FieldPictures, DrawFewValuesAsBars) {
    const auto shown = pictureOfValues(*m_viewer, field("customers", "active"));
    ASSERT_TRUE(shown && shown->picture);
    const Drawing drawing = shown->picture->draw(plainCanvas(400, 200));
    EXPECT_THAT(testing::hits(drawing), ElementsAre("true: 700 rows, 70.0 %", "false: 300 rows, 30.0 %"));
    EXPECT_EQ(drawing.hits[0].action, (Action{ActionKind::DrillValue, "true"}));
    const auto nulls = pictureOfValues(*m_viewer, field("customers", "remark"));
    ASSERT_TRUE(nulls && nulls->picture);
    EXPECT_EQ(nulls->picture->description(), "(null value): 1,000 rows, 100.0 %.");
    EXPECT_TRUE(nulls->picture->draw(plainCanvas(400, 200)).hits.at(0).action.text.isNull());
}

TEST_F(FieldPictures, DrawStoredHistogramsAndComputeThoseOfOlderRuns) {
    change("UPDATE run_field SET value_rows = 500 WHERE field = " +
           fmt::format("{}", m_sample.fields.at("customers/balance")));
    const auto stored = pictureOfValues(*m_viewer, field("customers", "balance"));
    ASSERT_TRUE(stored && stored->picture);
    const Drawing drawing = stored->picture->draw(plainCanvas(500, 300));
    EXPECT_THAT(testing::hits(drawing),
                ElementsAre("-1,000 to -500: 3 rows, 0.33 %", "-500 to 0: 900 rows, 99.2 %",
                            "500 to 1,000: 4 rows, 0.44 %",
                            HasSubstr("Median 1.5 · mean 12.346 · middle half -3.5 to 12.346")));

    // The run stored no histogram of this text field.
    const FieldRecord city = field("customers", "city");
    const auto counted = pictureOfValues(*m_viewer, city);
    ASSERT_TRUE(counted && counted->picture);
    EXPECT_EQ(counted->picture->title(), "Lengths of texts, in characters");
    EXPECT_THAT(counted->picture->draw(plainCanvas(500, 300)).hits, SizeIs(3)) << "City 1, City 10, City 100";
    FieldRecord many = city;
    many.freqCount = kMostToCount + 1;
    const auto missing = pictureOfValues(*m_viewer, many);
    ASSERT_TRUE(missing);
    EXPECT_EQ(missing->picture, nullptr);
    EXPECT_EQ(missing->note, "This run stored no histogram; profile again to see it.");
}

TEST_F(FieldPictures, DrawRanksPatternsPercentilesAndOutliers) {
    const auto hitsOf = [&](auto read, const std::string& name) {
        const auto shown = read(*m_viewer, field("customers", name));
        EXPECT_TRUE(shown && shown->picture);
        return shown && shown->picture ? testing::hits(shown->picture->draw(plainCanvas(500, 300)))
                                       : std::vector<std::string>();
    };
    EXPECT_THAT(
        hitsOf(pictureOfRanks, "city"),
        ElementsAre("The most frequent value: 150 rows, 1.3 %", "The first 2 of 151 values: 299 rows, 2.6 %",
                    "The first 5 of 151 values: 740 rows, 6.5 %", "The first 10 of 151 values: 1,455 rows, 12.8 %",
                    "The first 20 of 151 values: 2,810 rows, 24.8 %", "The first 50 of 151 values: 6,275 rows, 55.4 %",
                    "The first 100 of 151 values: 10,050 rows, 88.7 %",
                    "The first 151 of 151 values: 11,332 rows, 100.0 %"));
    EXPECT_THAT(hitsOf(pictureOfPercentiles, "balance"),
                ElementsAre("5 % of the values are at most -3.5", "25 % of the values are at most -3.5",
                            "50 % of the values are at most 1.5", "75 % of the values are at most 12.3456789"));
    EXPECT_THAT(hitsOf(pictureOfOutliers, "balance"),
                ElementsAre("-900: 1 row, beyond 3 times the interquartile range", "-899: 1 row", "-898: 1 row",
                            "9000: 2 rows, beyond 1.5 times the interquartile range",
                            "8999: 2 rows, beyond 1.5 times the interquartile range", "8998: 2 rows", "8997: 2 rows",
                            "8996: 2 rows"));
    const auto texts = pictureOfPercentiles(*m_viewer, field("customers", "city"));
    ASSERT_TRUE(texts);
    EXPECT_EQ(texts->note, "Only numbers and dates have a curve of percentiles.");
    EXPECT_THAT(
        hitsOf(pictureOfPatterns, "city"),
        ElementsAre("Aaaa 99: 8,685 rows, 76.7 %", "Aaaa 999: 1,326 rows, 11.7 %", "Aaaa 9: 1,314 rows, 11.6 %"));
    FieldRecord missing = field("customers", "city");
    missing.id = 999;
    EXPECT_FALSE(pictureOfRanks(*m_viewer, missing));
}

TEST_F(FieldPictures, SayOverWhichValuesTheyAre) {
    tavix::testing::makeFits(m_sample, 999, "real decimal-comma");
    change(fmt::format("UPDATE run_field SET value_rows = 500 WHERE field = {0}; UPDATE outlier SET value = "
                       "'9.000,5' WHERE field = {0} AND side = 'H' AND position = 0",
                       m_sample.fields.at("customers/balance")));
    const FieldRecord balance = field("customers", "balance");
    const std::string base = "Over the 999 of 1,000 values that are numbers with a decimal comma";
    for (const auto read : {pictureOfValues, pictureOfPercentiles, pictureOfOutliers}) {
        const auto shown = read(*m_viewer, balance);
        ASSERT_TRUE(shown && shown->picture);
        EXPECT_EQ(base, shown->base);
    }
    const auto values = pictureOfValues(*m_viewer, balance);
    EXPECT_EQ("Distribution of numbers", values->picture->title());
    EXPECT_EQ(KvbString("tonumber(`Value`, 'real decimal-comma') >= -1000 and tonumber(`Value`, 'real decimal-comma') "
                        "< -500"),
              values->picture->draw(plainCanvas(500, 300)).hits.at(0).action.text);
    EXPECT_EQ(KvbString("tonumber(`Value`, 'real decimal-comma') <= 12.3456789"),
              pictureOfPercentiles(*m_viewer, balance)->picture->draw(plainCanvas(500, 300)).hits.at(3).action.text);
    const auto outliers = pictureOfOutliers(*m_viewer, balance);
    EXPECT_THAT(testing::hits(outliers->picture->draw(plainCanvas(500, 300))), Contains(HasSubstr("9.000,5: 2 rows")));
    EXPECT_EQ("", pictureOfPatterns(*m_viewer, balance)->base) << "of all values";
    EXPECT_EQ("", pictureOfOutliers(*m_viewer, field("customers", "id"))->base);
}

TEST_F(FieldPictures, SayWhatTheyCannotRead) {
    change(fmt::format("UPDATE run_field SET value_rows = 500 WHERE field = {0}; "
                       "UPDATE histogram SET counts = '[' WHERE field = {0}",
                       m_sample.fields.at("customers/balance")));
    const auto damaged = pictureOfValues(*m_viewer, field("customers", "balance"));
    ASSERT_FALSE(damaged);
    EXPECT_EQ(damaged.error().text, "A stored histogram is damaged.");
    FieldRecord none = field("customers", "active");
    none.freqCount = 0;
    const auto empty = pictureOfValues(*m_viewer, none);
    ASSERT_TRUE(empty);
    EXPECT_EQ(empty->picture, nullptr);
}

} // namespace
} // namespace tavix::chart
