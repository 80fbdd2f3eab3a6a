#include "base/Metrics.h"
#include "report/ReportTables.h"
#include "support/RunScript.h"
#include "support/SampleFits.h"
#include "support/SampleViewer.h"
#include "tabs/StdMetRows.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <functional>

namespace tavix {
namespace {

using ::testing::ElementsAre;
using ::testing::StartsWith;
using ::testing::UnorderedElementsAre;

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
        text += (column ? "|" : "") + shownText(cell);
        if (cell.icon != CellIcon::None)
            text += "<" + std::to_string(static_cast<int>(cell.icon)) + ">";
        if (cell.state == CellState::Unknown)
            text += "?";
        if (cell.alert != AlertMark::None)
            text += "!";
    }
    return text;
}

std::string headings(const StdMetRows& rows) {
    std::string text;
    for (int column = 0; column < rows.GetColumnCount(); ++column) {
        const GridColumn heading = rows.GetColumn(column);
        text += (column ? "|" : "") + heading.heading + heading.mark + ":" + std::to_string(heading.width) + ":" +
                std::to_string(heading.parameter) + (heading.locked ? ":locked" : "");
    }
    return text;
}

char letterOf(CellAlignment alignment) {
    return alignment == CellAlignment::Left ? 'L' : alignment == CellAlignment::Right ? 'R' : 'C';
}

class StdMetRowsOfSample : public testing::SampleViewer {
  protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(SampleViewer::SetUp());
        m_customers.kind = ReportSelection::Kind::Table;
        m_customers.table.id = m_sample.tables.at("customers");
        m_customers.table.name = "customers";
        m_keys.kind = ReportSelection::Kind::Collection;
        m_keys.id = m_sample.collections.at("Customer keys");
    }

    std::vector<std::string> lines() {
        std::vector<std::string> lines;
        for (std::int64_t row = 0; row < m_rows.GetRowCount(); ++row)
            lines.push_back(line(m_rows, row));
        return lines;
    }

    ReportSelection m_customers;
    ReportSelection m_keys;
    StdMetRows m_rows;
};

TEST_F(StdMetRowsOfSample, WithoutShownMetricsThereAreFourColumns) {
    ASSERT_TRUE(m_rows.Fill(*m_viewer, m_customers, metrics({}), {}));
    EXPECT_EQ("Field Name:130:-1:locked|Collections:130:-1|P:25:-1|R:25:-1", headings(m_rows));
    ASSERT_TRUE(m_rows.Fill(*m_viewer, m_keys, metrics({}), {}));
    EXPECT_EQ("Field Name:130:-1:locked|Source:130:-1|P:25:-1|R:25:-1", headings(m_rows));
}

TEST_F(StdMetRowsOfSample, ShownMetricsAreColumnsInTheUsersOrder) {
    ASSERT_TRUE(m_rows.Fill(*m_viewer, m_customers, metrics({MetricId::Mean, MetricId::Count}), {}));
    EXPECT_EQ("Field Name:130:-1:locked|Collections:130:-1|Mean:130:10|Count:130:0|P:25:-1|R:25:-1|Filled:86:-1",
              headings(m_rows));
}

// The mark of a sample does not change the column's identity.
TEST_F(StdMetRowsOfSample, MetricsOfTheSampleAloneAreMarked) {
    const auto shown = metrics({MetricId::UniqueCount, MetricId::Mean});
    ASSERT_TRUE(m_rows.Fill(*m_viewer, m_customers, shown, {}));
    const std::string unsampled = m_rows.GetColumn(2).identity();
    ReportSelection orders = m_customers;
    orders.table = *findTable(*m_viewer, m_sample.tables.at("orders"), "Warehouse");
    ASSERT_TRUE(m_rows.Fill(*m_viewer, orders, shown, {}));
    EXPECT_EQ("Field Name:130:-1:locked|Collections:130:-1|Unique "
              "Count(sample):130:1|Mean:130:10|P:25:-1|R:25:-1|Filled:86:-1",
              headings(m_rows));
    EXPECT_EQ(unsampled, m_rows.GetColumn(2).identity());
    EXPECT_NE(unsampled, m_rows.GetColumn(3).identity());
}

