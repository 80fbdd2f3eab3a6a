#include "access/Layouts.h"
#include "access/PrViewer.h"
#include "base/AlertDefinition.h"
#include "base/tests/TempFolder.h"
#include "repository/DistributionStore.h"
#include "repository/Schema.h"
#include "sql/tests/StoredRows.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

/// Repositories written by earlier versions of the program.
namespace tavix {
namespace {

using repository::schemaSteps;
using testing::storedRows;
using testing::TempFolder;

class OldRepositories : public ::testing::TestWithParam<std::size_t> {
  protected:
    [[nodiscard]] std::size_t version() const { return GetParam(); }

    void SetUp() override {
        std::ofstream(m_source, std::ios::binary) << "id;city\n1;Bern\n2;Ulm\n3;Bern\n4;\n";
        auto old = sql::Connection::openFile(m_path, sql::OpenMode::Create);
        ASSERT_TRUE(old &&
                    repository::prepareSchema(**old, sql::OpenMode::Create, schemaSteps().first(version())).ok());
        const auto store = [&](const std::string& sql) {
            const Status done = (*old)->execute(sql.c_str());
            ASSERT_TRUE(done) << done.error().text << ": " << sql;
        };
        const auto modified = std::chrono::time_point_cast<std::chrono::milliseconds>(
            std::chrono::file_clock::to_sys(std::filesystem::last_write_time(m_source)));
        store("INSERT INTO job(id, name, created) VALUES(1, 'Job', 0);"
              "INSERT INTO run(id, job, started, finished) VALUES(1, 1, 0, 0);"
              "INSERT INTO data_source VALUES(1, 'files', 4);"
              "INSERT INTO profiled_table VALUES(1, 1, '', '', 'orders', '', 'Y');"
              "INSERT INTO field VALUES(1, 1, 'id'), (2, 1, 'city');");
        store(fmt::format(
            "INSERT INTO run_table(run, position, table_id, total_records, processed_records, damaged_records, query, "
            "filter, alternate_filter, file_path, file_delimiter, file_header, file_encoding, file_byte_order_mark, "
            "file_size, file_modified) VALUES(1, 1, 1, 4, 4, 0, '', '', '', '{}', ';', 1, 'UTF-8', 0, {}, {})",
            m_source, std::filesystem::file_size(m_source), modified.time_since_epoch().count()));
        for (const int field : {1, 2})
            store(fmt::format("INSERT INTO run_field(run, table_id, position, field, type_code, null_count, "
                              "minimum_length, quantile_rule, value_rows, value_sum, pattern_rows, pattern_sum) "
                              "VALUES(1, 1, {0}, {0}, 'S', 1, 1, '', 0, 0, 0, 0)",
                              field));
        store("INSERT INTO alert(id, table_id, field, description, metric, type_code) VALUES"
              "(1, 1, 2, 'Nulls', 2, 'SM'), (2, 1, 1, 'Records', 0, 'SM'), (3, 1, 1, 'Of nobody', 0, 'SM');"
              "INSERT INTO alert_property VALUES(1, 0, 'METRIC', '2'), (1, 1, 'JOB', '1'), (2, 0, 'JOB', '1'), "
              "(2, 1, 'RECORDS', '1'), (3, 0, 'JOB', '77')");
        const std::vector<repository::ValueCount> cities{{"Bern", 2, false}, {"", 1, true}, {"Ulm", 1, false}};
        ASSERT_TRUE(repository::storeDistribution(**old, {1, 2, repository::DistributionKind::Values}, cities).ok());
        if (version() >= 4)
            store("INSERT INTO run_file(run, table_id, position, path, quote) VALUES(1, 1, 1, '" + m_source +
                  "', '\"')");
    }

    std::string drilled(const KvbString& value) {
        const PrViewer::Handle viewer = PrViewer::create();
        EXPECT_TRUE(viewer->init(m_path) && viewer->setCurrentJobSetup(1)) << viewer->getErrorString().str();
        const PrViewerDrillCursorHandle rows = viewer->drillDown(2, value, false, nullptr, nullptr);
        if (!rows)
            return viewer->getErrorString().str();
        std::string text = fmt::format("{} in the run:", viewer->getDrillDownCount(2, value, false));
        while (rows->next())
            text += " " + rows->getColumnValue(0).str();
        return text + rows->getWarning().str();
    }

