#include "alert/ReportAlertRows.h"
#include "alert/TableAlertRows.h"
#include "report/CAlertDisplayHelper.h"
#include "support/RowsText.h"
#include "support/RunScript.h"
#include "support/SampleViewer.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

namespace tavix {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;

/// The lists of a table and of the repository.
class AlertLists : public testing::SampleViewer {
  protected:
    void SetUp() override {
        SampleViewer::SetUp();
        m_customers.id = m_sample.tables.at("customers");
        m_customers.dataSource = "Warehouse";
        m_customers.catalog = "crm";
        m_customers.schema = "public";
        m_customers.name = "customers";
    }
    /// An alert without a rule, as another program may have written it.
    void alert(const std::string& table, const std::string& field, const std::string& type, const std::string& text) {
        testing::runScript(
            m_sample.path,
            fmt::format("PRAGMA ignore_check_constraints = 1; INSERT INTO alert(table_id, field, metric, type_code, "
                        "description, watched_key) VALUES({}, {}, 0, '{}', '{}', 'k1')",
                        m_sample.tables.at(table), m_sample.fields.at(table + "/" + field), type, text));
    }
    void userAlert(int job, const std::string& field, const AlertRule& rule, const std::string& description) {
        ASSERT_TRUE(m_viewer->setCurrentJobSetup(job));
        AlertDefinition made;
        made.table = m_sample.tables.at(field.substr(0, field.find('/')));
        made.field = m_sample.fields.at(field);
        made.rule = rule;
        made.description = description;
        int id = -1;
        ASSERT_TRUE(m_viewer->createEditAlert(id, made, "anna")) << m_viewer->getErrorString().view();
        ASSERT_TRUE(m_viewer->setCurrentJobSetup(m_sample.salesJob));
    }
    bool fill(TableAlertRows& rows, const TableIdentity& table) {
        return rows.Fill(*m_viewer, table, m_sample.salesJob, readAlertStates(*m_viewer, m_sample.salesJob));
    }
    /// The first columns of each row.
    static std::vector<std::string> firstOf(const AlertRows& rows, int columns = 4) {
        std::vector<std::string> lines;
        for (std::int64_t row = 0; row < rows.GetRowCount(); ++row) {
            lines.emplace_back();
            for (int column = 0; column < columns; ++column)
                lines.back() += (column > 0 ? "|" : "") + rows.GetCell(column, row).text;
        }
        return lines;
    }