TEST_F(StdMetRowsOfSample, FiguresOverWhatFitsAreMarkedInTheirCells) {
    testing::makeFits(m_sample, 999, "real");
    const int balance = m_sample.fields.at("customers/balance");
    ReportSelection amounts;
    amounts.kind = ReportSelection::Kind::Collection;
    amounts.id = m_sample.collections.at("Amounts");
    const auto shown = metrics({MetricId::Count, MetricId::Mean, MetricId::Mode});
    for (const ReportSelection& selection : {m_customers, amounts}) {
        ASSERT_TRUE(m_rows.Fill(*m_viewer, selection, shown, {}, static_cast<int>(MetricId::Mean)));
        const std::int64_t row = m_rows.FindField(balance);
        const GridCell mean = m_rows.GetCell(3, row);
        EXPECT_EQ("12.346 (fits)", shownText(mean) + " " + mean.mark);
        EXPECT_EQ("12.3456789", mean.text) << "the mark is no part of the figure";
        EXPECT_EQ("Over the 999 of 1,000 values that are numbers", m_rows.GetToolTip(3, row));
        EXPECT_EQ("", m_rows.GetCell(2, row).mark + m_rows.GetCell(4, row).mark + m_rows.GetToolTip(2, row));
        EXPECT_EQ("", m_rows.GetCell(3, row == 0 ? 1 : 0).mark) << "of another field";
    }
    ASSERT_TRUE(m_rows.Fill(*m_viewer, m_customers, shown, {}, static_cast<int>(MetricId::Mean)));
    const std::int64_t row = m_rows.FindField(balance);
    EXPECT_EQ("= (fits)", m_rows.GetCell(8, row).text + " " + m_rows.GetCell(8, row).mark) << "the line of runs";
    EXPECT_THAT(m_rows.GetToolTip(8, row), StartsWith("Over the 999 of 1,000 values that are numbers\n"));
}

TEST_F(StdMetRowsOfSample, FieldsCarryTheirCollectionsPicturesAndUnknownMetrics) {
    const int id = m_sample.fields.at("customers/id");
    const CollectionsByField collections = {{id, {"Customer keys", "Other"}}};
    ASSERT_TRUE(m_rows.Fill(*m_viewer, m_customers, metrics({MetricId::Mean}), collections));
    const std::int64_t idRow = m_rows.FindField(id);
    ASSERT_GE(idRow, 0);
    // It takes part in a redundancy analysis.
    EXPECT_EQ("id<2>|Customer keys, Other|500.5||<4>|1,000 filled of 1,000", line(m_rows, idRow));
    const std::int64_t remark = m_rows.FindField(m_sample.fields.at("customers/remark"));
    ASSERT_GE(remark, 0);
    EXPECT_EQ("remark<1>||(Unknown)?|||1,000 null, 0 filled of 1,000", line(m_rows, remark));
    EXPECT_EQ(-1, m_rows.FindField(-1));

    ReportSelection suppliers = m_customers;
    suppliers.table.id = m_sample.tables.at("suppliers");
    ASSERT_TRUE(m_rows.Fill(*m_viewer, suppliers, metrics({}), {}));
    const std::int64_t keyRow = m_rows.FindField(m_sample.fields.at("suppliers/id"));
    ASSERT_GE(keyRow, 0);
    EXPECT_THAT(line(m_rows, keyRow), StartsWith("id<1>||<3>|"));
}

TEST_F(StdMetRowsOfSample, ACollectionShowsMetricsAndSourceOfEachField) {
    const auto shown = metrics({MetricId::Count, MetricId::Mean});
    ASSERT_TRUE(m_rows.Fill(*m_viewer, m_keys, shown, {}));
    // The suppliers' field takes part in a key analysis and in a redundancy analysis, the customers' in the latter.
    EXPECT_THAT(lines(),
                UnorderedElementsAre("id<1>|Warehouse.crm.public.customers|1,000|500.5||<4>|1,000 filled of 1,000",
                                     "id<1>|Warehouse.dbo.suppliers|6|2501.7|<3>|<4>|6 filled of 6",
                                     "id<1>|Warehouse.crm.public.german customers|120|7.5|||120 filled of 120"));
    // A catalog is not shown without a schema.
    testing::runScript(m_sample.path, "UPDATE profiled_table SET schema = '' WHERE catalog = 'crm'");
    ASSERT_TRUE(m_rows.Fill(*m_viewer, m_keys, metrics({}), {}));
    EXPECT_THAT(lines(), UnorderedElementsAre("id<1>|Warehouse.customers||<4>", "id<1>|Warehouse.dbo.suppliers|<3>|<4>",
                                              "id<1>|Warehouse.german customers||"));
}

