#include "base/Ascii.h"
#include "sql/ConnectionImpl.h"
#include "sql/FileCheck.h"
#include "sql/FileLocks.h"

#include <fmt/format.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <utility>

namespace tavix::sql {

namespace {

/// Large enough that a block of a distribution takes few pages, small enough that a list of fields reads little.
constexpr int kPageSize = 8192;
constexpr int kWriterCacheKib = 32 * 1024;

enum class Access { ReadWrite, ReadOnly, Immutable };

std::string parentOf(const std::string& path) {
    std::string parent = std::filesystem::path(path).parent_path().string();
    return parent.empty() ? "." : parent;
}

bool hasContent(const std::string& path) {
    struct stat info {};
    return ::stat(path.c_str(), &info) == 0 && info.st_size > 0;
}

/// The path as a URI, with every byte escaped that could have a meaning in one.
std::string toUri(const std::string& path, Access access, bool create) {
    std::error_code ignored;
    std::string uri = "file://";
    for (char character : std::filesystem::absolute(path, ignored).string()) {
        const bool isPlain = isAsciiLetter(character) || isAsciiDigit(character) || character == '/' ||
                             character == '.' || character == '-' || character == '_';
        if (isPlain)
            uri += character;
        else
            uri += fmt::format("%{:02X}", static_cast<unsigned char>(character));
    }
    if (access == Access::Immutable)
        uri += "?mode=ro&immutable=1";
    else if (access == Access::ReadOnly)
        uri += "?mode=ro";
    else
        uri += create ? "?mode=rwc" : "?mode=rw";
    return uri;
}

/// SQLite rejects a file that does not begin like a database, but takes a file of one byte for an empty one and would
/// overwrite it. Only the size is read: opening and closing the file here would drop the locks of this process's other
/// connections.
bool isTooSmall(const struct stat& info) {
    constexpr off_t kSmallestPage = 512;
    return info.st_size > 0 && info.st_size < kSmallestPage;
}

/// Checks the file before SQLite opens it.
Status checkFile(const std::string& path, OpenMode mode) {
    if (path.empty())
        return Error{"No repository was named."};
    if (path.find('\0') != std::string::npos)
        return Error{"The name of the repository contains a zero byte."};
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0) {
        if (errno == EACCES)
            return Error{fmt::format("There is no permission to open the repository \"{}\".", path)};
        if (errno != ENOENT)
            return Error{fmt::format("The repository \"{}\" cannot be opened: {}.", path, std::strerror(errno))};
        if (mode != OpenMode::Create)
            return Error{fmt::format("The repository \"{}\" does not exist.", path)};
        std::string parent = parentOf(path);
        if (::stat(parent.c_str(), &info) != 0 || !S_ISDIR(info.st_mode))
            return Error{fmt::format("The folder \"{}\" of the repository does not exist.", parent)};
        if (::access(parent.c_str(), W_OK) != 0)
            return Error{fmt::format("There is no permission to make the repository \"{}\".", path)};
        return {};
    }
    if (S_ISDIR(info.st_mode))
        return Error{fmt::format("\"{}\" is a folder, not a repository file.", path)};
    if (!S_ISREG(info.st_mode))
        return Error{fmt::format("\"{}\" is not a repository file.", path)};
    if (::access(path.c_str(), R_OK) != 0)
        return Error{fmt::format("There is no permission to read the repository \"{}\".", path)};
    if (mode != OpenMode::Read && (::access(path.c_str(), W_OK) != 0 || ::access(parentOf(path).c_str(), W_OK) != 0))
        return Error{
            fmt::format("The repository \"{}\" cannot be written: the file or its folder is read-only.", path)};
    if (isTooSmall(info))
        return Error{describeError({SQLITE_NOTADB}, {}, path)};
    return {};
}

Access readAccess(const std::string& path) {
    // A reader with write permission removes the files beside the repository when it closes; one without would leave
    // them behind. So a reader without write permission opens the file as immutable, unless a writer's unfinished log
    // is beside it.
    if (::access(path.c_str(), W_OK) == 0 && ::access(parentOf(path).c_str(), W_OK) == 0)
        return Access::ReadWrite;
    return hasContent(path + "-wal") ? Access::ReadOnly : Access::Immutable;
}

/// Forces SQLite to read the file's header, which shows whether it is a database.
bool configure(sqlite3* handle, OpenMode mode, bool isNew, bool keepLog) {
    auto execute = [&](const std::string& script) {
        return sqlite3_exec(handle, script.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK;
    };
    // Views and triggers of a foreign file must not call functions with side effects.
    sqlite3_db_config(handle, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    if (keepLog)
        sqlite3_db_config(handle, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
    if (mode == OpenMode::Read)
        return execute("PRAGMA cell_size_check = ON; PRAGMA query_only = ON; PRAGMA schema_version");
    if (isNew && !execute(fmt::format("PRAGMA page_size = {}; PRAGMA auto_vacuum = INCREMENTAL", kPageSize)))
        return false;
    return execute(fmt::format("PRAGMA cell_size_check = ON; PRAGMA foreign_keys = ON; PRAGMA synchronous = FULL; "
                               "PRAGMA cache_size = -{}; PRAGMA schema_version",
                               kWriterCacheKib));
}

bool readNumber(sqlite3* handle, const char* sql, std::int64_t& number) {
    sqlite3_stmt* statement = nullptr;
    const bool isRead =
        sqlite3_prepare_v2(handle, sql, -1, &statement, nullptr) == SQLITE_OK && sqlite3_step(statement) == SQLITE_ROW;
    if (isRead)
        number = sqlite3_column_int64(statement, 0);
    sqlite3_finalize(statement);
    return isRead;
}

/// Whether the file is shorter than its number of pages. SQLite notices missing pages, but reads a truncated page as if
/// it ended in zeros. With a log beside it the file may be short, because the log has the rest.
bool isCut(sqlite3* handle, const std::string& path) {
    std::int64_t pages = 0;
    std::int64_t pageSize = 0;
    struct stat info {};
    // Nobody truncates the file while it is being read.
    if (sqlite3_exec(handle, "BEGIN", nullptr, nullptr, nullptr) != SQLITE_OK)
        return false;
    const bool isKnown =
        readNumber(handle, "PRAGMA page_count", pages) && readNumber(handle, "PRAGMA page_size", pageSize);
    const auto isShort = [&] { return ::stat(path.c_str(), &info) == 0 && info.st_size < pages * pageSize; };
    // Checked twice: the log may have been moved into the file in between.
    const bool cut = isKnown && isShort() && !hasContent(path + "-wal") && isShort();
    sqlite3_exec(handle, "COMMIT", nullptr, nullptr, nullptr);
    return cut;
}

/// Opens and configures the handle of `impl`; on failure, ask the handle for the error.
bool openHandle(sqlite3*& handle, const std::string& path, OpenMode mode, Access access,
                std::chrono::milliseconds busyTimeout) {
    bool isNew = mode == OpenMode::Create && !hasContent(path);
    // A reader does not recover after a writer that died; the next writer does.
    bool keepLog = mode == OpenMode::Read && hasContent(path + "-wal");
    int flags = SQLITE_OPEN_URI | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE |
                (access == Access::ReadWrite ? SQLITE_OPEN_READWRITE : SQLITE_OPEN_READONLY) |
                (mode == OpenMode::Create ? SQLITE_OPEN_CREATE : 0);
    std::string uri = toUri(path, access, mode == OpenMode::Create);
    if (sqlite3_open_v2(uri.c_str(), &handle, flags, nullptr) != SQLITE_OK)
        return false;
    sqlite3_busy_timeout(handle, static_cast<int>(busyTimeout.count()));
    return configure(handle, mode, isNew, keepLog);
}

} // namespace

Status checkRepositoryFile(const std::string& path, OpenMode mode) {
    return checkFile(path, mode);
}

Result<std::unique_ptr<Connection>> Connection::openFile(const std::string& path, OpenMode mode,
                                                         std::chrono::milliseconds busyTimeout) {
    if (auto checked = checkFile(path, mode); !checked)
        return checked.error();
    useDescriptionLocks();
    auto impl = std::make_unique<Impl>();
    impl->path = path;
    impl->isReader = mode == OpenMode::Read;
    impl->hold.emplace(path);
    Access access = mode == OpenMode::Read ? readAccess(path) : Access::ReadWrite;
    bool isOpen = openHandle(impl->handle, path, mode, access, busyTimeout);
    if (!isOpen && mode == OpenMode::Read && access == Access::ReadWrite && isDiskFull(impl->failure()) &&
        !hasContent(path + "-wal")) {
        // The file shared by readers and writers cannot be created, so nobody can be writing.
        sqlite3_close_v2(std::exchange(impl->handle, nullptr));
        access = Access::Immutable;
        isOpen = openHandle(impl->handle, path, mode, access, busyTimeout);
    }
    if (!isOpen) {
        if (access == Access::ReadOnly && (sqlite3_errcode(impl->handle) & 0xff) == SQLITE_CANTOPEN)
            return Error{fmt::format("The repository \"{}\" was left in the middle of a change and its folder is "
                                     "read-only. Copy it, together with the files beside it, to a folder that can be "
                                     "written.",
                                     path)};
        return impl->fail();
    }
    if (isCut(impl->handle, path))
        return Error{describeError({SQLITE_IOERR_SHORT_READ}, {}, path)};
    return std::unique_ptr<Connection>(new Connection(std::move(impl)));
}

} // namespace tavix::sql
