#include "base/tests/TempFolder.h"
#include "sql/Connection.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace tavix::sql {
namespace {

using tavix::testing::TempFolder;

/// Opens and closes the file like a careless part of the process, and returns whether another process may lock it.
bool isLocked(const std::string& path) {
    const int file = ::open(path.c_str(), O_RDWR | O_CLOEXEC);
    EXPECT_GE(file, 0) << path;
    struct flock lock {};
    lock.l_type = F_WRLCK;
    EXPECT_EQ(::fcntl(file, F_OFD_GETLK, &lock), 0);
    ::close(file);
    return lock.l_type != F_UNLCK;
}

class FileLocks : public ::testing::Test {
  protected:
    std::unique_ptr<Connection> open(OpenMode mode) {
        auto connection = Connection::openFile(m_path, mode, std::chrono::milliseconds(0));
        EXPECT_TRUE(connection) << connection.error().text;
        return connection ? std::move(*connection) : nullptr;
    }

    TempFolder m_folder;
    std::string m_path = m_folder.file("a.db");
};

TEST_F(FileLocks, OutliveOthersThatOpenAndCloseTheFile) {
    auto first = open(OpenMode::Create);
    ASSERT_TRUE(first->enableConcurrency());
    ASSERT_TRUE(first->execute("CREATE TABLE t(a)"));
    auto second = open(OpenMode::Write);
    for (const char* ending : {"", "-shm"}) {
        ASSERT_TRUE(isLocked(m_path + ending)) << ending;
        EXPECT_TRUE(isLocked(m_path + ending)) << ending << ": the locks went with the first descriptor";
    }
    first.reset();
    EXPECT_TRUE(isLocked(m_path)) << "the second connection needs them still";
    EXPECT_TRUE(second->execute("INSERT INTO t VALUES(1)"));
    second.reset();
    EXPECT_FALSE(isLocked(m_path)) << "nobody uses the file any more";
}

TEST_F(FileLocks, KeepWritersApartAsBefore) {
    auto first = open(OpenMode::Create);
    ASSERT_TRUE(first->execute("CREATE TABLE t(a)")); // without a log: readers and writers exclude each other
    auto second = open(OpenMode::Write);
    {
        auto writing = Transaction::begin(*first);
        ASSERT_TRUE(writing);
        EXPECT_TRUE(isLocked(m_path));
        EXPECT_FALSE(Transaction::begin(*second));
        ASSERT_TRUE(first->execute("INSERT INTO t VALUES(1)"));
        ASSERT_TRUE(writing->commit());
    }
    EXPECT_FALSE(isLocked(m_path));
    {
        auto reading = first->prepare("SELECT a FROM t");
        ASSERT_EQ(reading->step(), Step::Row);
        EXPECT_TRUE(isLocked(m_path));
        EXPECT_FALSE(second->execute("DELETE FROM t"));
    }
    EXPECT_TRUE(second->execute("DELETE FROM t"));
}

} // namespace
} // namespace tavix::sql
