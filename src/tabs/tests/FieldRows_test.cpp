#include "report/ReportTables.h"
#include "support/RowsText.h"
#include "support/RunScript.h"
#include "support/SampleFits.h"
#include "support/SampleViewer.h"
#include "tabs/ColProfRows.h"
#include "tabs/OutlierRows.h"
#include "tabs/PercentileRows.h"
#include "tabs/PkFkRows.h"
#include "tabs/SubjectText.h"

#include <gmock/gmock.h>

namespace tavix {
namespace {

using ::testing::ElementsAre;
using ::testing::StartsWith;

using FieldRows = testing::SampleViewer;

TEST_F(FieldRows, ColumnProfilingShowsEveryMetricInTheUsersOrder) {
    std::vector<MetricDisplay> metrics;
    for (const MetricInfo& metric : metricCatalogue())
        metrics.push_back({std::string(metric.name), false, 1});
    metrics[index(MetricId::StandardDeviation)].position = 0;
    metrics[index(MetricId::PercentNull)].shown = true;

    ColProfRows rows;
    rows.Fill(field("customers/balance"), metrics);
    EXPECT_EQ("Metric Name:180|Metric Value:180", headingsOf(rows));
    EXPECT_EQ("Counts and percentages of 1,000 records", rows.GetBase().text);
    ASSERT_EQ(24, rows.GetRowCount());
    EXPECT_EQ("Standard Deviation|1234567", lineOf(rows, 0));
    EXPECT_EQ("Count|1,000", lineOf(rows, 1));
    EXPECT_EQ("Mean|12.346", lineOf(rows, 11));
    EXPECT_EQ("Median|1.5", lineOf(rows, 12));
    EXPECT_EQ("Precision|(Unknown)?", lineOf(rows, 20));

    rows.Fill(field("customers/balance"), metrics, true);
    EXPECT_EQ("Unique Count (sample)|4", lineOf(rows, 2));
    EXPECT_EQ("Unique Count", rows.GetCell(0, 2).text) << "the mark stands beside the name";

    // Metrics of a text field are not rounded; percentages of all rows have a bar.
    FieldRecord text = field("customers/name");
    text.metrics[index(MetricId::Mean)] = "12.3456789";
    rows.Fill(text, metrics);
    EXPECT_EQ("Mean|12.3456789", lineOf(rows, 11));
    EXPECT_EQ("Unique Percent|0.40 %[0.00]", lineOf(rows, 22));
    EXPECT_EQ("Percent Null|22.80 %[0.23]", lineOf(rows, 23));
    for (const bool descending : {false, true}) {
        ASSERT_TRUE(rows.Sort(1, descending));
        EXPECT_EQ(CellState::Unknown, rows.GetCell(1, 23).state) << "after every figure, whatever the direction";
        EXPECT_NE(CellState::Unknown, rows.GetCell(1, 0).state);
    }
    text.metrics[index(MetricId::PercentNull)] = "not a number";
    rows.Fill(text, metrics);
    EXPECT_EQ("Percent Null|not a number", lineOf(rows, 23));
    rows.Clear();
    EXPECT_EQ(0, rows.GetRowCount());
}

TEST_F(FieldRows, FiguresOverWhatFitsAreMarkedAndRounded) {
    testing::makeFits(m_sample, 999, "real");
    const auto fields = readFields(*m_viewer, m_sample.tables.at("customers"));
    const FieldRecord& balance = fields.at(2);
    ASSERT_EQ("S", balance.typeCode);
    std::vector<MetricDisplay> metrics;
    for (const MetricInfo& metric : metricCatalogue())
        metrics.push_back({std::string(metric.name), false, 0});

    ColProfRows rows;
    rows.Fill(balance, metrics, true);
    EXPECT_EQ("Count|1,000", lineOf(rows, 0));
    EXPECT_EQ("Minimum Value (sample, fits)|-3.5", lineOf(rows, 6));
    EXPECT_EQ("Mean (fits)|12.346", lineOf(rows, 10));
    EXPECT_EQ("Over the 999 of 1,000 values that are numbers", rows.GetToolTip(0, 10));
    EXPECT_EQ("Mode|12.3456789", lineOf(rows, 12)) << "of all rows";
    EXPECT_EQ("", rows.GetToolTip(0, 12));

    PercentileRows percentiles;
    ASSERT_TRUE(percentiles.Fill(*m_viewer, balance));
    EXPECT_EQ("Interval:180|Value{(fits)}:180", headingsOf(percentiles));
    EXPECT_EQ("Percentiles of the 999 of 1,000 values that are numbers, by linear", percentiles.GetBase().text);
    ASSERT_TRUE(percentiles.Fill(*m_viewer, fields.at(0)));
    EXPECT_EQ("Interval:180|Value:180", headingsOf(percentiles)) << "another field has no mark";

    OutlierRows outliers;
    ASSERT_TRUE(outliers.Fill(*m_viewer, balance));
    EXPECT_EQ("Minimum Values{(fits)}:180|Maximum Values{(fits)}:180", headingsOf(outliers));
    EXPECT_EQ("The 3 lowest and the 5 highest of the 999 of 1,000 values that are numbers", outliers.GetBase().text);
    EXPECT_THAT(outliers.GetBase().toolTip, StartsWith("A mark shows a value beyond a fence"));

    ReportSubject subject;
    subject.selection.fieldId = balance.id;
    subject.field = balance;
    EXPECT_THAT(detailOf(subject), StartsWith("text  ·  999 of 1,000 are numbers  ·  "));
}

TEST_F(FieldRows, PercentilesShowIntervalsAndValuesAndTheirRule) {
    PercentileRows rows;
    ASSERT_TRUE(rows.Fill(*m_viewer, field("customers/balance")));
    EXPECT_EQ("Interval:180|Value:180", headingsOf(rows));
    EXPECT_EQ("Value, by linear", rows.GetColumn(1).toolTip);
    EXPECT_THAT(linesOf(rows), ElementsAre("5%|-3.5", "25%|-3.5", "50%|1.5", "75%|12.3456789", "95%|(null value)~"));
    for (const int position : {1, 3})
        testing::runScript(m_sample.path, fmt::format("UPDATE percentile SET interval = '{} %' WHERE field = {} AND "
                                                      "position = {}",
                                                      position == 1 ? "10" : "100",
                                                      m_sample.fields.at("customers/balance"), position));
    ASSERT_TRUE(rows.Fill(*m_viewer, field("customers/balance")));
    const std::vector<std::string> inOrder = linesOf(rows);
    ASSERT_TRUE(rows.Sort(0, true));
    EXPECT_THAT(linesOf(rows), ElementsAre(inOrder[3], inOrder[4], inOrder[2], inOrder[1], inOrder[0]))
        << "by the figure, 100 % before 95 %";
    ASSERT_TRUE(rows.Fill(*m_viewer, field("customers/balance")));
    ASSERT_TRUE(rows.Sort(1, true));
    EXPECT_EQ("95%|(null value)~", lineOf(rows, 0));
    EXPECT_EQ(4, rows.GetRowKey(0));

    ASSERT_TRUE(rows.Fill(*m_viewer, field("customers/name")));
    EXPECT_THAT(linesOf(rows), ElementsAre("(Not calculated)?|"));
    EXPECT_TRUE(rows.IsPlaceholder());
}

TEST_F(FieldRows, TheNthLowestAndHighestValueShareARow) {
    OutlierRows rows;
    ASSERT_TRUE(rows.Fill(*m_viewer, field("customers/balance")));
    EXPECT_EQ("Minimum Values:180|Maximum Values:180", headingsOf(rows));
    const std::string beyond = fmt::format("<{}>", static_cast<int>(CellIcon::BeyondFence));
    const std::string farBeyond = fmt::format("<{}>", static_cast<int>(CellIcon::FarBeyondFence));
    EXPECT_THAT(linesOf(rows), ElementsAre("-900" + farBeyond + "|9000" + beyond, "-899|8999" + beyond, "-898|8998",
                                           "|8997", "|8996"));
    EXPECT_EQ(KvbString("-898"), rows.GetValue(0, 2));
    EXPECT_EQ(std::nullopt, rows.GetValue(0, 3));
    EXPECT_EQ(KvbString("8997"), rows.GetValue(1, 3));

    ASSERT_TRUE(rows.Fill(*m_viewer, field("customers/name")));
    EXPECT_THAT(linesOf(rows), ElementsAre("(Not calculated)?|"));
    EXPECT_EQ(std::nullopt, rows.GetValue(0, 0));
}

TEST_F(FieldRows, PercentilesAndOutliersSayOfWhichValuesAndByWhichRule) {
    FieldRecord balance = field("customers/balance");
    PercentileRows percentiles;
    OutlierRows outliers;
    EXPECT_EQ(ListBase(), percentiles.GetBase());
    balance.quantileRule = "nearest rank";
    balance.typeCode = "D";
    ASSERT_TRUE(percentiles.Fill(*m_viewer, balance));
    EXPECT_EQ("Percentiles of the dates in 1,000 non-null values, by nearest rank", percentiles.GetBase().text);
    EXPECT_THAT(percentiles.GetBase().toolTip,
                StartsWith("With the n values in order, the percentile is the value at"));
    balance.quantileRule = "linear interpolation (R type 7)";
    balance.typeCode = "I";
    ASSERT_TRUE(percentiles.Fill(*m_viewer, balance));
    EXPECT_EQ("Percentiles of the numbers in 1,000 non-null values, by linear interpolation (R type 7)",
              percentiles.GetBase().text);
    EXPECT_THAT(percentiles.GetBase().toolTip, StartsWith("With the n values in order and h = (n − 1) · p / 100"));
    ASSERT_TRUE(outliers.Fill(*m_viewer, balance));
    EXPECT_THAT(outliers.GetBase().text, StartsWith("The 3 lowest and the 5 highest of the numbers in "));
    EXPECT_THAT(outliers.GetBase().toolTip, StartsWith("A mark shows a value beyond a fence: below Q1 − 1.5 · IQR"));
    balance.typeCode = "S";
    balance.quantileRule.clear();
    ASSERT_TRUE(percentiles.Fill(*m_viewer, balance));
    EXPECT_EQ((ListBase{"Percentiles of 1,000 non-null values", ""}), percentiles.GetBase());
    ASSERT_TRUE(percentiles.Fill(*m_viewer, field("customers/name")));
    EXPECT_EQ(ListBase(), percentiles.GetBase()) << "not calculated";
}

TEST_F(FieldRows, DamagedOutliersAreLeftOut) {
    const FieldRecord balance = field("customers/balance");
    testing::runScript(m_sample.path,
                       fmt::format("UPDATE outlier SET value = NULL WHERE field = {0} AND side = 'L' AND position = 1;"
                                   "UPDATE outlier SET position = 2000000000 WHERE field = {0} AND side = 'H' AND "
                                   "position = 3;"
                                   "UPDATE outlier SET position = -5 WHERE field = {0} AND side = 'H' AND position = 4",
                                   balance.id));
    OutlierRows rows;
    ASSERT_TRUE(rows.Fill(*m_viewer, balance));
    ASSERT_EQ(3, rows.GetRowCount());
    EXPECT_THAT(lineOf(rows, 1), StartsWith("(null value)~|8999"));
    EXPECT_EQ(KvbString(), rows.GetValue(0, 1));
}

TEST_F(FieldRows, KeyAnalysesTellWhereTheOtherFieldIs) {
    PkFkRows rows;
    ASSERT_TRUE(rows.Fill(*m_viewer, m_sample.fields.at("suppliers/id")));
    EXPECT_EQ("Field Name:100|Table Name:100|Schema Name:100|Catalog Name:100|Data Source Name:115|"
              ">Match Percentage:115",
              headingsOf(rows));
    EXPECT_THAT(linesOf(rows), ElementsAre("id|customers|public|crm|Warehouse|>60.00[0.60]"));
    EXPECT_EQ("", rows.GetEmptyText());

    ASSERT_TRUE(rows.Fill(*m_viewer, m_sample.fields.at("customers/name")));
    EXPECT_EQ(0, rows.GetRowCount());
    EXPECT_EQ("No primary key/foreign key analysis of this field is stored.", rows.GetEmptyText());

    // A report that contains the field only through a collection shows the analyses of the field's own run.
    ASSERT_TRUE(m_viewer->setCurrentJobSetup(m_sample.inventoryJob));
    const int suppliers = m_sample.fields.at("suppliers/id");
    ASSERT_TRUE(rows.Fill(*m_viewer, suppliers)) << rows.GetErrorText();
    EXPECT_THAT(linesOf(rows), ElementsAre("id|customers|public|crm|Warehouse|>60.00[0.60]"));
    const ProfileCursorHandle outliers =
        m_viewer->getPKFKAnalysisOutliers(suppliers, m_sample.fields.at("customers/id"));
    ASSERT_TRUE(outliers) << m_viewer->getErrorString().view();
    ASSERT_TRUE(outliers->next());
    EXPECT_EQ(KvbString("5001"), outliers->getColumnValue(layout::KeyOutlierValue));
}

TEST_F(FieldRows, AFailureLeavesTheRowsThatAreShown) {
    const FieldRecord balance = field("customers/balance");
    PercentileRows percentiles;
    OutlierRows outliers;
    PkFkRows keys;
    ASSERT_TRUE(percentiles.Fill(*m_viewer, balance));
    ASSERT_TRUE(outliers.Fill(*m_viewer, balance));
    ASSERT_TRUE(keys.Fill(*m_viewer, m_sample.fields.at("suppliers/id")));
    m_viewer->close();
    EXPECT_FALSE(percentiles.Fill(*m_viewer, balance));
    EXPECT_FALSE(outliers.Fill(*m_viewer, balance));
    EXPECT_FALSE(keys.Fill(*m_viewer, m_sample.fields.at("suppliers/id")));
    EXPECT_EQ(5, percentiles.GetRowCount());
    EXPECT_EQ(5, outliers.GetRowCount());
    EXPECT_EQ(1, keys.GetRowCount());
    const std::string reason = "\n\n" + m_viewer->getErrorString().str();
    EXPECT_EQ("Error occurred while retrieving percentiles:" + reason, percentiles.GetErrorText());
    EXPECT_EQ("Error occurred while retrieving outliers:" + reason, outliers.GetErrorText());
    EXPECT_EQ("Error occurred while retrieving analysis results:" + reason, keys.GetErrorText());
}

} // namespace
} // namespace tavix