    TempFolder m_folder;
    std::string m_path = m_folder.file("r.tavix");
    std::string m_source = m_folder.file("orders.csv");
};

TEST_P(OldRepositories, HaveNoHistogramsTypesAndFindings) {
    const PrViewer::Handle viewer = PrViewer::create();
    ASSERT_TRUE(viewer->init(m_path) && viewer->setCurrentJobSetup(1)) << viewer->getErrorString().str();
    const ProfileCursorHandle bins = viewer->getHistogram(2);
    ASSERT_TRUE(bins) << viewer->getErrorString().str();
    EXPECT_FALSE(bins->next());
    EXPECT_FALSE(viewer->isExamined());
    const ProfileCursorHandle breakdown = viewer->getTypeBreakdown(2);
    ASSERT_TRUE(breakdown) << viewer->getErrorString().str();
    EXPECT_FALSE(breakdown->next());
    const ProfileCursorHandle findings = viewer->getFindings();
    ASSERT_TRUE(findings) << viewer->getErrorString().str();
    EXPECT_FALSE(findings->next());
    const ProfileCursorHandle ranks = viewer->getFreqDistRanks(2);
    ASSERT_TRUE(ranks && ranks->next());
    EXPECT_EQ(ranks->getColumnInt(layout::RankSum), 4);
}

TEST_P(OldRepositories, HaveTheAlertsOfTheirJobsAndNeitherMutesNorNotes) {
    const PrViewer::Handle viewer = PrViewer::create();
    ASSERT_TRUE(viewer->init(m_path) && viewer->setCurrentJobSetup(1)) << viewer->getErrorString().str();
    const auto rows = [&](ProfileCursorHandle cursor, std::initializer_list<int> columns) {
        std::string text = cursor ? "" : viewer->getErrorString().str();
        while (cursor && cursor->next()) {
            for (const int column : columns)
                text += (cursor->isColumnNull(column) ? "-" : cursor->getColumnValue(column).str()) + " ";
            text += "| ";
        }
        return text;
    };
    const auto alerts = [&] {
        return rows(viewer->getAlerts(),
                    {layout::AlertDescription, layout::AlertReportId, layout::AlertIsOfUser, layout::AlertAuthor});
    };
    const auto figures = [&] {
        return rows(viewer->getAlertFigures(1, -1, 0), {layout::FigureAlert, layout::FigureValue});
    };
    EXPECT_EQ(alerts(), "Nulls 1 0  | Records 1 0  | Of nobody 77 0  | ");
    EXPECT_EQ(figures(), "1 1 | 2 - | ");
    EXPECT_EQ(rows(viewer->getWatchedFigures(
                       {.table = 1, .field = 2, .metric = MetricId::NullCount, .rule = {}, .description = {}}, -1, 0),
                   {layout::FigureValue}),
              "1 | ");
    EXPECT_EQ(rows(viewer->getAllAlertProperties(), {0, 1}), "1 METRIC | 1 JOB | 2 JOB | 2 RECORDS | 3 JOB | ");
    EXPECT_EQ(rows(viewer->getAlertMutes(), {0}) + rows(viewer->getAlertChanges(1), {0}) +
                  rows(viewer->getAlertNotes(1), {0}),
              "");
    EXPECT_EQ(storedRows(m_path, "PRAGMA user_version"), fmt::format("{}\n", version())) << "reading changes nothing";

    // The first edit brings it up to date; an alert whose job is not there belongs to none.
    ASSERT_TRUE(viewer->muteAlert(2, "ada", "known", 1, {})) << viewer->getErrorString().str();
    EXPECT_EQ(alerts(), "Of nobody - 0  | Nulls 1 0  | Records 1 0  | ");
    EXPECT_EQ(storedRows(m_path, "SELECT alert_id, of_records, job_id, origin FROM v_alerts ORDER BY alert_id"),
              "1|0|1|job\n2|1|1|job\n3|0|NULL|job\n");
    EXPECT_EQ(figures(), "1 1 | 2 - | ");
    EXPECT_EQ(rows(viewer->getAlertMutes(), {layout::MutedAlert, layout::MuteReason}), "2 known | ");
}

TEST_P(OldRepositories, AreDrilledAsTheyAreAndOnceTheyAreUpToDate) {
    const auto expectRows = [&] {
        EXPECT_EQ(drilled("Bern"), "2 in the run: 1 3");
        EXPECT_EQ(drilled(KvbString()), "1 in the run: 4");
    };
    expectRows();
    EXPECT_EQ(storedRows(m_path, "PRAGMA user_version"), fmt::format("{}\n", version())) << "reading changes nothing";
    ASSERT_TRUE(repository::openRepository(m_path, sql::OpenMode::Write));
    EXPECT_EQ(storedRows(m_path, "PRAGMA user_version"), fmt::format("{}\n", schemaSteps().size()));
    expectRows();
    EXPECT_EQ(storedRows(m_path, "SELECT total_records, connection_user IS NULL FROM run_table"), "4|1\n");
    EXPECT_EQ(storedRows(m_path, "SELECT path, quote, delimiter IS NULL, size IS NULL FROM run_file"),
              version() < 4 ? "" : m_source + "|\"|1|1\n");
    EXPECT_EQ(storedRows(m_path, "SELECT count(*) FROM moved_file"), "0\n");
    EXPECT_EQ(storedRows(m_path, "PRAGMA integrity_check"), "ok\n");
    EXPECT_EQ(storedRows(m_path, "PRAGMA foreign_key_check"), "");
}

INSTANTIATE_TEST_SUITE_P(Versions, OldRepositories, ::testing::Range<std::size_t>(1, 8));

} // namespace
} // namespace tavix
