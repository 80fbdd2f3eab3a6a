#include "base/FileWriter.h"
#include "base/tests/TempFolder.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <fstream>
#include <iterator>
#include <vector>

namespace tavix {
namespace {

namespace fs = std::filesystem;

std::string contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void put(const std::string& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

struct stat statusOf(const std::string& path) {
    struct stat status {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
    return status;
}

unsigned modeOf(const std::string& path) {
    return statusOf(path).st_mode & 07777u;
}

std::vector<std::string> namesIn(const std::string& folder) {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

/// "" on success.
std::string write(const std::string& path, const std::string& text,
                  FileWriter::Reader reader = FileWriter::Reader::Require) {
    auto file = FileWriter::open(path, reader);
    if (!file)
        return file.error().text;
    Status written = (*file)->write(text);
    if (written)
        written = (*file)->commit();
    return written ? "" : written.error().text;
}

/// Acts as a user whom permissions bind, also where the tests run as root.
class OrdinaryUser {
  public:
    OrdinaryUser() {
        if (::geteuid() != 0)
            return;
        constexpr id_t kNobody = 65534;
        m_isChanged = ::setegid(kNobody) == 0 && ::seteuid(kNobody) == 0;
        EXPECT_TRUE(m_isChanged);
    }
    ~OrdinaryUser() {
        if (m_isChanged) {
            EXPECT_TRUE(::seteuid(0) == 0 && ::setegid(0) == 0);
        }
    }
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;

  private:
    bool m_isChanged = false;
};

/// Files of this process may not grow beyond so many bytes, which not even root can pass by.
class SmallFiles {
  public:
    explicit SmallFiles(rlim_t bytes) {
        m_handler = std::signal(SIGXFSZ, SIG_IGN);
        ::getrlimit(RLIMIT_FSIZE, &m_limit);
        const rlimit small{bytes, m_limit.rlim_max};
        EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    }
    ~SmallFiles() {
        ::setrlimit(RLIMIT_FSIZE, &m_limit);
        std::signal(SIGXFSZ, m_handler);
    }
    SmallFiles(const SmallFiles&) = delete;
    SmallFiles& operator=(const SmallFiles&) = delete;

  private:
    rlimit m_limit{};
    void (*m_handler)(int) = nullptr;
};

class FileWriterTest : public ::testing::Test {
  protected:
    /// In a folder that anybody may enter.
    FileWriterTest() { fs::permissions(m_folder.path(), fs::perms(0755)); }
    [[nodiscard]] std::string file(const std::string& name) const { return m_folder.file(name); }
    [[nodiscard]] std::vector<std::string> names() const { return namesIn(m_folder.path().string()); }

    testing::TempFolder m_folder;
};

using Names = std::vector<std::string>;

TEST_F(FileWriterTest, AFileAppearsWholeOrStaysAsItWas) {
    const std::string big(300'000, 'b');
    const mode_t mask = ::umask(027);
    EXPECT_EQ(write(file("new"), "a" + big), "");
    ::umask(mask);
    EXPECT_EQ(contentOf(file("new")), "a" + big);
    EXPECT_EQ(modeOf(file("new")), 0640u);
    put(file("old"), "old");
    {
        auto dropped = FileWriter::open(file("old"));
        ASSERT_TRUE(dropped);
        ASSERT_TRUE((*dropped)->write(big));
        EXPECT_EQ(contentOf(file("old")), "old");
    }
    EXPECT_EQ(contentOf(file("old")), "old");
    EXPECT_EQ(write(file("old"), ""), "");
    EXPECT_EQ(contentOf(file("old")), "");
    EXPECT_EQ(names(), (Names{"new", "old"}));
}

TEST_F(FileWriterTest, AReplacedFileKeepsItsModeAndOwner) {
    for (const unsigned mode : {0600u, 0664u, 0755u}) {
        put(file("old"), "old");
        fs::permissions(file("old"), fs::perms(mode));
        if (::geteuid() == 0) {
            ASSERT_EQ(::chown(file("old").c_str(), 1234, 4321), 0);
        }
        const struct stat before = statusOf(file("old"));
        EXPECT_EQ(write(file("old"), "new"), "");
        EXPECT_EQ(modeOf(file("old")), mode);
        EXPECT_EQ(statusOf(file("old")).st_uid, before.st_uid);
        EXPECT_EQ(statusOf(file("old")).st_gid, before.st_gid);
        EXPECT_NE(statusOf(file("old")).st_ino, before.st_ino);
    }
}

TEST_F(FileWriterTest, LinksAreFollowedToTheirTargets) {
    fs::create_directory(file("far"));
    put(file("far/target"), "old");
    fs::create_symlink("far/target", file("link"));
    fs::create_symlink(file("link"), file("to link"));
    fs::create_symlink("far/not yet", file("dangling"));
    fs::create_symlink("loop", file("loop"));
    EXPECT_EQ(write(file("to link"), "new"), "");
    EXPECT_EQ(contentOf(file("far/target")), "new");
    EXPECT_EQ(write(file("dangling"), "new"), "");
    EXPECT_EQ(contentOf(file("far/not yet")), "new");
    EXPECT_EQ(write(file("loop"), "new"), "Too many levels of symbolic links");
    for (const char* link : {"link", "to link", "dangling", "loop"})
        EXPECT_TRUE(fs::is_symlink(file(link))) << link;
    EXPECT_EQ(namesIn(file("far")), (Names{"not yet", "target"}));
}

TEST_F(FileWriterTest, WhereNoFileCanBeTheReasonIsGiven) {
    EXPECT_EQ(write("", "x"), "No such file or directory");
    EXPECT_EQ(write(std::string("a\0b", 3), "x"), "No such file or directory");
    EXPECT_EQ(write(file("none/x"), "x"), "No such file or directory");
    EXPECT_EQ(write(m_folder.path().string(), "x"), "Is a directory");
    EXPECT_EQ(write(file("new/"), "x"), "Is a directory");
    EXPECT_EQ(write(file(std::string(256, 'n')), "x"), "File name too long");
    EXPECT_EQ(names(), Names{});
    const std::string longest = file(std::string(255, 'n'));
    EXPECT_EQ(write(longest, "x"), "");
    EXPECT_EQ(write(longest, "y"), "");
    EXPECT_EQ(contentOf(longest), "y");
}

TEST_F(FileWriterTest, DevicesAndPipesAreWrittenThrough) {
    EXPECT_EQ(write("/dev/null", "x"), "");
    EXPECT_EQ(write("/dev/full", "x"), "No space left on device");
    EXPECT_TRUE(fs::is_character_file("/dev/full"));

    const std::string fifo = file("fifo");
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    EXPECT_EQ(write(fifo, "x"), "No such device or address");
    const int reader = ::open(fifo.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    for (const auto wish : {FileWriter::Reader::Require, FileWriter::Reader::Await}) {
        EXPECT_EQ(write(fifo, "abc", wish), "");
        std::array<char, 8> bytes{};
        EXPECT_EQ(::read(reader, bytes.data(), bytes.size()), 3);
    }
    auto file = FileWriter::open(fifo);
    ASSERT_TRUE(file);
    EXPECT_TRUE((*file)->isWrittenThrough());
    ::close(reader);
    const auto handler = std::signal(SIGPIPE, SIG_IGN);
    EXPECT_TRUE((*file)->write("x"));
    EXPECT_FALSE((*file)->commit());
    EXPECT_TRUE((*file)->hasReaderLeft());
    std::signal(SIGPIPE, handler);
}

TEST_F(FileWriterTest, OwnDescriptorsAreContinued) {
    put(file("log"), "before,");
    const int log = ::open(file("log").c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
    fs::create_symlink("/dev/fd/" + std::to_string(log), file("like stdout"));
    EXPECT_EQ(write(file("like stdout"), "then,"), "");
    EXPECT_EQ(write("/proc/self/fd/" + std::to_string(log), "after"), "");
    ::close(log);
    EXPECT_EQ(contentOf(file("log")), "before,then,after");
}

TEST_F(FileWriterTest, AWritableFileInAFolderThatIsNotIsOverwritten) {
    const std::string folder = file("locked");
    fs::create_directory(folder);
    const std::string path = folder + "/old";
    put(path, "a longer text than the new one");
    fs::permissions(path, fs::perms(0666));
    fs::permissions(folder, fs::perms(0555));
    const struct stat before = statusOf(path);
    {
        const OrdinaryUser user;
        EXPECT_EQ(write(folder + "/new", "x"), "Permission denied");
        auto dropped = FileWriter::open(path);
        ASSERT_TRUE(dropped) << dropped.error().text;
        ASSERT_TRUE((*dropped)->write("half"));
    }
    EXPECT_EQ(contentOf(path), "a longer text than the new one");
    {
        const OrdinaryUser user;
        EXPECT_EQ(write(path, "new"), "");
    }
    EXPECT_EQ(contentOf(path), "new");
    EXPECT_EQ(statusOf(path).st_ino, before.st_ino);
    EXPECT_EQ(namesIn(folder), Names{"old"});
    fs::permissions(folder, fs::perms(0755));
}

TEST_F(FileWriterTest, AFileThatTheUserMayNotWriteStays) {
    fs::permissions(m_folder.path(), fs::perms(0777));
    put(file("old"), "old");
    fs::permissions(file("old"), fs::perms(0444));
    const OrdinaryUser user;
    EXPECT_EQ(write(file("old"), "new"), "Permission denied");
    EXPECT_EQ(contentOf(file("old")), "old");
    EXPECT_EQ(names(), Names{"old"});
}

TEST_F(FileWriterTest, OwnersHardLinksAndAccessListsAreKeptByOverwriting) {
    fs::permissions(m_folder.path(), fs::perms(01777));
    put(file("of root"), "old");
    fs::permissions(file("of root"), fs::perms(0666));
    const struct stat before = statusOf(file("of root"));
    {
        const OrdinaryUser user;
        EXPECT_EQ(write(file("of root"), "new"), "");
    }
    EXPECT_EQ(contentOf(file("of root")), "new");
    EXPECT_EQ(statusOf(file("of root")).st_uid, before.st_uid);

    put(file("one"), "old");
    fs::create_hard_link(file("one"), file("two"));
    EXPECT_EQ(write(file("one"), std::string(200'000, 'n')), "");
    EXPECT_EQ(contentOf(file("two")), std::string(200'000, 'n'));
    EXPECT_EQ(names(), (Names{"of root", "one", "two"}));

    // Owner, user 1, group, mask, others; each an entry of tag, rights and id.
    constexpr std::array<std::uint16_t, 22> kList = {2,      0,       0x01, 6, 0xFFFF, 0xFFFF, 0x02, 6,
                                                     1,      0,       0x04, 4, 0xFFFF, 0xFFFF, 0x10, 6,
                                                     0xFFFF, 0xFFFFu, 0x20, 4, 0xFFFF, 0xFFFF};
    if (::setxattr(file("one").c_str(), "system.posix_acl_access", kList.data(), sizeof kList, 0) != 0)
        GTEST_SKIP() << "this file system has no access control lists";
    fs::remove(file("two"));
    EXPECT_EQ(write(file("one"), "new"), "");
    EXPECT_GT(::getxattr(file("one").c_str(), "system.posix_acl_access", nullptr, 0), 0);
}

TEST_F(FileWriterTest, AfterAFailureTheOldFileIsWhole) {
    const std::string big(1'000'000, 'n');
    put(file("old"), "old");
    put(file("one"), std::string(1000, 'o'));
    fs::create_hard_link(file("one"), file("two"));
    {
        const SmallFiles limit(100'000);
        EXPECT_EQ(write(file("old"), big), "File too large");
        EXPECT_EQ(write(file("one"), big), "File too large (in " + fs::temp_directory_path().string() + ")");
    }
    auto late = FileWriter::open(file("one"));
    ASSERT_TRUE(late);
    ASSERT_TRUE((*late)->write(big));
    {
        const SmallFiles limit(100'000);
        EXPECT_EQ((*late)->commit().error().text, "File too large");
    }
    EXPECT_EQ(contentOf(file("old")), "old");
    EXPECT_EQ(contentOf(file("two")), std::string(1000, 'o'));
    EXPECT_EQ(names(), (Names{"old", "one", "two"}));

    auto once = FileWriter::open(file("old"));
    ASSERT_TRUE(once);
    {
        const SmallFiles limit(100'000);
        EXPECT_FALSE((*once)->write(big));
    }
    EXPECT_FALSE((*once)->write("x"));
    EXPECT_FALSE((*once)->commit());
    EXPECT_EQ(contentOf(file("old")), "old");
}

TEST_F(FileWriterTest, AnOpenDatabaseIsNotReplaced) {
    const std::string why = "it belongs to a database that is open";
    put(file("a.tavix"), "data");
    EXPECT_EQ(write(file("a.tavix"), "data"), "");
    put(file("a.tavix-wal"), "log");
    EXPECT_EQ(write(file("a.tavix"), "x"), why);
    EXPECT_EQ(write(file("a.tavix-wal"), "x"), why);
    EXPECT_EQ(contentOf(file("a.tavix")) + contentOf(file("a.tavix-wal")), "datalog");
}

} // namespace
} // namespace tavix
