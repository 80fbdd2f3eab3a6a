#include "report/ReportTables.h"
#include "support/RunScript.h"
#include "support/SampleViewer.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

namespace tavix {
namespace {

using ::testing::ElementsAre;

class ReportTablesOfSample : public testing::SampleViewer {
  protected:
    std::vector<std::string> samples() {
        std::vector<std::string> names;
        for (const TableIdentity& table : readTables(*m_viewer))
            if (table.isSample)
                names.push_back(table.displayName());
        return names;
    }
    void process(const char* table, int records) {
        testing::runScript(m_sample.path, fmt::format("UPDATE run_table SET processed_records = {} WHERE table_id = {}",
                                                      records, m_sample.tables.at(table)));
    }
};

TEST_F(ReportTablesOfSample, AFilteredTableIsASampleWhenItsBaseIs) {
    EXPECT_THAT(samples(), ElementsAre("orders"));
    process("customers", 500);
    EXPECT_THAT(samples(), ElementsAre("customers", "orders", "german customers"));
    // A filter that no record fails, over a sample.
    process("german customers", 1000);
    EXPECT_THAT(samples(), ElementsAre("customers", "orders", "german customers"));

    const auto table = findTable(*m_viewer, m_sample.tables.at("german customers"), "Warehouse");
    ASSERT_TRUE(table);
    EXPECT_TRUE(table->isSample);
    EXPECT_TRUE(readTableOfField(*m_viewer, m_sample.fields.at("german customers/id"), "Warehouse").isSample);
    EXPECT_FALSE(readTableOfField(*m_viewer, m_sample.fields.at("suppliers/id"), "Warehouse").isSample);
}

TEST_F(ReportTablesOfSample, AFilterOnAQueryIsASampleWhenThatQueryIs) {
    process("big orders", 25);
    EXPECT_THAT(samples(), ElementsAre("orders", "big orders"));
    testing::runScript(m_sample.path, fmt::format("UPDATE run_table SET query = 'SELECT 1' WHERE table_id IN ({}, {})",
                                                  m_sample.tables.at("big orders"), m_sample.tables.at("late orders")));
    EXPECT_THAT(samples(), ElementsAre("orders", "big orders", "late orders"));
}

TEST_F(ReportTablesOfSample, TablesAndFieldsAreReadWithAllThatNamesThem) {
    const std::vector<TableIdentity> tables = readTables(*m_viewer);
    ASSERT_EQ(7U, tables.size());
    EXPECT_EQ("Warehouse", tables.front().dataSource);
    EXPECT_EQ("crm", tables.front().catalog);
    EXPECT_EQ(TableKind::Plain, tables.front().kind);
    EXPECT_EQ("/data/files", tables.back().dataSource);
    EXPECT_EQ(2, tables.back().fields);
    EXPECT_EQ(2, tables.back().damagedRecords);
    const std::vector<NamedField> names = readFieldNames(*m_viewer, tables.back().id);
    const std::vector<FieldRecord> records = readFields(*m_viewer, tables.back().id);
    ASSERT_EQ(2U, names.size());
    ASSERT_EQ(2U, records.size());
    for (std::size_t i = 0; i < names.size(); ++i) {
        EXPECT_EQ(names[i].id, records[i].id);
        EXPECT_EQ(names[i].name, records[i].name);
        EXPECT_EQ(names[i].typeCode, records[i].typeCode);
    }
    EXPECT_EQ("latitude", names[1].name);
    EXPECT_EQ("R", names[1].typeCode);
    EXPECT_THROW((void)readFields(*m_viewer, 4711), std::exception);
}

TEST_F(ReportTablesOfSample, RunsComeWithTheLatestFirst) {
    std::vector<int> ids;
    for (const RunInfo& run : readRuns(*m_viewer))
        ids.push_back(run.id);
    EXPECT_EQ(std::vector<int>(m_sample.salesRuns.rbegin(), m_sample.salesRuns.rend()), ids);
}

} // namespace
} // namespace tavix
