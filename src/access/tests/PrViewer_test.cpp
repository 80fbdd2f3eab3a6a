#include "access/CacheCursor.h"
#include "access/Layouts.h"
#include "access/PrViewDisplayMessage.h"
#include "access/TableSource.h"
#include "access/tests/PrViewerFixture.h"
#include "base/DateTicks.h"
#include "base/GenException.h"
#include "base/LibraryDate.h"
#include "repository/RunWriter.h"
#include "support/RunScript.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <map>

namespace tavix {
namespace {

using tavix::testing::PrViewerTest;
using tavix::testing::SampleRepository;
using tavix::testing::TempFolder;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::StartsWith;

TEST_F(PrViewerTest, EveryOperationFailsWithTextWithoutASession) {
    auto viewer = PrViewer::create();
    EXPECT_EQ(viewer->getErrorString(), KvbString(""));
    EXPECT_EQ(viewer->getCurrentJob(), -1);
    KvbString text;
    int id = -1;
    double date = 0;
    TextFileInfo file;
    EXPECT_FALSE(viewer->close());
    EXPECT_EQ(viewer->getErrorString(), KvbString("No repository is open."));
    EXPECT_FALSE(viewer->setCurrentJobSetup(1) || viewer->reportGetReportInfo(1, id, text) || viewer->setCurrentJob(1));
    EXPECT_FALSE(viewer->folderGetPathFromId(1, text, text) || viewer->getJobInfo(1, date, text));
    EXPECT_FALSE(viewer->deleteJobs(-1, 1, -1) || viewer->getTextFileInfo(1, file) || viewer->deleteChart(1));
    EXPECT_FALSE(viewer->createNewNoteCategory("x") || viewer->createGlobalCollFieldMapping(1, 1));
    EXPECT_FALSE(viewer->getReports() || viewer->getJobs() || viewer->getDSNList() || viewer->getTableList(1));
    EXPECT_FALSE(viewer->getFieldList(1) || viewer->getGlobalCollections() || viewer->getFreqDist(1, ""));
    EXPECT_FALSE(viewer->getFieldHistory("", "", "", "", "", "", 0) || viewer->getTableHistory(1, 1, 0) ||
                 viewer->getExecutionLog());
    EXPECT_FALSE(viewer->getTableNotes(1, 'T', 1) || viewer->getRdaCfgs() || viewer->getPKFKAnalysis(1));
    EXPECT_EQ(viewer->getJobCount(), -1);
    EXPECT_EQ(viewer->getFreqDistSum(1), -1);
    EXPECT_EQ(viewer->getErrorString(), KvbString("No repository is open."));
}

TEST_F(PrViewerTest, ListsReports) {
    auto cursor = m_viewer->getReports();
    ASSERT_TRUE(cursor && cursor->next());
    EXPECT_EQ(cursor->getColumnInt(layout::ReportId), m_sample.inventoryJob);
    ASSERT_TRUE(cursor->next());
    EXPECT_EQ(cursor->getColumnValue(layout::ReportName), KvbString("Sales"));
    EXPECT_EQ(cursor->getColumnInt(layout::ReportRunCount), 3);
    EXPECT_EQ(cursor->getColumnInt(layout::ReportLastRunId), m_sample.salesRuns[2]);
    EXPECT_EQ(cursor->getColumnDouble(layout::ReportLastRunDate), toLibraryDate(SampleRepository::runTime(2)));
    EXPECT_FALSE(cursor->next());
    EXPECT_FALSE(cursor->next());
    int folder = 0;
    KvbString text;
    EXPECT_TRUE(m_viewer->reportGetReportInfo(m_sample.salesJob, folder, text));
    EXPECT_EQ(folder, -1);
    EXPECT_EQ(text, KvbString("Customers and their orders"));
    EXPECT_FALSE(m_viewer->reportGetReportInfo(99, folder, text));
    EXPECT_EQ(error(), "There is no report with the number 99.");
    expectFailure(!m_viewer->getReport(99), "There is no report with the number 99.");
    expectFailure(!m_viewer->setCurrentJobSetup(99), "There is no report with the number 99.");
    EXPECT_EQ(m_viewer->getCurrentJob(), m_sample.salesRuns[2]) << "a failure changes nothing";
    expectFailure(!m_viewer->folderGetPathFromId(1, text, text), "There is no folder with the number 1.");
}

TEST_F(PrViewerTest, ListsAndSwitchesRuns) {
    EXPECT_EQ(m_viewer->getJobCount(), 3);
    auto runs = m_viewer->getJobs();
    ASSERT_TRUE(runs && runs->next());
    EXPECT_EQ(runs->getColumnInt(layout::JobRunId), m_sample.salesRuns[2]) << "the latest first";
    EXPECT_EQ(runs->getColumnDouble(layout::JobDate), toLibraryDate(SampleRepository::runTime(2)));
    EXPECT_EQ(runs->getColumnValue(layout::JobDescription), KvbString(""));
    ASSERT_TRUE(runs->next());
    EXPECT_EQ(runs->getColumnValue(layout::JobDescription), KvbString("February"));
    EXPECT_EQ(runs->getColumnInt(layout::JobTables), 7);

    EXPECT_EQ(ids(m_viewer->getTableList(-1)).size(), 7U);
    EXPECT_TRUE(m_viewer->setCurrentJob(m_sample.salesRuns[0]));
    EXPECT_EQ(ids(m_viewer->getTableList(-1)).size(), 6U);
    expectFailure(!m_viewer->getFieldList(table("late orders")), "There is no table with the number 7 in this run.");
    expectFailure(!m_viewer->setCurrentJob(m_sample.inventoryRun), "The report has no run with the number 4.");
    EXPECT_EQ(m_viewer->getCurrentJob(), m_sample.salesRuns[0]);
    double date = 0;
    KvbString description;
    EXPECT_TRUE(m_viewer->getJobInfo(m_sample.salesRuns[0], date, description));
    EXPECT_EQ(description, KvbString("January"));
    EXPECT_FALSE(m_viewer->getJobInfo(-1, date, description));
}

TEST_F(PrViewerTest, ListsDataSourcesAndTables) {
    EXPECT_THAT(read(m_viewer->getDSNList()), ElementsAre("1|Warehouse|0|6", "2|/data/files|4|1"));
    EXPECT_THAT(read(m_viewer->getTableList(2)), ElementsAre("Y|6|airports||||||||5|5|2|2|0"));
    auto tables = read(m_viewer->getTableList(1));
    ASSERT_EQ(tables.size(), 6U);
    EXPECT_EQ(tables[0], "Y|1|customers||public|crm|||||1000|1000|7|0|0");
    EXPECT_EQ(tables[4], "D|5|customers|german customers|public|crm|customers|country = 'DE'|||1000|120|1|0|0");
    EXPECT_EQ(tables[5], "D|7||late orders|||SQL query||SELECT * FROM orders|days late > 3|100|9|1|0|0");
    expectFailure(!m_viewer->getTableList(9), "There is no data source with the number 9.");
}

TEST_F(PrViewerTest, WholeNumbersAreReadWith64Bits) {
    testing::runScript(m_sample.path, "UPDATE run_table SET total_records = 9007199254740993");
    auto tables = m_viewer->getTableList(1);
    ASSERT_TRUE(tables && tables->next());
    EXPECT_EQ(tables->getColumnInt64(layout::TableTotalRecords), 9'007'199'254'740'993) << "not a double";
    EXPECT_EQ(tables->getColumnInt(layout::TableTotalRecords), std::numeric_limits<int>::max());
    EXPECT_EQ(tables->getColumnInt64(layout::TableName), 0);
    EXPECT_EQ(tables->getColumnInt64(99), 0);
}

TEST_F(PrViewerTest, FieldListsHoldTheMetricsWhereTheirReadersLook) {
    auto plain = m_viewer->getFieldList(table("customers"));
    auto pkr = m_viewer->getFieldListPKR(table("customers"));
    ASSERT_TRUE(plain && pkr);
    for (int position = 0; position < 3; ++position) {
        ASSERT_TRUE(plain->next());
        ASSERT_TRUE(pkr->next());
    }
    EXPECT_EQ(plain->getColumnInt(layout::FieldId), field("customers/balance"));
    EXPECT_EQ(plain->getColumnValue(layout::FieldTypeCode), KvbString("R"));
    for (int metric = 0; metric < static_cast<int>(kMetricCount); ++metric) {
        EXPECT_EQ(plain->getColumnName(layout::kFieldListMetrics + metric), m_viewer->getMetricDescription(metric));
        EXPECT_EQ(pkr->getColumnName(layout::kFieldListPkrMetrics + metric), m_viewer->getMetricDescription(metric));
        EXPECT_EQ(plain->getColumnValue(layout::kFieldListMetrics + metric),
                  pkr->getColumnValue(layout::kFieldListPkrMetrics + metric));
    }
    auto metric = [&](MetricId id) { return layout::kFieldListMetrics + static_cast<int>(index(id)); };
    EXPECT_EQ(plain->getColumnValue(metric(MetricId::Mean)), KvbString("12.3456789")) << "not the store's own text";
    EXPECT_EQ(plain->getColumnValue(metric(MetricId::MaximumValue)), KvbString("1e+20"));
    EXPECT_EQ(plain->getColumnInt(metric(MetricId::MaximumValue)), std::numeric_limits<int>::max());
    EXPECT_EQ(plain->getColumnInt64(metric(MetricId::MaximumValue)), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(plain->getColumnInt64(metric(MetricId::Mean)), 12);
    EXPECT_EQ(plain->getColumnInt64(metric(MetricId::DefinedLength)), 0);
    EXPECT_TRUE(plain->isColumnNull(metric(MetricId::DefinedLength)));
    EXPECT_TRUE(plain->getColumnValue(metric(MetricId::DefinedLength)).isNull());
    auto tail = [](layout::FieldListTail column) { return layout::tailColumn(layout::kFieldListMetrics, column); };
    EXPECT_EQ(plain->getColumnInt(tail(layout::TailFreqCount)), 4);
    EXPECT_EQ(plain->getColumnInt(tail(layout::TailTableId)), table("customers"));
    EXPECT_EQ(plain->getColumnValue(tail(layout::TailQuantileRule)), KvbString("linear"));
    EXPECT_EQ(plain->getColumnCount(), tail(layout::TailQuantileRule) + 1);
    EXPECT_FALSE(plain->isColumnValid(plain->getColumnCount()));
    EXPECT_TRUE(plain->getColumnValue(-1).isNull());

    pkr = m_viewer->getFieldListPKR(table("suppliers"));
    ASSERT_TRUE(pkr && pkr->next());
    EXPECT_EQ(pkr->getColumnInt(layout::PkrKeyAnalyses), 1);
    EXPECT_EQ(pkr->getColumnInt(layout::PkrRedundancies), 1);
    ASSERT_TRUE(pkr->next());
    EXPECT_EQ(pkr->getColumnInt(layout::PkrKeyAnalyses), 0);
}

TEST_F(PrViewerTest, TellsWhatAFieldAndATextFileIs) {
    KvbString source;
    KvbString catalog;
    KvbString schema;
    KvbString name;
    KvbString object;
    KvbString fieldName;
    char kind = 0;
    int tableId = 0;
    ASSERT_TRUE(m_viewer->getFieldInfo(field("german customers/id"), source, catalog, schema, name, object, kind,
                                       fieldName, tableId));
    EXPECT_EQ(object, KvbString("german customers"));
    EXPECT_EQ(name, KvbString("customers"));
    EXPECT_EQ(kind, 'D');
    EXPECT_EQ(tableId, table("german customers"));
    EXPECT_FALSE(m_viewer->getFieldInfo(999, source, catalog, schema, name, object, kind, fieldName, tableId));

    TextFileInfo info;
    ASSERT_TRUE(m_viewer->getTextFileInfo(table("airports"), info)) << error();
    EXPECT_EQ(info.path, KvbString("/data/files/airports.csv"));
    EXPECT_EQ(info.size, 4321);
    EXPECT_TRUE(info.hasHeader);
    EXPECT_THAT(read(m_viewer->getTextFileFieldInfo(table("airports"))), ElementsAre("1|code", "2|latitude"));
    expectFailure(!m_viewer->getTextFileFieldInfo(table("customers")), "The table was not read from a text file.");

    TableSource from;
    ASSERT_TRUE(m_viewer->getTableSource(table("airports"), from)) << error();
    ASSERT_EQ(from.files.size(), 1U);
    EXPECT_EQ(from.files[0].path + from.files[0].delimiter + from.files[0].encoding, "/data/files/airports.csv,UTF-8");
    EXPECT_TRUE(from.hasHeader && from.quote == '"' && from.connection.empty());
    expectFailure(!m_viewer->getTableSource(table("customers"), from),
                  "The run does not say from where the rows of \"customers\" came.");
}

TEST_F(PrViewerTest, NowInAFilterIsTheStartOfTheRunThatIsShown) {
    const auto rowsAt = [&](int run) {
        const std::string moment = formatDate(ticksOf(SampleRepository::runTime(run)));
        return read(m_viewer->getFreqDist(field("customers/name"), "`Value` = 'Ada' and now() = '" + moment + "'"));
    };
    EXPECT_THAT(rowsAt(2), ElementsAre("Ada|400"));
    EXPECT_THAT(rowsAt(0), IsEmpty());
    ASSERT_TRUE(m_viewer->setCurrentJob(ids(m_viewer->getJobs()).back())) << error();
    EXPECT_THAT(rowsAt(0), ::testing::Not(IsEmpty()));
    EXPECT_THAT(rowsAt(2), IsEmpty());
}

TEST_F(PrViewerTest, ReadsDistributions) {
    EXPECT_THAT(read(m_viewer->getFreqDist(field("customers/name"), "")),
                ElementsAre("Ada|400", "Grace|302", "<null>|228", "|50", "   |20"));
    EXPECT_EQ(m_viewer->getFreqDistSum(field("customers/name")), 1000);
    EXPECT_EQ(m_viewer->getFreqDistCount(field("customers/city")), 151);
    EXPECT_THAT(read(m_viewer->getPatternDist(field("airports/code"), "")), ElementsAre("1|AAA|3", "2|999|1"));
    EXPECT_EQ(m_viewer->getPatternDistCount(field("customers/remark")), 0);
    EXPECT_THAT(read(m_viewer->getPatternDist(field("customers/remark"), "")), IsEmpty());
    auto ids = m_viewer->getFreqDist(field("customers/id"), "");
    ASSERT_TRUE(ids && ids->next());
    EXPECT_EQ(ids->getColumnInt(layout::FreqValue), 1);
    EXPECT_EQ(ids->getColumnDouble(layout::FreqCount), 1.0);
    expectFailure(!m_viewer->getFreqDist(999, ""), "There is no field with the number 999.");
    EXPECT_EQ(m_viewer->getFreqDistCount(999), -1);
    // Collections show fields of other reports.
    EXPECT_THAT(read(m_viewer->getFreqDist(field("parts/Column 1"), "")), ElementsAre("bolt|1", "nut|1"));
    EXPECT_EQ(m_viewer->getFreqDistSum(field("parts/Column 1")), 2);
    EXPECT_EQ(m_viewer->getAbbreviatedPattern("99999-aa"), KvbString("9{5}-aa"));
}

TEST_F(PrViewerTest, ReadsPercentilesOutliersHistoryAndLog) {
    int balance = field("customers/balance");
    EXPECT_EQ(m_viewer->getPercentilesCount(balance), 5);
    auto percentiles = read(m_viewer->getPercentiles(balance));
    EXPECT_EQ(percentiles.front(), "5%|-3.5");
    EXPECT_EQ(percentiles.back(), "95%|<null>");
    EXPECT_EQ(m_viewer->getPercentilesCount(field("customers/name")), 0);
    int low = 0;
    int high = 0;
    ASSERT_TRUE(m_viewer->getOutliersCount(balance, low, high));
    EXPECT_EQ(low, 3);
    EXPECT_EQ(high, 5);
    EXPECT_THAT(read(m_viewer->getOutliers(balance)),
                ElementsAre("L|0|-900|1|2", "L|1|-899|1|0", "L|2|-898|1|0", "H|0|9000|2|1", "H|1|8999|2|1",
                            "H|2|8998|2|0", "H|3|8997|2|0", "H|4|8996|2|0"));
    EXPECT_FALSE(m_viewer->getOutliersCount(999, low, high));

    auto history = m_viewer->getFieldHistory("Warehouse", "crm", "public", "customers", "", "name", 2);
    ASSERT_TRUE(history);
    CacheCursor cached(*history);
    ASSERT_EQ(cached.getRowCount(), 2U);
    ASSERT_TRUE(cached.next());
    EXPECT_EQ(cached.getColumnInt(layout::HistoryRunId), m_sample.salesRuns[1]) << "oldest first, latest two";
    EXPECT_EQ(cached.getColumnInt(layout::kFieldHistoryMetrics + 2), 229);
    EXPECT_EQ(read(m_viewer->getFieldHistory("Warehouse", "crm", "public", "customers", "", "name", 0)).size(), 3U);
    EXPECT_EQ(read(m_viewer->getFieldHistory("Warehouse", "", "", "", "late orders", "days", 0)).size(), 2U);

    // A metric of all fields of a table, up to the current run.
    const int nullCount = static_cast<int>(MetricId::NullCount);
    const int airports = m_sample.tables.at("airports");
    const auto fieldsOf = [&](const ProfileCursorHandle& rows) {
        std::map<int, int> fields;
        std::vector<int> runs;
        while (rows && rows->next()) {
            ++fields[rows->getColumnInt(layout::TableHistoryField)];
            if (runs.empty() || runs.back() != rows->getColumnInt(layout::TableHistoryRun))
                runs.push_back(rows->getColumnInt(layout::TableHistoryRun));
        }
        EXPECT_EQ(fields.size(), 2U);
        return runs;
    };
    EXPECT_EQ(fieldsOf(m_viewer->getTableHistory(airports, nullCount, 0)), m_sample.salesRuns);
    EXPECT_THAT(fieldsOf(m_viewer->getTableHistory(airports, nullCount, 2)),
                ElementsAre(m_sample.salesRuns[1], m_sample.salesRuns[2]));
    ASSERT_TRUE(m_viewer->setCurrentJob(m_sample.salesRuns[1]));
    EXPECT_THAT(fieldsOf(m_viewer->getTableHistory(airports, nullCount, 12)),
                ElementsAre(m_sample.salesRuns[0], m_sample.salesRuns[1]));
    ASSERT_TRUE(m_viewer->setCurrentJob(m_sample.salesRuns[2]));
    const auto ofName = m_viewer->getTableHistory(m_sample.tables.at("customers"), nullCount, 2);
    while (ofName && ofName->next() &&
           ofName->getColumnInt(layout::TableHistoryField) != m_sample.fields.at("customers/name")) {
    }
    EXPECT_EQ(ofName->getColumnInt(layout::TableHistoryValue), 229);
    EXPECT_EQ(ofName->getColumnDouble(layout::TableHistoryDate), toLibraryDate(SampleRepository::runTime(1)));
    EXPECT_FALSE(m_viewer->getTableHistory(airports, -1, 0));
    EXPECT_FALSE(m_viewer->getTableHistory(airports, 24, 0));
    EXPECT_EQ(m_viewer->getErrorString(), KvbString("The metric 24 is unknown."));
    EXPECT_FALSE(m_viewer->getTableHistory(999, nullCount, 0));

    auto log = m_viewer->getExecutionLog();
    ASSERT_TRUE(log && log->next());
    EXPECT_TRUE(log->isColumnNull(layout::LogTable));
    EXPECT_EQ(log->getColumnDouble(layout::LogDate), toLibraryDate(SampleRepository::runTime(2)));
    ASSERT_TRUE(log->next());
    EXPECT_EQ(log->getColumnValue(layout::LogTable), KvbString("airports"));
    EXPECT_EQ(log->getColumnInt(layout::LogLevelCode), 1);
}

TEST_F(PrViewerTest, ReadsTypesAndFindings) {
    const int note = field("orders/note");
    EXPECT_TRUE(m_viewer->isExamined());
    EXPECT_THAT(read(m_viewer->getTypeBreakdown(note)), ElementsAre("4|100||0|0||0"));
    EXPECT_THAT(read(m_viewer->getTypeForms(note)), ElementsAre("text|4|100|=1+1"));
    EXPECT_THAT(read(m_viewer->getFitReadings(table("orders"))), ElementsAre(fmt::format("{}||0|100|0", note)));
    const std::string first = fmt::format("{}|orders|{}|note|control-characters|3|2|30|2 values in 30 rows, such as "
                                          "line end|has_control_chars(`Value`)|",
                                          table("orders"), note);
    const std::string second = fmt::format("{}|orders|0||few-rows|1|0|0|100 rows||", table("orders"));
    EXPECT_THAT(read(m_viewer->getFindings()), ElementsAre(StartsWith(first), StartsWith(second)));
    EXPECT_THAT(read(m_viewer->getTableFindings(table("orders"))), SizeIs(2));
    EXPECT_THAT(read(m_viewer->getFieldFindings(note)), ElementsAre(StartsWith(first)));
    EXPECT_THAT(read(m_viewer->getFieldFindings(field("orders/order"))), IsEmpty());
    expectFailure(!m_viewer->getFieldFindings(999), "There is no field with the number 999.");

    ASSERT_TRUE(m_viewer->setCurrentJob(m_sample.salesRuns[0]));
    EXPECT_FALSE(m_viewer->isExamined());
    EXPECT_THAT(read(m_viewer->getTypeBreakdown(note)), IsEmpty());
    EXPECT_THAT(read(m_viewer->getFindings()), IsEmpty());
}

TEST_F(PrViewerTest, DismissesFindingsInAllRuns) {
    const int orders = table("orders");
    const int note = field("orders/note");
    const auto reasons = [&] {
        std::vector<std::string> found;
        for (const auto findings = m_viewer->getFindings(); findings->next();)
            found.push_back(findings->isColumnNull(layout::FindingDismissal)
                                ? "none"
                                : findings->getColumnValue(layout::FindingDismissal).str() + " by " +
                                      findings->getColumnValue(layout::FindingDismissedBy).str());
        return found;
    };
    ASSERT_TRUE(m_viewer->dismissFinding(orders, note, "control-characters", "Ada", "Tabs are meant. \n"));
    EXPECT_THAT(reasons(), ElementsAre("Tabs are meant. by Ada", "none"));
    ASSERT_TRUE(m_viewer->setCurrentJob(m_sample.salesRuns[1]));
    ASSERT_TRUE(m_viewer->dismissFinding(orders, 0, "few-rows", "Grace", "A sample"));
    ASSERT_TRUE(m_viewer->dismissFinding(orders, note, "control-characters", "Grace", "Line ends, too"));
    EXPECT_THAT(reasons(), ElementsAre("Line ends, too by Grace", "A sample by Grace"));
    ASSERT_TRUE(m_viewer->restoreFinding(orders, note, "control-characters"));
    EXPECT_THAT(reasons(), ElementsAre("none", "A sample by Grace"));

    expectFailure(!m_viewer->dismissFinding(orders, note, "few-rows", "Ada", "There?"),
                  "There is no finding \"few-rows\" there.");
    expectFailure(!m_viewer->restoreFinding(orders, note, "few-rows"), "There is no finding \"few-rows\" there.");
    expectFailure(!m_viewer->dismissFinding(orders, 0, "few-rows", "Ada", " \n"),
                  "A finding is dismissed with a reason.");
}

TEST_F(PrViewerTest, ReadsHistogramsAndTheRanksOfValues) {
    EXPECT_THAT(read(m_viewer->getHistogram(field("customers/balance"))),
                ElementsAre("N|N|-1000|-500|3", "N|N|-500|0|900", "N|N|0|500|0", "N|N|500|1000|4"));
    EXPECT_THAT(read(m_viewer->getHistogram(field("customers/city"))), IsEmpty());
    expectFailure(!m_viewer->getHistogram(999), "There is no field with the number 999.");
    auto bins = m_viewer->getHistogram(field("customers/balance"));
    EXPECT_TRUE(bins->isColumnNull(layout::HistogramLow)) << "before the first row";
    EXPECT_EQ(bins->getColumnName(layout::HistogramHigh), KvbString("High"));

    EXPECT_THAT(read(m_viewer->getFreqDistRanks(field("customers/city"))), ElementsAre("1|151|11332"));
    EXPECT_THAT(read(m_viewer->getFreqDistRanks(field("parts/Column 1"))), ElementsAre("1|2|2"));
    expectFailure(!m_viewer->getFreqDistRanks(999), "There is no field with the number 999.");
}

TEST_F(PrViewerTest, WhatIsNotBuiltSaysSo) {
    auto unavailable = [&](bool failed) {
        EXPECT_TRUE(failed);
        EXPECT_THAT(error(), ::testing::EndsWith("not available in this version."));
    };
    unavailable(!m_viewer->getRdaResults(1, 1, 2));
    unavailable(!m_viewer->generatePKFKAnalysis(1, 2));
    EXPECT_THAT(read(m_viewer->getAlerts()), IsEmpty());
    EXPECT_FALSE(m_viewer->getAlertProperties(1));
    EXPECT_THAT(read(m_viewer->getTaskList(m_sample.salesJob)), IsEmpty());
}

TEST_F(PrViewerTest, ListsTheFunctionsOfTheLanguage) {
    auto viewer = PrViewer::create();
    KvbString name;
    KvbString parameters;
    KvbString description;
    char result = 0;
    int count1 = 0;
    int count2 = 0;
    std::map<std::string, std::string> signatures;
    for (int index = 0; index < viewer->getFunctionCount(); ++index) {
        ASSERT_TRUE(viewer->getFunctionInfo(index, name, parameters, result, description, count1, count2));
        EXPECT_FALSE(description.isEmpty()) << name.view();
        EXPECT_EQ(parameters.view().find_first_not_of("abdirsS"), std::string::npos) << name.view();
        EXPECT_NE(std::string_view("abdirs").find(result), std::string::npos) << name.view();
        EXPECT_LE(count1, count2);
        signatures[name.str()] = fmt::format("{}({}) {} {}", result, parameters.view(), count1, count2);
    }
    EXPECT_EQ(signatures.size(), static_cast<std::size_t>(viewer->getFunctionCount()));
    EXPECT_EQ(signatures.at("isnull"), "b(a) 1 1");
    EXPECT_EQ(signatures.at("left"), "s(si) 2 2");
    EXPECT_EQ(signatures.at("compare"), "i(ssb) 2 3");
    EXPECT_EQ(signatures.at("matches"), "b(sS) 2 2");
    EXPECT_FALSE(viewer->getFunctionInfo(-1, name, parameters, result, description, count1, count2));
    EXPECT_FALSE(
        viewer->getFunctionInfo(viewer->getFunctionCount(), name, parameters, result, description, count1, count2));
    EXPECT_FALSE(viewer->getErrorString().isEmpty());
}

TEST_F(PrViewerTest, CursorsThatOutliveTheSessionFailAndDoNotCrash) {
    auto tables = m_viewer->getTableList(-1);
    auto values = m_viewer->getFreqDist(field("customers/id"), "");
    ASSERT_TRUE(tables && values && tables->next() && values->next());
    m_viewer.reset();
    EXPECT_THROW(tables->next(), GenException);
    EXPECT_THROW(values->next(), GenException);
}

TEST(Distributions, ALongOneIsReadBlockByBlockInOrder) {
    TempFolder folder;
    const std::string path = folder.file("long.tavix");
    std::vector<std::string> texts;
    for (int number = 0; number < 10'000; ++number)
        texts.push_back("value " + std::to_string(number));
    std::vector<repository::ValueCount> rows;
    for (std::size_t number = 0; number < texts.size(); ++number)
        rows.push_back({texts[number], 20'000 - number, false});
    auto writer = repository::RunWriter::begin(path, {"Job", "", "", {}});
    ASSERT_TRUE(writer);
    repository::TableFacts table;
    table.name = "t";
    auto id = (*writer)->addTable(table);
    repository::FieldFacts facts;
    facts.name = "f";
    facts.values = rows;
    ASSERT_TRUE((*writer)->addField(*id, facts));
    ASSERT_TRUE((*writer)->commit({}));
    const int job = (*writer)->jobId();

    auto viewer = PrViewer::create();
    ASSERT_TRUE(viewer->init(path) && viewer->setCurrentJobSetup(job));
    auto cursor = viewer->getFreqDist(1, "");
    ASSERT_TRUE(cursor);
    std::size_t row = 0;
    for (; cursor->next(); ++row) {
        ASSERT_EQ(cursor->getColumnValue(0).view(), texts[row]);
        ASSERT_EQ(cursor->getColumnInt(1), static_cast<int>(20'000 - row));
    }
    EXPECT_EQ(row, texts.size());
    EXPECT_FALSE(cursor->next());
    EXPECT_TRUE(cursor->isColumnNull(0));

    struct Refusal final : PrViewDisplayMessage {
        bool progress(std::string_view, std::int64_t, std::int64_t) override { return false; }
    } refusal;
    viewer->setDisplayMessage(&refusal);
    ASSERT_TRUE(viewer->createNewNoteCategory("of a connection that is opened anew"));
    for (ProfileCursor* cursorOfAKind :
         {viewer->getFreqDist(1, "").release(), viewer->getReports().release(), viewer->getTableList(-1).release(),
          viewer->getFieldList(1).release(), viewer->getNoteCategories().release()}) {
        const ProfileCursorHandle stopped(cursorOfAKind);
        ASSERT_TRUE(stopped);
        try {
            while (stopped->next()) {
            }
            ADD_FAILURE() << stopped->getColumnName(0).view() << " went on to its end";
        } catch (const GenException& exception) {
            EXPECT_EQ(exception.getText().str(), "The reading was stopped.");
        }
    }
    viewer->setDisplayMessage(nullptr);
    EXPECT_TRUE(viewer->getReports()->next());
}

} // namespace
} // namespace tavix
