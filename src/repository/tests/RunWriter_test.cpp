#include "base/tests/TempFolder.h"
#include "repository/RunDeletion.h"
#include "repository/RunWriter.h"
#include "repository/Schema.h"
#include "sql/tests/FullDisk.h"
#include "sql/tests/StoredRows.h"
#include "support/SampleRepository.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace tavix::repository {
namespace {

using tavix::testing::SampleRepository;
using tavix::testing::storedRows;
using tavix::testing::TempFolder;
using ::testing::HasSubstr;

std::int64_t ask(const std::string& path, const std::string& sql) {
    auto connection = sql::Connection::openFile(path, sql::OpenMode::Read);
    EXPECT_TRUE(connection) << connection.error().text;
    auto value = (*connection)->queryInteger(sql);
    EXPECT_TRUE(value) << value.error().text;
    return value ? *value : -1;
}

/// The rows of a run in all tables, directly or through others.
std::int64_t rowsOfRun(const std::string& path, int run) {
    auto connection = sql::Connection::openFile(path, sql::OpenMode::Read);
    EXPECT_TRUE(connection) << connection.error().text;
    auto tables = (*connection)
                      ->prepare("SELECT t.name FROM sqlite_master t JOIN pragma_table_info(t.name) c ON c.name = 'run' "
                                "WHERE t.type = 'table'");
    EXPECT_TRUE(tables);
    std::int64_t rows = 0;
    while (tables->step() == sql::Step::Row)
        rows +=
            ask(path, "SELECT COUNT(*) FROM " + std::string(tables->text(0)) + " WHERE run = " + std::to_string(run));
    return rows;
}

TEST(RunWriter, NothingIsSeenBeforeCommitAndAllOfItAfter) {
    TempFolder folder;
    const std::string path = folder.file("r.tavix");
    auto writer = RunWriter::begin(path, {"Job", "", "", {}});
    ASSERT_TRUE(writer) << writer.error().text;
    TableFacts table;
    table.dataSource = "files";
    table.name = "t";
    auto id = (*writer)->addTable(table);
    ASSERT_TRUE(id);
    FieldFacts field;
    field.name = "f";
    field.ordinal = 1;
    ASSERT_TRUE((*writer)->addField(*id, field));
    EXPECT_EQ(ask(path, "SELECT COUNT(*) FROM run"), 0);
    ASSERT_TRUE((*writer)->commit({}));
    EXPECT_EQ(ask(path, "SELECT COUNT(*) FROM v_fields"), 1);
    EXPECT_FALSE((*writer)->commit({})) << "a run is committed once";

    auto dropped = RunWriter::begin(path, {"Job", "", "", {}});
    ASSERT_TRUE(dropped);
    id = (*dropped)->addTable(table);
    ASSERT_TRUE(id);
    ASSERT_TRUE((*dropped)->addField(*id, field));
    dropped->reset();
    EXPECT_EQ(ask(path, "SELECT COUNT(*) FROM run"), 1);
    EXPECT_EQ(ask(path, "SELECT COUNT(*) FROM run_table"), 1);
    EXPECT_EQ(ask(path, "SELECT COUNT(*) FROM run_field"), 1);
}

TEST(RunWriter, KeepsHowATableOfADatabaseWasReached) {
    TempFolder folder;
    const std::string path = folder.file("r.tavix");
    {
        auto old = sql::Connection::openFile(path, sql::OpenMode::Create);
        ASSERT_TRUE(old && prepareSchema(**old, sql::OpenMode::Create, schemaSteps().first(2)));
    }
    auto writer = RunWriter::begin(path, {"Job", "", "", {}});
    ASSERT_TRUE(writer) << writer.error().text;
    TableFacts table;
    table.name = "file";
    ASSERT_TRUE((*writer)->addTable(table));
    table.name = "orders";
    table.sourceKind = SourceKind::Odbc;
    table.connection = "DSN=shop";
    ASSERT_TRUE((*writer)->addTable(table));
    ASSERT_TRUE((*writer)->commit({}));
    EXPECT_EQ(ask(path, "SELECT COUNT(*) FROM v_tables v JOIN run_table t ON t.run = v.run AND t.table_id = v.table_id "
                        "WHERE t.connection IS CASE v.table_name WHEN 'orders' THEN 'DSN=shop' END"),
              2);
}

TEST(RunWriter, KeepsTheFilesOfATable) {
    TempFolder folder;
    const std::string path = folder.file("r.tavix");
    {
        auto old = sql::Connection::openFile(path, sql::OpenMode::Create);
        ASSERT_TRUE(old && prepareSchema(**old, sql::OpenMode::Create, schemaSteps().first(3)));
    }
    auto writer = RunWriter::begin(path, {"Job", "", "", {}});
    ASSERT_TRUE(writer) << writer.error().text;
    TableFacts table;
    table.name = "one";
    table.isTextFile = true;
    table.textFile.path = "/data/one.csv";
    ASSERT_TRUE((*writer)->addTable(table));
    table.name = "set";
    table.textFile.path = "/data/*.csv";
    table.textFile.quote = '\0';
    const UtcTime time{std::chrono::milliseconds(5)};
    table.textFile.files = {{"/data/b.csv", '\0', "UTF-16LE", true, 7, time},
                            {"/data/a.csv", ';', "UTF-8", false, 8, time}};
    const auto set = (*writer)->addTable(table);
    ASSERT_TRUE(set);
    ASSERT_TRUE((*writer)->commit({}));
    EXPECT_EQ(storedRows(path, "SELECT position, path, quote, delimiter, encoding, byte_order_mark, size, modified "
                               "FROM run_file ORDER BY table_id, position"),
              "1|/data/one.csv|\"|,|UTF-8|0|0|0\n"
              "1|/data/b.csv|||UTF-16LE|1|7|5\n"
              "2|/data/a.csv||;|UTF-8|0|8|5\n");
}

TEST(RunWriter, AFailedCallEndsTheRun) {
    TempFolder folder;
    const std::string path = folder.file("r.tavix");
    auto writer = RunWriter::begin(path, {"Job", "", "", {}});
    ASSERT_TRUE(writer);
    TableFacts table;
    table.dataSource = "files";
    table.name = "t";
    ASSERT_TRUE((*writer)->addTable(table));
    auto again = (*writer)->addTable(table);
    ASSERT_FALSE(again);
    EXPECT_EQ(again.error().text, "The table \"t\" is in the run twice.");
    EXPECT_FALSE((*writer)->commit({}));
    EXPECT_EQ(ask(path, "SELECT COUNT(*) FROM run"), 0);
}

TEST(RunWriter, AFirstRunThatFillsTheDiskLeavesNothingBesideTheFile) {
    TempFolder folder;
    const std::string path = folder.file("r.tavix");
    const tavix::testing::FullDisk disk(folder.path(), 4'000'000);
    RunDescription run{"Job", "", "", {}};
    run.memory = 100'000;
    auto writer = RunWriter::begin(path, run);
    ASSERT_TRUE(writer) << writer.error().text;
    Status logged;
    for (int line = 0; logged && line < 5000; ++line)
        logged = (*writer)->addLog(0, LogLevel::Info, std::string(1000, 'x'));
    ASSERT_FALSE(logged);
    EXPECT_THAT(logged.error().text, HasSubstr("the disk is full"));
    writer->reset();
    EXPECT_FALSE(std::filesystem::exists(path + "-wal")) << std::filesystem::file_size(path + "-wal");
    EXPECT_TRUE(openRepository(path, sql::OpenMode::Read));
}

TEST(RunWriter, WrongIdsAndNamesAreRefused) {
    TempFolder folder;
    auto fresh = [&] {
        auto writer = RunWriter::begin(folder.file("r.tavix"), {"Job", "", "", {}});
        EXPECT_TRUE(writer);
        return std::move(writer).value();
    };
    EXPECT_FALSE(RunWriter::begin(folder.file("r.tavix"), {"", "", "", {}}));
    EXPECT_FALSE(fresh()->addField(1, FieldFacts()));
    EXPECT_FALSE(fresh()->addLog(1, LogLevel::Info, "text"));
    auto collection = fresh()->addCollection({"c", "", {{"t", "f"}}});
    ASSERT_FALSE(collection);
    EXPECT_EQ(collection.error().text, "Collection \"c\": There is no field \"f\" in a table \"t\" of the run.");
    auto writer = fresh();
    TableFacts table;
    table.name = "t";
    auto id = writer->addTable(table);
    ASSERT_TRUE(id);
    FieldFacts field;
    field.name = "f";
    ASSERT_TRUE(writer->addField(*id, field));
    EXPECT_FALSE(writer->addField(*id, field)) << "a field twice";
}

TEST(RunWriter, IdsAreTheSameInEveryRun) {
    TempFolder folder;
    auto sample = SampleRepository::build(folder.file("r.tavix"));
    EXPECT_EQ(ask(sample.path, "SELECT COUNT(*) FROM profiled_table"), 8);
    EXPECT_EQ(ask(sample.path, "SELECT COUNT(*) FROM run_table"), 6 + 7 + 7 + 1);
    EXPECT_EQ(ask(sample.path, "SELECT COUNT(*) FROM field"), ask(sample.path, "SELECT COUNT(DISTINCT field) FROM "
                                                                               "run_field"));
}

TEST(RunWriter, ReadsAsItIsWritten) {
    // Texts of values are not converted to numbers when stored.
    TempFolder folder;
    auto sample = SampleRepository::build(folder.file("r.tavix"));
    EXPECT_EQ(ask(sample.path, "SELECT COUNT(*) FROM v_fields WHERE field_name = 'code' AND minimum_value = '007'"), 3);
    EXPECT_EQ(ask(sample.path, "SELECT COUNT(*) FROM pragma_integrity_check WHERE integrity_check <> 'ok'"), 0);
    EXPECT_EQ(ask(sample.path, "SELECT COUNT(*) FROM pragma_foreign_key_check"), 0);
}

TEST(RunWriter, TheViewsTellWhatWasWritten) {
    TempFolder folder;
    auto sample = SampleRepository::build(folder.file("r.tavix"));
    EXPECT_EQ(ask(sample.path, "SELECT COUNT(*) FROM v_runs WHERE job = 'Sales' AND records > 1200 AND started IN "
                               "('2026-01-15T10:00:00.000Z', '2026-02-15T10:00:00.000Z', '2026-03-15T10:00:00.000Z')"),
              3);
    EXPECT_EQ(ask(sample.path, "SELECT COUNT(*) FROM v_tables WHERE file_path LIKE '%airports.csv'"), 3);
    EXPECT_EQ(ask(sample.path, "SELECT COUNT(*) FROM v_percentiles WHERE field_name = 'balance'"), 15);
    EXPECT_EQ(ask(sample.path, "SELECT COUNT(*) FROM v_outliers WHERE side = 'H'"), 15);
    EXPECT_EQ(ask(sample.path, "SELECT SUM(count) FROM v_histograms WHERE field_name = 'balance' AND low < 500"), 2709);
    EXPECT_EQ(ask(sample.path, "SELECT COUNT(*) FROM v_log WHERE level = 2"), 3);
    EXPECT_EQ(ask(sample.path, "SELECT COUNT(*) FROM v_collections"), 5);
}

TEST(RunDeletion, RemovesEveryRowAndGivesTheSpaceBack) {
    TempFolder folder;
    auto sample = SampleRepository::build(folder.file("r.tavix"));
    auto size = std::filesystem::file_size(sample.path);
    {
        auto connection = openRepository(sample.path, sql::OpenMode::Write);
        ASSERT_TRUE(connection);
        EXPECT_FALSE(deleteRuns(**connection, sample.salesJob, -1, -1)) << "one run must stay";
        EXPECT_FALSE(deleteRuns(**connection, sample.inventoryJob, -1, sample.inventoryRun));
        EXPECT_FALSE(deleteRuns(**connection, sample.salesJob, 1000, 2000)) << "nothing in this range";
        ASSERT_TRUE(deleteRuns(**connection, sample.salesJob, -1, sample.salesRuns[1]));
    }
    EXPECT_EQ(rowsOfRun(sample.path, sample.salesRuns[0]), 0);
    EXPECT_EQ(rowsOfRun(sample.path, sample.salesRuns[1]), 0);
    EXPECT_GT(rowsOfRun(sample.path, sample.salesRuns[2]), 0);
    EXPECT_EQ(ask(sample.path, "PRAGMA freelist_count"), 0);
    EXPECT_LT(std::filesystem::file_size(sample.path), size);
    EXPECT_EQ(ask(sample.path, "SELECT COUNT(*) FROM deleted_run"), 0);
}

TEST(RunDeletion, TheNextWriterFinishesWhatWasCutShort) {
    TempFolder folder;
    auto sample = SampleRepository::build(folder.file("r.tavix"));
    int run = sample.salesRuns[0];
    {
        auto connection = sql::Connection::openFile(sample.path, sql::OpenMode::Write);
        ASSERT_TRUE(connection);
        // The state after the program dies right after the runs were hidden.
        ASSERT_TRUE((*connection)
                        ->execute("INSERT INTO deleted_run VALUES(" + std::to_string(run) +
                                  "); DELETE FROM run WHERE id = " + std::to_string(run)));
    }
    EXPECT_GT(rowsOfRun(sample.path, run), 0);
    EXPECT_EQ(ask(sample.path, "SELECT COUNT(*) FROM v_fields WHERE run = " + std::to_string(run)), 0);
    ASSERT_TRUE(openRepository(sample.path, sql::OpenMode::Write));
    EXPECT_EQ(rowsOfRun(sample.path, run), 0);
    EXPECT_GT(rowsOfRun(sample.path, sample.salesRuns[1]), 0);
}

TEST(Schema, RefusesNewerAndMigratesOlder) {
    TempFolder folder;
    const std::string path = folder.file("r.tavix");
    constexpr const char* kFirst[] = {"CREATE TABLE a(x)"};
    constexpr const char* kBoth[] = {"CREATE TABLE a(x)", "ALTER TABLE a ADD COLUMN y DEFAULT 7"};
    constexpr const char* kBroken[] = {"CREATE TABLE a(x)", "CREATE TABLE b(x); nonsense"};
    {
        auto connection = sql::Connection::openFile(path, sql::OpenMode::Create);
        ASSERT_TRUE(connection);
        ASSERT_TRUE(prepareSchema(**connection, sql::OpenMode::Create, kFirst));
        ASSERT_TRUE((*connection)->execute("INSERT INTO a VALUES(1)"));
        EXPECT_FALSE(prepareSchema(**connection, sql::OpenMode::Write, kBroken));
    }
    EXPECT_EQ(ask(path, "PRAGMA user_version"), 1) << "a migration that fails leaves the old version";
    EXPECT_EQ(ask(path, "SELECT COUNT(*) FROM sqlite_master"), 1);
    auto connection = sql::Connection::openFile(path, sql::OpenMode::Write);
    ASSERT_TRUE(connection);
    EXPECT_TRUE(prepareSchema(**connection, sql::OpenMode::Read, kBoth));
    EXPECT_EQ(ask(path, "PRAGMA user_version"), 1) << "reading changes nothing";
    ASSERT_TRUE(prepareSchema(**connection, sql::OpenMode::Write, kBoth));
    EXPECT_EQ(*(*connection)->queryInteger("SELECT y FROM a"), 7);
    auto newer = prepareSchema(**connection, sql::OpenMode::Write, kFirst);
    ASSERT_FALSE(newer);
    EXPECT_THAT(newer.error().text, HasSubstr("newer version of this program"));
}

} // namespace
} // namespace tavix::repository
