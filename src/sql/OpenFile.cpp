#include "sql/ConnectionImpl.h"
#include "sql/FileCheck.h"

#include <fmt/format.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>

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

/// The path as a URI; every byte that could mean something in one is escaped.
std::string toUri(const std::string& path, Access access, bool create) {
    std::error_code ignored;
    std::string uri = "file://";
    for (char character : std::filesystem::absolute(path, ignored).string()) {
        auto byte = static_cast<unsigned char>(character);
        bool plain = (byte >= '0' && byte <= '9') || (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
                     byte == '/' || byte == '.' || byte == '-' || byte == '_';
        if (plain)
            uri += character;
        else
            uri += fmt::format("%{:02X}", byte);
    }
    if (access == Access::Immutable)
        uri += "?mode=ro&immutable=1";
    else if (access == Access::ReadOnly)
        uri += "?mode=ro";
    else
        uri += create ? "?mode=rwc" : "?mode=rw";
    return uri;
}

/// A file of our store, or one without content. Asked before the store is, which takes a file of one byte for an empty
/// database and would write over it.
Status checkContent(const std::string& path) {
    constexpr std::string_view kMark("SQLite format 3\0", 16);
    std::array<char, kMark.size()> start{};
    std::ifstream file(path, std::ios::binary);
    file.read(start.data(), start.size());
    auto size = static_cast<std::size_t>(file.gcount());
    if (size != 0 && std::string_view(start.data(), size) != kMark)
        return Error{describeError(SQLITE_NOTADB, {}, 0, path)};
    return {};
}

/// What is wrong with the file before the store looks into it.
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
    return checkContent(path);
}

Access readAccess(const std::string& path) {
    // A reader that may write removes the files beside the repository when it closes; one that may not would leave
    // them behind. So whoever may not write takes the file as unchanging, unless a writer's unfinished business
    // lies beside it.
    if (::access(path.c_str(), W_OK) == 0 && ::access(parentOf(path).c_str(), W_OK) == 0)
        return Access::ReadWrite;
    return hasContent(path + "-wal") ? Access::ReadOnly : Access::Immutable;
}

/// Does what shows whether the file is a database at all.
bool configure(sqlite3* handle, OpenMode mode, bool isNew, bool keepLog) {
    auto execute = [&](const std::string& script) {
        return sqlite3_exec(handle, script.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK;
    };
    // Views and triggers of a foreign file are not to call functions with effects.
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

} // namespace

Status checkRepositoryFile(const std::string& path, OpenMode mode) {
    return checkFile(path, mode);
}

Result<std::unique_ptr<Connection>> Connection::openFile(const std::string& path, OpenMode mode,
                                                         std::chrono::milliseconds busyTimeout) {
    if (auto checked = checkFile(path, mode); !checked)
        return checked.error();
    bool isNew = mode == OpenMode::Create && !hasContent(path);
    // A reader does not tidy up after a writer that died: that is the next writer's work.
    bool keepLog = mode == OpenMode::Read && hasContent(path + "-wal");
    Access access = mode == OpenMode::Read ? readAccess(path) : Access::ReadWrite;

    auto impl = std::make_unique<Impl>();
    impl->path = path;
    int flags = SQLITE_OPEN_URI | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE |
                (access == Access::ReadWrite ? SQLITE_OPEN_READWRITE : SQLITE_OPEN_READONLY) |
                (mode == OpenMode::Create ? SQLITE_OPEN_CREATE : 0);
    std::string uri = toUri(path, access, mode == OpenMode::Create);
    if (sqlite3_open_v2(uri.c_str(), &impl->handle, flags, nullptr) != SQLITE_OK)
        return impl->fail();
    sqlite3_busy_timeout(impl->handle, static_cast<int>(busyTimeout.count()));
    if (!configure(impl->handle, mode, isNew, keepLog)) {
        if (access == Access::ReadOnly && (sqlite3_errcode(impl->handle) & 0xff) == SQLITE_CANTOPEN)
            return Error{fmt::format("The repository \"{}\" was left in the middle of a change and its folder is "
                                     "read-only. Copy it, together with the files beside it, to a folder that can be "
                                     "written.",
                                     path)};
        return impl->fail();
    }
    return std::unique_ptr<Connection>(new Connection(std::move(impl)));
}

} // namespace tavix::sql
