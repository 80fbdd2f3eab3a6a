#include "access/PrViewer.h"
#include "base/Metrics.h"
#include "base/tests/TempFolder.h"
#include "support/SampleRepository.h"
#include "tabs/StdMetRows.h"

#include <gmock/gmock.h>

namespace tavix {
namespace {

using ::testing::StartsWith;

std::vector<MetricDisplay> metrics(const std::vector<MetricId>& shownInOrder) {
    std::vector<MetricDisplay> list;
    for (const MetricInfo& metric : metricCatalogue())
        list.push_back({std::string(metric.name), false, 0});
    int position = 0;
    for (const MetricId id : shownInOrder) {
        list[index(id)].shown = true;
        list[index(id)].position = position++;
    }
    return list;
}

std::string line(const StdMetRows& rows, std::int64_t row) {
    std::string text;
    for (int column = 0; column < rows.GetColumnCount(); ++column) {
        const GridCell cell = rows.GetCell(column, row);
        text += (column ? "|" : "") + cell.text;
        if (cell.icon != CellIcon::None)
            text += "<" + std::to_string(static_cast<int>(cell.icon)) + ">";
        if (cell.state == CellState::Unknown)
            text += "?";
        if (cell.alertMark)
            text += "!";
    }
    return text;
}

std::string headings(const StdMetRows& rows) {
    std::string text;
    for (int column = 0; column < rows.GetColumnCount(); ++column) {
        const GridColumn heading = rows.GetColumn(column);
        text += (column ? "|" : "") + heading.heading + ":" + std::to_string(heading.width) + ":" +
                std::to_string(heading.parameter) + (heading.locked ? ":locked" : "");
    }
    return text;
}

class StdMetRowsOfSample : public ::testing::Test {
  protected:
    void SetUp() override {
        m_sample = testing::SampleRepository::build(m_folder.file("sample.tavix"));
        m_viewer = PrViewer::create();
        ASSERT_TRUE(m_viewer->init(m_sample.path));
        ASSERT_TRUE(m_viewer->setCurrentJobSetup(m_sample.salesJob));
        m_customers.kind = ReportSelection::Kind::Table;
        m_customers.table.id = m_sample.tables.at("customers");
        m_customers.table.name = "customers";
        m_keys.kind = ReportSelection::Kind::Collection;
        m_keys.id = m_sample.collections.at("Customer keys");
    }
    void TearDown() override { m_viewer->close(); }

    testing::TempFolder m_folder;
    testing::SampleRepository m_sample;
    PrViewer::Handle m_viewer;
    ReportSelection m_customers;
    ReportSelection m_keys;
    StdMetRows m_rows;
};

TEST_F(StdMetRowsOfSample, withoutShownMetricsThereAreFourColumns) {
    ASSERT_TRUE(m_rows.Fill(*m_viewer, m_customers, metrics({}), {}));
    EXPECT_EQ("Field Name:130:-1:locked|Collections:130:-1|P:25:-1|R:25:-1", headings(m_rows));
    ASSERT_TRUE(m_rows.Fill(*m_viewer, m_keys, metrics({}), {}));
    EXPECT_EQ("Field Name:130:-1:locked|Source:130:-1|P:25:-1|R:25:-1", headings(m_rows));
}

TEST_F(StdMetRowsOfSample, shownMetricsAreColumnsInTheUsersOrder) {
    ASSERT_TRUE(m_rows.Fill(*m_viewer, m_customers, metrics({MetricId::Mean, MetricId::Count}), {}));
    EXPECT_EQ("Field Name:130:-1:locked|Collections:130:-1|Mean:130:10|Count:130:0|P:25:-1|R:25:-1", headings(m_rows));
}

TEST_F(StdMetRowsOfSample, fieldsCarryTheirCollectionsPicturesAndUnknownMetrics) {
    const int id = m_sample.fields.at("customers/id");
    const CollectionsByField collections = {{id, {"Customer keys", "Other"}}};
    ASSERT_TRUE(m_rows.Fill(*m_viewer, m_customers, metrics({MetricId::Mean}), collections));
    const std::int64_t idRow = m_rows.FindField(id);
    ASSERT_GE(idRow, 0);
    // It takes part in a redundancy analysis.
    EXPECT_EQ("id<2>|Customer keys, Other|500.5||<4>", line(m_rows, idRow));
    const std::int64_t remark = m_rows.FindField(m_sample.fields.at("customers/remark"));
    ASSERT_GE(remark, 0);
    EXPECT_EQ("remark<1>||(Unknown)?||", line(m_rows, remark));
    EXPECT_EQ(-1, m_rows.FindField(-1));

    ReportSelection suppliers = m_customers;
    suppliers.table.id = m_sample.tables.at("suppliers");
    ASSERT_TRUE(m_rows.Fill(*m_viewer, suppliers, metrics({}), {}));
    const std::int64_t keyRow = m_rows.FindField(m_sample.fields.at("suppliers/id"));
    ASSERT_GE(keyRow, 0);
    EXPECT_THAT(line(m_rows, keyRow), StartsWith("id<1>||<3>|"));
}

TEST_F(StdMetRowsOfSample, aCollectionTellsWhereItsFieldsComeFrom) {
    ASSERT_TRUE(m_rows.Fill(*m_viewer, m_keys, metrics({}), {}));
    const std::int64_t row = m_rows.FindField(m_sample.fields.at("customers/id"));
    ASSERT_GE(row, 0);
    EXPECT_THAT(line(m_rows, row), StartsWith("id<1>|Warehouse.crm.public.customers|"));
}

TEST_F(StdMetRowsOfSample, sortingPutsNumbersBeforeUnknownAndBackAgain) {
    ASSERT_TRUE(m_rows.Fill(*m_viewer, m_customers, metrics({MetricId::Mean}), {}));
    ASSERT_TRUE(m_rows.Sort(2, false));
    double last = -1e300;
    bool unknownSeen = false;
    for (std::int64_t row = 0; row < m_rows.GetRowCount(); ++row) {
        const GridCell cell = m_rows.GetCell(2, row);
        if (cell.state == CellState::Unknown) {
            unknownSeen = true;
            continue;
        }
        EXPECT_FALSE(unknownSeen);
        EXPECT_LE(last, std::stod(cell.text));
        last = std::stod(cell.text);
    }
    EXPECT_TRUE(unknownSeen);
    ASSERT_TRUE(m_rows.Sort(2, true));
    EXPECT_EQ(CellState::Unknown, m_rows.GetCell(2, 0).state);
    EXPECT_FALSE(m_rows.Sort(99, false));
}

TEST_F(StdMetRowsOfSample, aRepositoryThatIsGoneIsAnErrorWithoutRows) {
    m_viewer->close();
    EXPECT_FALSE(m_rows.Fill(*m_viewer, m_customers, metrics({}), {}));
    EXPECT_FALSE(m_rows.GetErrorText().empty());
    EXPECT_EQ(0, m_rows.GetRowCount());
}

TEST_F(StdMetRowsOfSample, nothingSelectedIsNothing) {
    ASSERT_TRUE(m_rows.Fill(*m_viewer, {}, metrics({MetricId::Mean}), {}));
    EXPECT_EQ(0, m_rows.GetColumnCount());
    EXPECT_EQ(0, m_rows.GetRowCount());
}

} // namespace
} // namespace tavix
