#include "nav/InformationText.h"

#include <gtest/gtest.h>

namespace tavix {
namespace {

TableIdentity plainTable() {
    TableIdentity table;
    table.dataSource = "examples";
    table.name = "airports";
    table.totalRecords = 3376;
    table.processedRecords = 3376;
    return table;
}

TEST(InformationText, PlainTable) {
    TableIdentity table = plainTable();
    EXPECT_EQ("Name: airports\r\nType: Table\r\nData source: examples\r\nTotal records: 3376\r\n",
              informationText(table));
    table.schema = "geo";
    table.catalog = "world";
    table.processedRecords = 100;
    table.isSample = true;
    EXPECT_EQ("Name: airports\r\nType: Table\r\nSchema: geo\r\nCatalog: world\r\nData source: examples\r\n"
              "Total records: 3376\r\nSampled records: 100\r\n",
              informationText(table));
}

TEST(InformationText, FieldStandsBeforeItsParent) {
    EXPECT_EQ("Field: iata\r\nDefined type: VARCHAR\r\nDefined length: 3\r\nParent name: airports\r\n"
              "Parent type: Table\r\nData source: examples\r\nTotal records: 3376\r\n",
              informationText(plainTable(), {"iata", "VARCHAR", "3"}));
}

TEST(InformationText, QueryLosesBlankLinesAndOuterLineEnds) {
    TableIdentity table = plainTable();
    table.kind = TableKind::Query;
    table.objectName = "Large airports";
    table.query = "\r\n\r\nselect *\r\n\r\n\r\nfrom airports\n\nwhere x\r\n\r\n";
    EXPECT_EQ("Name: Large airports\r\nType: SQL query\r\nData source: examples\r\nTotal records: 3376\r\nQuery:\r\n"
              "select *\r\nfrom airports\r\nwhere x\r\n",
              informationText(table));
    table.processedRecords = 10;
    table.isSample = true;
    table.query = "select 1";
    EXPECT_EQ("Field: iata\r\nDefined type: \r\nDefined length: \r\nParent name: Large airports\r\n"
              "Parent type: SQL query\r\nData source: examples\r\nTotal records: 3376\r\nSampled records: 10\r\n"
              "Query:\r\nselect 1\r\n",
              informationText(table, {"iata", "", ""}));
}

TEST(InformationText, FilterNamesWhatItIsBasedOn) {
    TableIdentity table = plainTable();
    table.kind = TableKind::Filter;
    table.objectName = "Alaska";
    table.baseTable = "airports";
    table.filter = "state = \"AK\"";
    const std::string rest = "Data source: examples\r\nTotal records: 3376\r\nFiltered records: 3376\r\nFilter:\r\n"
                             "state = \"AK\"\r\n";
    EXPECT_EQ("Name: Alaska\r\nType: Filter (based on airports)\r\n" + rest, informationText(table));
    table.catalog = "world";
    table.schema = "geo";
    EXPECT_EQ("Name: Alaska\r\nType: Filter (based on world.geo.airports)\r\n" + rest, informationText(table));
    table.name.clear();
    EXPECT_EQ("Name: Alaska\r\nType: Filter (based on SQL query)\r\n" + rest, informationText(table));
}

TEST(InformationText, AQueryOfLineEndsAloneIsEmpty) {
    TableIdentity table = plainTable();
    table.objectName = "q";
    table.query = "\r\n\n\r\n";
    EXPECT_TRUE(informationText(table).ends_with("Query:\r\n\r\n"));
}

} // namespace
} // namespace tavix
