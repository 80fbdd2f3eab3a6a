#include "access/PrViewer.h"
#include "base/tests/TempFolder.h"
#include "report/FieldRecords.h"
#include "report/ReportTables.h"
#include "support/RunScript.h"
#include "support/SampleRepository.h"

#include <gmock/gmock.h>

namespace tavix {
namespace {

class FieldRecordsOverSample : public ::testing::Test {
  protected:
    void SetUp() override { open(); }
    void open() {
        ASSERT_TRUE(m_viewer->init(m_sample.path));
        ASSERT_TRUE(m_viewer->setCurrentJobSetup(m_sample.salesJob));
    }
    ReportSelection ofTable(const char* table, const char* field) {
        ReportSelection selection;
        selection.kind = ReportSelection::Kind::Table;
        selection.table.id = m_sample.tables.at(table);
        selection.fieldId = m_sample.fields.at(std::string(table) + "/" + field);
        return selection;
    }
    ReportSelection ofCollection(const char* collection, const char* field) {
        ReportSelection selection;
        selection.kind = ReportSelection::Kind::Collection;
        selection.id = m_sample.collections.at(collection);
        selection.fieldId = m_sample.fields.at(field);
        return selection;
    }

    testing::TempFolder m_folder;
    testing::SampleRepository m_sample = testing::SampleRepository::build(m_folder.file("sample.tavix"));
    PrViewer::Handle m_viewer = PrViewer::create();
    FieldRecords m_records;
};

TEST_F(FieldRecordsOverSample, AFieldHasTheSameRecordThroughItsTableAndThroughACollection) {
    const auto field = m_records.Find(*m_viewer, ofTable("customers", "balance"));
    ASSERT_TRUE(field) << field.error().text;
    const FieldRecord record = **field;
    EXPECT_EQ("balance", record.name);
    EXPECT_EQ("R", record.typeCode);
    EXPECT_EQ(m_viewer->getFreqDistCount(record.id), record.freqCount);
    EXPECT_EQ("1000", record.metrics[static_cast<std::size_t>(MetricId::Count)].str());

    const ReportSelection collected = ofCollection("Amounts", "customers/balance");
    const auto again = m_records.Find(*m_viewer, collected);
    ASSERT_TRUE(again) << again.error().text;
    EXPECT_EQ(record.metrics, (*again)->metrics);
    EXPECT_EQ(record.freqCount, (*again)->freqCount);
    EXPECT_EQ(record.tableId, (*again)->tableId);
    const auto table = m_records.TableOf(*m_viewer, collected);
    ASSERT_TRUE(table) << table.error().text;
    EXPECT_EQ("customers", table->name);
    EXPECT_EQ(1000, table->totalRecords);
}

TEST_F(FieldRecordsOverSample, RecordsAreKeptUntilTheyAreForgotten) {
    ASSERT_TRUE(m_records.Find(*m_viewer, ofTable("customers", "balance")));
    m_viewer->close();
    EXPECT_TRUE(m_records.Find(*m_viewer, ofTable("customers", "name"))) << "no query for another field of the table";
    EXPECT_FALSE(m_records.Find(*m_viewer, ofTable("suppliers", "id")));
    m_records.Forget();
    EXPECT_FALSE(m_records.Find(*m_viewer, ofTable("customers", "name")));
    EXPECT_FALSE(m_records.Find(*m_viewer, {}));
}

TEST_F(FieldRecordsOverSample, ATableAndACollectionOfOneIdAreKeptApart) {
    const int id = m_sample.tables.at("customers");
    testing::runScript(m_sample.path,
                       "INSERT OR IGNORE INTO collection(id, name, created) VALUES(" + std::to_string(id) +
                           ", 'Of that id', 0); DELETE FROM collection_field WHERE collection = " + std::to_string(id));
    ReportSelection collection = ofTable("customers", "balance");
    collection.kind = ReportSelection::Kind::Collection;
    collection.id = id;
    ASSERT_TRUE(m_records.Find(*m_viewer, ofTable("customers", "balance")));
    EXPECT_FALSE(m_records.Find(*m_viewer, collection)) << "the collection has no fields";
    EXPECT_TRUE(m_records.Find(*m_viewer, ofTable("customers", "balance")));
}

TEST_F(FieldRecordsOverSample, ATableInAnotherReportIsAsItsOwnRunHasIt) {
    ASSERT_TRUE(m_viewer->createGlobalCollFieldMapping(m_sample.collections.at("Amounts"),
                                                       m_sample.fields.at("parts/Column 1")));
    const ReportSelection part = ofCollection("Amounts", "parts/Column 1");
    const auto field = m_records.Find(*m_viewer, part);
    ASSERT_TRUE(field) << field.error().text;
    EXPECT_EQ(2, (*field)->freqCount);
    const auto table = m_records.TableOf(*m_viewer, part);
    ASSERT_TRUE(table);
    EXPECT_EQ("parts", table->name);
    EXPECT_EQ("/data/files", table->dataSource);
    EXPECT_EQ(2, table->totalRecords);
    // Once no run has it, its names are known.
    testing::runScript(m_sample.path, "DELETE FROM run_field WHERE run = " + std::to_string(m_sample.inventoryRun));
    m_records.Forget();
    const auto gone = m_records.TableOf(*m_viewer, part);
    ASSERT_TRUE(gone);
    EXPECT_FALSE(m_records.Find(*m_viewer, part)) << "a field without figures is none of this run";
    EXPECT_EQ("parts", gone->name);
    EXPECT_EQ(-1, gone->totalRecords);
    EXPECT_FALSE(findTable(*m_viewer, table->id, table->dataSource));
}

} // namespace
} // namespace tavix