TEST_F(StdMetRowsOfSample, TheLastRunsOfAMetricFollowTheOtherColumns) {
    const auto shown = metrics({MetricId::Mean});
    const int nullCount = static_cast<int>(MetricId::NullCount);
    ASSERT_TRUE(m_rows.Fill(*m_viewer, m_customers, shown, {}, nullCount));
    const int last = m_rows.GetColumnCount() - 1;
    EXPECT_THAT(headings(m_rows), ::testing::EndsWith("|P:25:-1|R:25:-1|Filled:86:-1|Last RunsNull Count:140:-1"));
    EXPECT_TRUE(m_rows.IsTrend(last));
    EXPECT_FALSE(m_rows.IsTrend(last - 1));
    const std::int64_t name = m_rows.FindField(m_sample.fields.at("customers/name"));
    ASSERT_GE(name, 0);
    EXPECT_THAT(m_rows.GetCell(last, name).picture.line, ElementsAre(230, 229, 228));
    EXPECT_EQ("▼ 1", m_rows.GetCell(last, name).text);
    const std::string runs = m_rows.GetToolTip(last, name);
    EXPECT_THAT(runs, ::testing::HasSubstr("2026: 228\n"));
    EXPECT_THAT(runs, ::testing::EndsWith("2026: 230"));
    EXPECT_EQ("", m_rows.GetToolTip(0, name));

    // Of a single run there is no line, nor of a collection, whose fields belong to several tables.
    ASSERT_TRUE(m_viewer->setCurrentJob(m_sample.salesRuns[0]));
    ASSERT_TRUE(m_rows.Fill(*m_viewer, m_customers, shown, {}, nullCount));
    EXPECT_THAT(headings(m_rows), ::testing::EndsWith("|Filled:86:-1"));
    EXPECT_EQ(-1, m_rows.GetTrendMetric());
    ASSERT_TRUE(m_rows.Fill(*m_viewer, m_keys, shown, {}, nullCount));
    EXPECT_THAT(headings(m_rows), ::testing::EndsWith("|Filled:86:-1"));
    ASSERT_TRUE(m_rows.Fill(*m_viewer, m_customers, metrics({}), {}, nullCount));
    EXPECT_EQ(4, m_rows.GetColumnCount()) << "no pictures without figures";
}

TEST_F(StdMetRowsOfSample, FiguresAreRoundedAndOnTheRight) {
    const auto shown = metrics({MetricId::Mode, MetricId::Mean, MetricId::ActualType});
    ASSERT_TRUE(m_rows.Fill(*m_viewer, m_customers, shown, {}));
    const std::int64_t balance = m_rows.FindField(m_sample.fields.at("customers/balance"));
    ASSERT_GE(balance, 0);
    EXPECT_EQ("12.3456789", m_rows.GetCell(2, balance).text) << "the mode is a value of the data";
    EXPECT_EQ("12.346", shownText(m_rows.GetCell(3, balance)));
    EXPECT_EQ("12.3456789", m_rows.GetCell(3, balance).text) << "copied and searched in full";
    std::string headings;
    std::string cells;
    for (int column = 0; column < m_rows.GetColumnCount(); ++column) {
        headings += letterOf(m_rows.GetColumn(column).alignment);
        cells += letterOf(m_rows.GetCell(column, balance).alignment);
    }
    EXPECT_EQ("LLLRLCCL", headings);
    EXPECT_EQ("LLLRLCCL", cells);
}

TEST_F(StdMetRowsOfSample, SortingPutsNumbersBeforeUnknownInBothDirections) {
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
    EXPECT_NE(CellState::Unknown, m_rows.GetCell(2, 0).state);
    EXPECT_EQ(CellState::Unknown, m_rows.GetCell(2, m_rows.GetRowCount() - 1).state);
    EXPECT_FALSE(m_rows.Sort(99, false));
}

TEST_F(StdMetRowsOfSample, ARepositoryThatIsGoneIsAnErrorWithoutRows) {
    m_viewer->close();
    EXPECT_FALSE(m_rows.Fill(*m_viewer, m_customers, metrics({}), {}));
    EXPECT_FALSE(m_rows.GetErrorText().empty());
    EXPECT_EQ(0, m_rows.GetRowCount());
}