    TableIdentity m_customers;
};

TEST_F(AlertLists, OfATableGoByItsNames) {
    alert("customers", "id", "SM", "Too few ids");
    alert("customers", "name", "cm", "Odd names");
    alert("customers", "name", "BR", "Broken rule");
    alert("german customers", "id", "SM", "Of the filter");
    alert("orders", "note", "", "Of another table");
    TableAlertRows rows(std::locale::classic());
    ASSERT_TRUE(fill(rows, m_customers)) << rows.GetErrorText();
    EXPECT_EQ("Description:280|Type:120|Input:140|State:105|Level:70|>Figure:95|Compared With:150|Raised:150|"
              "Defined By:90",
              headingsOf(rows));
    EXPECT_THAT(firstOf(rows), ElementsAre("Too few ids|Standard Metric|id|cannot be judged",
                                           "Odd names|Custom Metric|name|cannot be judged",
                                           "Broken rule|Business Rule|name|cannot be judged"));
    EXPECT_EQ("no alert raised, 3 cannot be judged", rows.GetBase().text);

    TableIdentity german = m_customers;
    german.objectName = "german customers";
    ASSERT_TRUE(fill(rows, german));
    EXPECT_THAT(firstOf(rows, 2), ElementsAre("Of the filter|Standard Metric"));
    TableIdentity elsewhere = m_customers;
    elsewhere.catalog = "erp";
    ASSERT_TRUE(fill(rows, elsewhere));
    EXPECT_THAT(firstOf(rows), IsEmpty()) << "a table of the same name in another catalog";
    EXPECT_EQ("No alert is defined for this table.", rows.GetEmptyText());
    EXPECT_EQ("", rows.GetBase().text);
}

TEST_F(AlertLists, OfATableHaveThoseOfOtherReports) {
    userAlert(m_sample.salesJob, "customers/id", {.value1 = 1}, "Many ids");
    userAlert(m_sample.inventoryJob, "parts/Column 1", {.value1 = 1e9}, "Many parts");
    TableAlertRows rows(std::locale::classic());
    ASSERT_TRUE(fill(rows, m_customers));
    EXPECT_THAT(firstOf(rows), ElementsAre("Many ids|Standard Metric|id|raised"));
    EXPECT_THAT(rows.GetToolTip(0, 0), ::testing::Not(::testing::HasSubstr("another report")));
    TableIdentity parts;
    parts.dataSource = "/data/files";
    parts.name = "parts";
    ASSERT_TRUE(fill(rows, parts));
    EXPECT_THAT(firstOf(rows), ElementsAre("Many parts|Standard Metric|Column 1|quiet"));
    EXPECT_THAT(rows.GetToolTip(0, 0),
                ::testing::EndsWith("\nOf another report, \u201CInventory\u201D: judged for its latest run"));
}

TEST_F(AlertLists, OfARepositoryAreFilteredAndSearched) {
    userAlert(m_sample.salesJob, "customers/id", {.value1 = 1}, "Many ids");
    userAlert(m_sample.salesJob, "suppliers/id", {.value1 = 1e9}, "Many suppliers");
    userAlert(m_sample.inventoryJob, "parts/Column 1", {.value1 = 1e9}, "Many parts");
    ReportAlertRows rows(std::locale::classic());
    ASSERT_TRUE(rows.Fill(*m_viewer)) << rows.GetErrorText();
    EXPECT_THAT(firstOf(rows, 5), ElementsAre("Many ids|Standard Metric|id|Warehouse.crm.public.customers|raised",
                                              "Many suppliers|Standard Metric|id|Warehouse.dbo.suppliers|quiet",
                                              "Many parts|Standard Metric|Column 1|/data/files.parts|quiet"));
    EXPECT_EQ("3 alerts  ·  1 warning", rows.GetCountText());
    CAlertsFilter filter;
    filter.Set(CAlertsFilter::Type, "Standard Metric");
    rows.SetFilter(filter);
    EXPECT_EQ(3, rows.GetRowCount());
    rows.SetSearch("MANY P");
    EXPECT_THAT(firstOf(rows, 1), ElementsAre("Many parts"));
    rows.SetSearch("inventory");
    EXPECT_THAT(firstOf(rows, 1), ElementsAre("Many parts")) << "by its report";
    filter.Set(CAlertsFilter::Schema, "dbo");
    rows.SetFilter(filter);
    EXPECT_THAT(firstOf(rows), IsEmpty());
    EXPECT_EQ("0 of 3 alerts", rows.GetCountText());
    EXPECT_EQ("No alert matches the filter and the search.", rows.GetEmptyText());
    rows.SetSearch("");
    EXPECT_THAT(firstOf(rows, 1), ElementsAre("Many suppliers"));
    EXPECT_EQ("1 of 3 alerts  ·  no alert raised", rows.GetCountText());
    // Read again, the list keeps filter and search.
    ASSERT_TRUE(rows.Fill(*m_viewer));
    EXPECT_THAT(firstOf(rows, 1), ElementsAre("Many suppliers"));
}

TEST_F(AlertLists, NameTheInputByTheKeyOfAMetricOrRule) {
    for (const char* type : {"SM", "CM", "BR", "cm"})
        alert("customers", "id", type, "");
    const CAlertDisplayHelper helper({{"k1", "Margin"}, {"", "never"}}, {{"k1", "Rule 7"}, {"", "never"}});
    const auto inputs = [&] {
        std::vector<std::string> texts;
        const ProfileCursorHandle alerts = m_viewer->getAlerts();
        while (alerts && alerts->next())
            texts.push_back(helper.InputText(*alerts));
        return texts;
    };
    EXPECT_THAT(inputs(), ElementsAre("id", "Margin", "Rule 7", "id"));
    testing::runScript(m_sample.path, "UPDATE alert SET watched_key = ''");
    EXPECT_THAT(inputs(), ElementsAre("id", "id", "id", "id"));
    testing::runScript(m_sample.path, "UPDATE alert SET watched_key = 'k2'");
    EXPECT_THAT(inputs(), ElementsAre("id", "id", "id", "id"));
}

TEST_F(AlertLists, KeepTheRowsThatWereReadWhenTheRepositoryFails) {
    alert("customers", "id", "SM", "Too few ids");
    TableAlertRows ofTable;
    ASSERT_TRUE(fill(ofTable, m_customers));
    testing::runScript(m_sample.path, "ALTER TABLE alert_property RENAME TO gone");
    ReportAlertRows all;
    EXPECT_FALSE(all.Fill(*m_viewer));
    EXPECT_THAT(firstOf(all, 3), ElementsAre("Too few ids|Standard Metric|id"));
    EXPECT_EQ("Unable to retrieve alert properties", all.GetAlert(0).sentence);
    EXPECT_THAT(all.GetErrorText(), StartsWith("Error occurred while retrieving alert list:\n\n"));
    EXPECT_FALSE(ofTable.Fill(*m_viewer, m_customers, m_sample.salesJob, {}));
    EXPECT_EQ(1, ofTable.GetRowCount()) << "what was there before";
    EXPECT_THAT(ofTable.GetErrorText(), StartsWith("Error occurred while retrieving alert list:\n\n"));
    m_viewer->close();
    EXPECT_FALSE(all.Fill(*m_viewer));
    EXPECT_EQ(0, all.GetRowCount());
}

} // namespace
} // namespace tavix
