#include "access/PrViewer.h"
#include "access/tests/CursorText.h"
#include "base/GenException.h"
#include "base/tests/TempFolder.h"
#include "repository/RunWriter.h"
#include "repository/Schema.h"
#include "sql/Connection.h"
#include "support/SampleRepository.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <random>

namespace tavix {
namespace {

namespace fs = std::filesystem;
using tavix::testing::SampleRepository;
using tavix::testing::TempFolder;
using ::testing::HasSubstr;

std::string bytesOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void writeFile(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

/// Every file of a folder with its content.
std::map<std::string, std::string> listing(const fs::path& folder) {
    std::map<std::string, std::string> files;
    for (const auto& entry : fs::directory_iterator(folder))
        files[entry.path().filename()] = entry.is_regular_file() ? bytesOf(entry.path()) : std::string();
    return files;
}

/// The error of opening; "" if it succeeds.
std::string openingError(const std::string& path) {
    auto viewer = PrViewer::create();
    return viewer->init(path) ? std::string() : viewer->getErrorString().str();
}

/// Reads everything that a session shows; the first error, "" without one.
std::string readingError(const std::string& path, const SampleRepository& sample) {
    auto viewer = PrViewer::create();
    if (!viewer->init(path) || !viewer->setCurrentJobSetup(sample.salesJob))
        return viewer->getErrorString().str();
    auto drain = [&](ProfileCursorHandle cursor) {
        if (!cursor)
            return viewer->getErrorString().str();
        try {
            (void)testing::rowsOf(*cursor);
        } catch (const GenException& exception) {
            return exception.getText().str();
        }
        return std::string();
    };
    std::string error = drain(viewer->getTableList(-1));
    for (const auto& [name, table] : sample.tables) {
        if (error.empty() && name != "parts")
            error = drain(viewer->getFieldListPKR(table));
    }
    for (const auto& [name, field] : sample.fields) {
        if (name.starts_with("parts"))
            continue;
        for (const auto& read : {&PrViewer::getFreqDist, &PrViewer::getPatternDist}) {
            if (error.empty())
                error = drain(((*viewer).*read)(field, "", nullptr));
        }
        if (error.empty())
            error = drain(viewer->getOutliers(field));
    }
    return error;
}

/// Runs `body` in a child process and returns its exit code; 99 for a signal.
int inChild(const std::function<int()>& body) {
    pid_t child = ::fork();
    if (child == 0)
        ::_exit(body());
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 99;
}

class FaultTest : public ::testing::Test {
  protected:
    TempFolder m_folder;
    SampleRepository m_sample = SampleRepository::build(m_folder.file("sample.tavix"));
};

TEST_F(FaultTest, WhatIsNoRepositoryIsNamedAsWhatItIs) {
    EXPECT_THAT(openingError(m_folder.file("missing")), HasSubstr("does not exist"));
    EXPECT_THAT(openingError(m_folder.path().string()), HasSubstr("is a folder"));
    EXPECT_THAT(openingError(""), HasSubstr("No repository was named"));
    EXPECT_THAT(openingError("/dev/null"), HasSubstr("is not a repository file"));
    EXPECT_THAT(openingError("postgresql://user@host/db"), HasSubstr("no support for PostgreSQL"));
    for (const char* text : {"a", "id,name\n1,2\n", "SQLite format 3"}) {
        writeFile(m_folder.file("text.csv"), text);
        EXPECT_THAT(openingError(m_folder.file("text.csv")), HasSubstr("it is not a database")) << text;
    }
    writeFile(m_folder.file("long.txt"), std::string(100'000, 'x'));
    EXPECT_THAT(openingError(m_folder.file("long.txt")), HasSubstr("it is not a database"));
    writeFile(m_folder.file("empty"), "");
    EXPECT_THAT(openingError(m_folder.file("empty")), HasSubstr("is empty"));
    ASSERT_EQ(::mkfifo(m_folder.file("pipe").c_str(), 0600), 0);
    EXPECT_THAT(openingError(m_folder.file("pipe")), HasSubstr("is not a repository file"));
}

TEST_F(FaultTest, AForeignDatabaseIsRefusedAndNotTouched) {
    const std::string path = m_folder.file("foreign.db");
    {
        auto connection = sql::Connection::openFile(path, sql::OpenMode::Create);
        ASSERT_TRUE(connection);
        ASSERT_TRUE((*connection)->execute("CREATE TABLE job(id, name)"));
    }
    const std::string before = bytesOf(path);
    EXPECT_THAT(openingError(path), HasSubstr("database of another program"));
    auto writer = repository::RunWriter::begin(path, {"Job", "", "", {}});
    ASSERT_FALSE(writer);
    EXPECT_THAT(writer.error().text, HasSubstr("database of another program"));
    EXPECT_EQ(bytesOf(path), before);
}

TEST_F(FaultTest, ANewerVersionIsRefusedForReadingAndWriting) {
    {
        auto connection = sql::Connection::openFile(m_sample.path, sql::OpenMode::Write);
        ASSERT_TRUE(connection);
        ASSERT_TRUE((*connection)->setSchemaVersion(1000));
    }
    const std::string before = bytesOf(m_sample.path);
    EXPECT_THAT(openingError(m_sample.path), HasSubstr("newer version of this program"));
    EXPECT_FALSE(repository::RunWriter::begin(m_sample.path, {"Sales", "", "", {}}));
    EXPECT_EQ(bytesOf(m_sample.path), before);
}

TEST_F(FaultTest, ReadingWritesNothing) {
    auto before = listing(m_folder.path());
    ASSERT_EQ(before.size(), 1U) << "a closed repository is one file";
    EXPECT_EQ(readingError(m_sample.path, m_sample), "");
    EXPECT_EQ(listing(m_folder.path()), before);
}

TEST_F(FaultTest, CutAtAnyPlaceItGivesAnError) {
    const std::string whole = bytesOf(m_sample.path);
    const std::string path = m_folder.file("cut.tavix");
    // Nothing of the last page, which may hold hashes that no session reads, may remain.
    std::vector<std::size_t> sizes{1, 15, 16, 99, 100, 512, 4096, whole.size() - 8192};
    for (std::size_t size = 8192; size < whole.size(); size += 8192 * 3 + 1)
        sizes.push_back(size);
    for (std::size_t size : sizes) {
        writeFile(path, whole.substr(0, size));
        EXPECT_NE(readingError(path, m_sample), "") << size << " of " << whole.size() << " bytes";
    }
}

TEST_F(FaultTest, OverwrittenPagesNeverCrash) {
    const std::string whole = bytesOf(m_sample.path);
    const std::string path = m_folder.file("damaged.tavix");
    std::mt19937 random(7);
    std::size_t pages = whole.size() / 8192;
    int noticed = 0;
    for (std::size_t page = 0; page < pages; ++page) {
        std::string damaged = whole;
        for (std::size_t byte = 0; byte < 8192; ++byte)
            damaged[page * 8192 + byte] = static_cast<char>(random());
        writeFile(path, damaged);
        noticed += readingError(path, m_sample).empty() ? 0 : 1;
    }
    // Pages of earlier runs and of data that a session does not read are not read.
    EXPECT_GT(noticed, static_cast<int>(pages / 5)) << "of " << pages;
}

TEST_F(FaultTest, FlippedBitsInADistributionAreNoticed) {
    {
        auto connection = sql::Connection::openFile(m_sample.path, sql::OpenMode::Write);
        ASSERT_TRUE(connection);
        ASSERT_TRUE((*connection)
                        ->execute("UPDATE distribution_block SET payload = CAST(substr(payload, 1, 30) || "
                                  "x'FF' || substr(payload, 32) AS BLOB) WHERE length(payload) > 40"));
    }
    EXPECT_THAT(readingError(m_sample.path, m_sample), HasSubstr("A stored distribution is damaged"));
}

TEST_F(FaultTest, AReadOnlyPlaceIsReadButNotWritten) {
    // Permissions do not bind the superuser, so the tests run as another user then.
    fs::permissions(m_sample.path, fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
    fs::permissions(m_folder.path(), fs::perms(0555));
    auto before = listing(m_folder.path());
    const int code = inChild([&] {
        if (::geteuid() == 0 && (::setgid(65534) != 0 || ::setuid(65534) != 0))
            return 1;
        if (!readingError(m_sample.path, m_sample).empty())
            return 2;
        auto viewer = PrViewer::create();
        if (!viewer->init(m_sample.path) || viewer->createNewNoteCategory("x"))
            return 3;
        if (viewer->getErrorString().str().find("read-only") == std::string::npos)
            return 4;
        auto writer = repository::RunWriter::begin(m_sample.path, {"Sales", "", "", {}});
        if (writer || writer.error().text.find("read-only") == std::string::npos)
            return 5;
        auto fresh = repository::RunWriter::begin(m_folder.file("new.tavix"), {"Sales", "", "", {}});
        return fresh || fresh.error().text.find("permission") == std::string::npos ? 6 : 0;
    });
    EXPECT_EQ(code, 0);
    EXPECT_EQ(listing(m_folder.path()), before);
    fs::permissions(m_folder.path(), fs::perms(0755));
    fs::permissions(m_sample.path, fs::perms::none);
    EXPECT_EQ(inChild([&] {
                  if (::geteuid() == 0 && (::setgid(65534) != 0 || ::setuid(65534) != 0))
                      return 1;
                  return openingError(m_sample.path).find("no permission") != std::string::npos ? 0 : 2;
              }),
              0);
}

TEST_F(FaultTest, AFileHeldByAnotherProcessIsReported) {
    int ready[2];
    int done[2];
    ASSERT_EQ(::pipe(ready), 0);
    ASSERT_EQ(::pipe(done), 0);
    pid_t child = ::fork();
    if (child == 0) {
        ::close(done[1]);
        auto connection = sql::Connection::openFile(m_sample.path, sql::OpenMode::Write);
        bool held = connection && (*connection)
                                      ->execute("PRAGMA locking_mode = EXCLUSIVE; BEGIN EXCLUSIVE; "
                                                "INSERT INTO note_category(name) VALUES('x')");
        (void)!::write(ready[1], held ? "y" : "n", 1);
        char ignored = 0;
        (void)!::read(done[0], &ignored, 1);
        ::_exit(0);
    }
    char held = 0;
    ASSERT_EQ(::read(ready[0], &held, 1), 1);
    EXPECT_EQ(held, 'y');
    EXPECT_THAT(openingError(m_sample.path), HasSubstr("in use by another program"));
    ::close(done[1]);
    ::waitpid(child, nullptr, 0);
    for (int end : {ready[0], ready[1], done[0]})
        ::close(end);
    EXPECT_EQ(openingError(m_sample.path), "") << "the lock went with its owner";
}

TEST_F(FaultTest, AFullDiskFailsWithTextAndKeepsWhatWasThere) {
    const auto size = static_cast<rlim_t>(fs::file_size(m_sample.path));
    const int code = inChild([&] {
        // The kernel does not let a file grow beyond this, like a full disk.
        ::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{size, size};
        if (::setrlimit(RLIMIT_FSIZE, &limit) != 0)
            return 1;
        auto writer = repository::RunWriter::begin(m_sample.path, {"Sales", "", "", {}});
        if (!writer)
            return 2;
        repository::TableFacts table;
        table.name = "t";
        auto id = (*writer)->addTable(table);
        std::vector<std::string> texts;
        for (int number = 0; number < 400'000; ++number)
            texts.push_back("a rather long value with the number " + std::to_string(number));
        std::vector<repository::ValueCount> rows;
        for (const std::string& text : texts)
            rows.push_back({text, 1, false});
        repository::FieldFacts field;
        field.name = "f";
        field.values = rows;
        Status outcome = id ? (*writer)->addField(*id, field) : Status{id.error()};
        if (outcome.ok())
            outcome = (*writer)->commit({});
        if (outcome.ok())
            return 3;
        return outcome.error().text.find("could not be written") == std::string::npos ? 4 : 0;
    });
    EXPECT_EQ(code, 0);
    EXPECT_EQ(readingError(m_sample.path, m_sample), "");
    EXPECT_TRUE(repository::RunWriter::begin(m_sample.path, {"Sales", "", "", {}})) << "a new run needs no repair";
}

TEST_F(FaultTest, AWriterThatDiedLeavesTheRepositoryAsItWas) {
    EXPECT_EQ(inChild([&] {
                  auto writer = repository::RunWriter::begin(m_sample.path, {"Sales", "", "", {}});
                  if (!writer || !(*writer)->addLog(0, repository::LogLevel::Info, std::string(100'000, 'x')))
                      return 1;
                  return ::kill(::getpid(), SIGKILL);
              }),
              99);
    auto before = listing(m_folder.path());
    auto viewer = PrViewer::create();
    ASSERT_TRUE(viewer->init(m_sample.path)) << viewer->getErrorString().view();
    ASSERT_TRUE(viewer->setCurrentJobSetup(m_sample.salesJob));
    EXPECT_EQ(viewer->getJobCount(), 3);
    viewer.reset();
    EXPECT_EQ(bytesOf(m_sample.path), before.at("sample.tavix"));
}

} // namespace
} // namespace tavix