TEST_F(StdMetRowsOfSample, NothingSelectedIsNothing) {
    ASSERT_TRUE(m_rows.Fill(*m_viewer, {}, metrics({MetricId::Mean}), {}));
    EXPECT_EQ(0, m_rows.GetColumnCount());
    EXPECT_EQ(0, m_rows.GetRowCount());
}

TEST_F(StdMetRowsOfSample, ASampleMarksTheTablesThatAreFilteredFromIt) {
    testing::runScript(m_sample.path, fmt::format("UPDATE run_table SET processed_records = 500 WHERE table_id = {}",
                                                  m_sample.tables.at("customers")));
    for (const auto& [name, heading] : {std::pair("customers", "Unique Count(sample)"),
                                        {"german customers", "Unique Count(sample)"},
                                        {"suppliers", "Unique Count:"}}) {
        ReportSelection selection;
        selection.kind = ReportSelection::Kind::Table;
        selection.table = *findTable(*m_viewer, m_sample.tables.at(name), "Warehouse");
        ASSERT_TRUE(m_rows.Fill(*m_viewer, selection, metrics({MetricId::UniqueCount}), {}));
        EXPECT_THAT(headings(m_rows), ::testing::HasSubstr(heading)) << name;
    }
}

// Alerts refer to their table by name, so every part of the table's identity has to match.
class AlertMarksOfRows : public StdMetRowsOfSample {
  protected:
    void SetUp() override {
        StdMetRowsOfSample::SetUp();
        m_customers.table.dataSource = "Warehouse";
        m_customers.table.catalog = "crm";
        m_customers.table.schema = "public";
    }
    void alert(const std::string& table, const std::string& field, MetricId metric, const std::string& type = "SM") {
        const TableIdentity of = *findTable(*m_viewer, m_sample.tables.at(table), "Warehouse");
        AlertState& state = m_alerts.emplace_back();
        state.tableId = of.id;
        state.dataSource = of.dataSource;
        state.catalog = of.catalog;
        state.schema = of.schema;
        state.tableName = of.name;
        state.objectName = of.objectName;
        state.kind = of.kind;
        state.typeCode = type;
        state.input = field;
        state.watchedId = static_cast<int>(metric);
    }
    /// "field:metric id" of every marked cell.
    std::vector<std::string> marked(const ReportSelection& selection) {
        m_rows.SetAlerts({m_alerts, selection.table});
        EXPECT_TRUE(m_rows.Fill(*m_viewer, selection, metrics({MetricId::Count, MetricId::NullCount}), {}));
        std::vector<std::string> marks;
        for (std::int64_t row = 0; row < m_rows.GetRowCount(); ++row) {
            for (int column = 0; column < m_rows.GetColumnCount(); ++column) {
                if (m_rows.GetCell(column, row).alert != AlertMark::None)
                    marks.push_back(
                        fmt::format("{}:{}", m_rows.GetCell(0, row).text, m_rows.GetColumn(column).parameter));
            }
        }
        return marks;
    }
    std::vector<std::string> markedAs(const ReportSelection& base, const std::function<void(TableIdentity&)>& change) {
        ReportSelection changed = base;
        change(changed.table);
        return marked(changed);
    }

    std::vector<AlertState> m_alerts;
};

TEST_F(AlertMarksOfRows, MarkTheCellOfTheirFieldAndMetric) {
    EXPECT_THAT(marked(m_customers), ElementsAre());
    alert("customers", "id", MetricId::Count);
    alert("customers", "name", MetricId::NullCount);
    alert("customers", "name", MetricId::NullCount);
    alert("customers", "since", MetricId::Mean); // not among the shown metrics
    alert("customers", "city", MetricId::Count, "CM");
    alert("customers", "city", MetricId::NullCount, "BR");
    alert("customers", "city", MetricId::Count);
    m_alerts.back().watchedId = -1; // its metric cannot be read
    EXPECT_THAT(marked(m_customers), ElementsAre("id:0", "name:2"));

    // In columns 0 and 1 there is no metric; of the two shown, both are numbers.
    EXPECT_EQ(-1, m_rows.GetWatchable(0));
    EXPECT_EQ(0, m_rows.GetWatchable(2));
    EXPECT_EQ(2U, m_rows.GetAlerts(3, m_rows.FindField(m_sample.fields.at("customers/name"))).size());
    m_alerts.clear();
    EXPECT_THAT(marked(m_customers), ElementsAre());
}

