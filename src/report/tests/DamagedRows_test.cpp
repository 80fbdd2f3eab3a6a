#include "access/PrViewer.h"
#include "base/tests/TempFolder.h"
#include "report/DamagedRows.h"
#include "support/RunScript.h"
#include "support/SampleViewer.h"

#include <gtest/gtest.h>

#include <fstream>

namespace tavix {
namespace {

class DamagedRows : public testing::SampleViewer {
  protected:
    std::string listed(const char* table) {
        std::string text;
        for (const DamagedRow& row : readDamagedRows(*m_viewer, m_sample.tables.at(table)))
            text +=
                row.file + (row.isLine ? " line " : " row ") + std::to_string(row.number) + ": " + row.reason + "\n";
        return text;
    }
    void openAgain() {
        ASSERT_TRUE(m_viewer->init(m_sample.path));
        ASSERT_TRUE(m_viewer->setCurrentJobSetup(m_sample.salesJob));
    }
};

TEST_F(DamagedRows, AreReadFromTheLogOfTheirTable) {
    EXPECT_EQ(" line 3: 1 cell instead of 2.\n line 5: a bad byte was replaced.\n", listed("airports"));
    EXPECT_EQ("", listed("customers"));
    testing::runScript(m_sample.path, "UPDATE execution_log SET text = 'b, line 2.csv, line 7: too long: x' WHERE text "
                                      "LIKE 'Line 3%'; UPDATE execution_log SET text = 'Row 12: bad' WHERE text LIKE "
                                      "'Line 5%'; INSERT INTO execution_log SELECT run, position + 900, table_id, "
                                      "logged, level, 'Line x: nothing' FROM execution_log WHERE table_id IS NOT NULL");
    openAgain();
    EXPECT_EQ("b, line 2.csv line 7: too long: x\n row 12: bad\n", listed("airports"));
}

TEST_F(DamagedRows, AFileThatChangedSinceIsNamed) {
    const int airports = m_sample.tables.at("airports");
    EXPECT_EQ("The file is not at its place any more: /data/files/airports.csv", changeOfFile(*m_viewer, airports));
    EXPECT_EQ("", changeOfFile(*m_viewer, m_sample.tables.at("customers")));
    const testing::TempFolder folder;
    const std::string path = folder.file("airports.csv");
    std::ofstream(path) << std::string(4321, 'x');
    testing::runScript(m_sample.path,
                       "UPDATE run_table SET file_path = '" + path + "' WHERE file_path = '/data/files/airports.csv'");
    openAgain();
    EXPECT_EQ("", changeOfFile(*m_viewer, airports));
    std::ofstream(path) << "x";
    EXPECT_EQ(
        "The file has changed since: it had 4,321 bytes and has 1, so the numbers may be those of other rows now.",
        changeOfFile(*m_viewer, airports));
}

} // namespace
} // namespace tavix
