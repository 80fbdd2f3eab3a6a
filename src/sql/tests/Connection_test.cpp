#include "base/tests/TempFolder.h"
#include "sql/Connection.h"
#include "sql/tests/FullDisk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <limits>
#include <thread>

namespace tavix::sql {
namespace {

using tavix::testing::TempFolder;
using ::testing::HasSubstr;

class ConnectionTest : public ::testing::Test {
  protected:
    std::unique_ptr<Connection> open(OpenMode mode, const std::string& name = "a.db") {
        auto connection = Connection::openFile(m_folder.file(name), mode, std::chrono::milliseconds(50));
        EXPECT_TRUE(connection) << connection.error().text;
        return connection ? std::move(*connection) : nullptr;
    }

    TempFolder m_folder;
};

TEST_F(ConnectionTest, ValuesComeBackAsTheyWent) {
    auto connection = open(OpenMode::Create);
    ASSERT_TRUE(connection->execute("CREATE TABLE t(a ANY) STRICT"));
    auto insert = connection->prepare("INSERT INTO t VALUES(?1)");
    ASSERT_TRUE(insert);
    constexpr auto kSmallest = std::numeric_limits<std::int64_t>::min();
    const std::string zeros("a\0b", 3);
    ASSERT_TRUE(insert->bind(1, kSmallest).run());
    ASSERT_TRUE(insert->bind(1, 0.1).run());
    ASSERT_TRUE(insert->bind(1, std::string_view()).run());
    ASSERT_TRUE(insert->bind(1, zeros).run());
    ASSERT_TRUE(insert->bindBlob(1, {}).run());
    ASSERT_TRUE(insert->bindNull(1).run());
    auto select = connection->prepare("SELECT a AS named FROM t ORDER BY rowid");
    ASSERT_TRUE(select);
    EXPECT_EQ(select->columnName(0), "named");
    ASSERT_EQ(select->step(), Step::Row);
    EXPECT_EQ(select->integer(0), kSmallest);
    ASSERT_EQ(select->step(), Step::Row);
    EXPECT_TRUE(select->isReal(0));
    EXPECT_EQ(select->real(0), 0.1);
    ASSERT_EQ(select->step(), Step::Row);
    EXPECT_EQ(select->type(0), ValueType::Text) << "an empty text is not null";
    ASSERT_EQ(select->step(), Step::Row);
    EXPECT_EQ(select->text(0), zeros);
    ASSERT_EQ(select->step(), Step::Row);
    EXPECT_EQ(select->type(0), ValueType::Blob);
    ASSERT_EQ(select->step(), Step::Row);
    EXPECT_TRUE(select->isNull(0));
    EXPECT_EQ(select->step(), Step::Done);
}

TEST_F(ConnectionTest, AStatementGivenBackKeepsNothing) {
    auto connection = open(OpenMode::Create);
    {
        auto first = connection->prepare("SELECT ?1");
        ASSERT_EQ(first->bind(1, 7).step(), Step::Row);
        // The same text used twice at a time makes two statements.
        auto second = connection->prepare("SELECT ?1");
        ASSERT_EQ(second->step(), Step::Row);
        EXPECT_TRUE(second->isNull(0));
    }
    auto again = connection->prepare("SELECT ?1");
    ASSERT_EQ(again->step(), Step::Row);
    EXPECT_TRUE(again->isNull(0));
}

TEST_F(ConnectionTest, MistakesAreTexts) {
    auto connection = open(OpenMode::Create);
    auto wrong = connection->prepare("SELECT nonsense FROM nowhere");
    ASSERT_FALSE(wrong);
    EXPECT_THAT(wrong.error().text, HasSubstr("no such table"));
    EXPECT_FALSE(connection->prepare("SELECT nonsense FROM nowhere"));
    auto unknown = connection->prepare("SELECT 1");
    EXPECT_FALSE(unknown->bind(5, 1).run()) << "a parameter that does not exist";
    EXPECT_FALSE(connection->queryInteger("SELECT 1 WHERE 0"));
}

TEST_F(ConnectionTest, ATransactionThatIsNotCommittedLeavesNothing) {
    auto connection = open(OpenMode::Create);
    ASSERT_TRUE(connection->enableConcurrency());
    ASSERT_TRUE(connection->execute("CREATE TABLE t(a)"));
    {
        auto transaction = Transaction::begin(*connection);
        ASSERT_TRUE(transaction);
        ASSERT_TRUE(connection->execute("INSERT INTO t VALUES(1)"));
        auto other = open(OpenMode::Write);
        auto second = Transaction::begin(*other);
        ASSERT_FALSE(second);
        EXPECT_THAT(second.error().text, HasSubstr("in use by another program"));
        EXPECT_EQ(*open(OpenMode::Read)->queryInteger("SELECT COUNT(*) FROM t"), 0) << "a reader does not wait";
    }
    EXPECT_EQ(*connection->queryInteger("SELECT COUNT(*) FROM t"), 0);
}

TEST_F(ConnectionTest, AReaderCannotWrite) {
    ASSERT_TRUE(open(OpenMode::Create)->execute("CREATE TABLE t(a)"));
    auto reader = open(OpenMode::Read);
    EXPECT_FALSE(reader->execute("INSERT INTO t VALUES(1)"));
    EXPECT_THAT(reader->errorText(), HasSubstr("cannot be written"));
}

TEST_F(ConnectionTest, AStoreWithoutRoomSaysThatTheDiskIsFull) {
    auto connection = open(OpenMode::Create);
    ASSERT_TRUE(connection->execute("CREATE TABLE t(a); PRAGMA max_page_count = 5"));
    auto insert = connection->prepare("INSERT INTO t VALUES(zeroblob(1000000))");
    auto outcome = insert->run();
    ASSERT_FALSE(outcome);
    EXPECT_THAT(outcome.error().text, HasSubstr("the disk is full"));
}

TEST_F(ConnectionTest, OnAFullDiskIsRead) {
    {
        auto connection = open(OpenMode::Create);
        ASSERT_TRUE(connection->enableConcurrency());
        ASSERT_TRUE(connection->execute("CREATE TABLE t(a); INSERT INTO t VALUES(7)"));
    }
    const tavix::testing::FullDisk disk(m_folder.path(), 0);
    {
        auto reader = open(OpenMode::Read);
        EXPECT_EQ(*reader->queryInteger("SELECT a FROM t"), 7);
    }
    auto writer = Connection::openFile(m_folder.file("a.db"), OpenMode::Write);
    ASSERT_FALSE(writer);
    EXPECT_THAT(writer.error().text, HasSubstr("could not be written: the disk is full"));
    // A log that could not be moved into the file must be read, too, which needs space.
    std::filesystem::remove(m_folder.file("a.db-shm"));
    std::ofstream(m_folder.file("a.db-wal")) << std::string(5000, 'x');
    auto reader = Connection::openFile(m_folder.file("a.db"), OpenMode::Read);
    ASSERT_FALSE(reader);
    EXPECT_THAT(reader.error().text, HasSubstr("could not be read: the disk is full"));
}

TEST_F(ConnectionTest, FreedPagesAreGivenBackInSteps) {
    auto connection = open(OpenMode::Create);
    ASSERT_TRUE(connection->enableConcurrency());
    ASSERT_TRUE(connection->execute("CREATE TABLE t(a); INSERT INTO t VALUES(zeroblob(1000000)); DELETE FROM t"));
    ASSERT_GT(*connection->queryInteger("PRAGMA freelist_count"), 100);
    int steps = 1;
    while (*connection->freeSpace(50))
        ++steps;
    EXPECT_GE(steps, 2);
    EXPECT_EQ(*connection->queryInteger("PRAGMA freelist_count"), 0);
}

TEST_F(ConnectionTest, AnyFileNameWillDo) {
    for (const char* name : {"a b.db", "what?.db", "100%41#.db", "süß.db", "file:x.db", "'\".db"}) {
        ASSERT_TRUE(open(OpenMode::Create, name)->execute("CREATE TABLE t(a)")) << name;
        EXPECT_TRUE(std::filesystem::exists(m_folder.file(name))) << name;
        EXPECT_EQ(*open(OpenMode::Read, name)->queryInteger("SELECT COUNT(*) FROM t"), 0);
    }
}

TEST_F(ConnectionTest, ARunningStatementCanBeInterrupted) {
    auto connection = open(OpenMode::Create);
    std::atomic<bool> ended = false;
    std::thread breaker([&] {
        while (!ended) {
            connection->interrupt();
            std::this_thread::yield();
        }
    });
    auto outcome = connection->queryInteger("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n) "
                                            "SELECT MAX(i) FROM n");
    ended = true;
    breaker.join();
    ASSERT_FALSE(outcome);
    EXPECT_THAT(outcome.error().text, HasSubstr("interrupted"));
}

} // namespace
} // namespace tavix::sql