TEST_F(AlertMarksOfRows, ARaisedErrorIsToldFromAWarningAndAQuietAlert) {
    alert("customers", "id", MetricId::Count);
    m_alerts.back().rule.emplace();
    m_alerts.back().sentence = "Count for field id is greater than 5";
    m_alerts.back().verdict.state = AlertVerdict::State::Quiet;
    const auto markOfId = [this] {
        EXPECT_THAT(marked(m_customers), ElementsAre("id:0"));
        return m_rows.GetCell(2, m_rows.FindField(m_sample.fields.at("customers/id"))).alert;
    };
    EXPECT_EQ(AlertMark::Quiet, markOfId());
    EXPECT_EQ("Alert, quiet: Count for field id is greater than 5",
              m_rows.GetToolTip(2, m_rows.FindField(m_sample.fields.at("customers/id"))));
    m_alerts.back().verdict.state = AlertVerdict::State::Raised;
    EXPECT_EQ(AlertMark::Warning, markOfId());
    m_alerts.back().rule->level = AlertLevel::Error;
    EXPECT_EQ(AlertMark::Error, markOfId());
}

TEST_F(AlertMarksOfRows, BelongToTheTableOfTheSameIdentityOnly) {
    alert("customers", "id", MetricId::Count);
    ASSERT_THAT(marked(m_customers), ElementsAre("id:0"));
    const std::vector<std::function<void(TableIdentity&)>> nearMisses = {
        [](TableIdentity& table) { table.kind = TableKind::Query; },
        [](TableIdentity& table) { table.kind = TableKind::Filter; },
        [](TableIdentity& table) { table.kind = static_cast<TableKind>('?'); },
        [](TableIdentity& table) { table.dataSource = "warehouse"; },
        [](TableIdentity& table) { table.catalog.clear(); },
        [](TableIdentity& table) { table.catalog = "CRM"; },
        [](TableIdentity& table) { table.schema.clear(); },
        [](TableIdentity& table) { table.schema = "public "; },
        [](TableIdentity& table) { table.name = "customer"; },
        [](TableIdentity& table) { table.objectName = "customers"; },
    };
    for (std::size_t i = 0; i < nearMisses.size(); ++i)
        EXPECT_THAT(markedAs(m_customers, nearMisses[i]), ElementsAre()) << i;
}

TEST_F(AlertMarksOfRows, AnEmptyCatalogOrSchemaMatchesOnlyAnEmptyOne) {
    ReportSelection orders = m_customers;
    orders.table = {};
    orders.table.id = m_sample.tables.at("orders");
    orders.table.dataSource = "Warehouse";
    orders.table.name = "orders";
    alert("orders", "note", MetricId::NullCount);
    EXPECT_THAT(marked(orders), ElementsAre("note:2"));
    EXPECT_THAT(markedAs(orders, [](TableIdentity& table) { table.catalog = "crm"; }), ElementsAre());
    EXPECT_THAT(markedAs(orders, [](TableIdentity& table) { table.schema = "public"; }), ElementsAre());
}

TEST_F(AlertMarksOfRows, TellAQueryAndAFilterFromTheTableBelow) {
    alert("german customers", "id", MetricId::Count);
    EXPECT_THAT(marked(m_customers), ElementsAre());
    ReportSelection german = m_customers;
    german.table.id = m_sample.tables.at("german customers");
    german.table.kind = TableKind::Filter;
    german.table.objectName = "german customers";
    EXPECT_THAT(marked(german), ElementsAre("id:0"));
    EXPECT_THAT(markedAs(german, [](TableIdentity& table) { table.objectName.clear(); }), ElementsAre());
    EXPECT_THAT(markedAs(german, [](TableIdentity& table) { table.kind = TableKind::Plain; }), ElementsAre());

    alert("big orders", "amount", MetricId::NullCount);
    ReportSelection big = m_customers;
    big.table = {};
    big.table.id = m_sample.tables.at("big orders");
    big.table.kind = TableKind::Query;
    big.table.dataSource = "Warehouse";
    big.table.objectName = "big orders";
    EXPECT_THAT(marked(big), ElementsAre("amount:2"));
}

TEST_F(AlertMarksOfRows, AreNotDrawnForACollection) {
    alert("customers", "id", MetricId::Count);
    ReportSelection keys = m_keys;
    keys.table = m_customers.table;
    EXPECT_THAT(marked(keys), ElementsAre());
    ASSERT_GT(m_rows.GetRowCount(), 0);
}

} // namespace
} // namespace tavix
