#include "sql/ConnectionImpl.h"

#include <fmt/format.h>
#include <sqlite3.h>

#include <cerrno>
#include <cstring>

namespace tavix::sql {

namespace {

std::string describeIo(const Failure& failure, const std::string& path) {
    std::string reason =
        failure.systemError != 0 ? fmt::format(": {}", std::strerror(failure.systemError)) : std::string();
    switch (failure.code) {
    case SQLITE_IOERR_WRITE:
    case SQLITE_IOERR_FSYNC:
    case SQLITE_IOERR_TRUNCATE:
    case SQLITE_IOERR_SHMSIZE:
        return fmt::format("The repository \"{}\" could not be {}{}.", path, failure.isReader ? "read" : "written",
                           reason);
    case SQLITE_IOERR_SHORT_READ:
        return fmt::format("The repository \"{}\" is damaged: a part of the file is missing.", path);
    default:
        return fmt::format("The repository \"{}\" could not be read or written{}.", path, reason);
    }
}

} // namespace

bool isDiskFull(const Failure& failure) {
    const int kind = failure.code & 0xff;
    return kind == SQLITE_FULL || ((kind == SQLITE_IOERR || kind == SQLITE_CANTOPEN) &&
                                   (failure.systemError == ENOSPC || failure.systemError == EDQUOT));
}

std::string describeError(const Failure& failure, std::string_view message, const std::string& path) {
    if (isDiskFull(failure))
        return fmt::format("The repository \"{}\" could not be {}: the disk is full.", path,
                           failure.isReader ? "read" : "written");
    switch (failure.code & 0xff) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return fmt::format("The repository \"{}\" is in use by another program. Try again later.", path);
    case SQLITE_CORRUPT:
        return fmt::format("The repository \"{}\" is damaged.", path);
    case SQLITE_NOTADB:
        return fmt::format("The file \"{}\" is not a repository: it is not a database.", path);
    case SQLITE_READONLY:
    case SQLITE_PERM:
        return fmt::format("The repository \"{}\" cannot be written: the file or its folder is read-only.", path);
    case SQLITE_CANTOPEN:
        return fmt::format("The repository \"{}\" cannot be opened{}.", path,
                           failure.systemError != 0 ? fmt::format(": {}", std::strerror(failure.systemError))
                                                    : std::string());
    case SQLITE_IOERR:
        return describeIo(failure, path);
    case SQLITE_INTERRUPT:
        return "The operation was interrupted.";
    case SQLITE_NOMEM:
        return "There is not enough memory.";
    case SQLITE_TOOBIG:
        return "A value is too long to be stored.";
    case SQLITE_CONSTRAINT:
        return fmt::format("The repository \"{}\" refuses the values: {}.", path, message);
    case SQLITE_SCHEMA:
    case SQLITE_ERROR:
        return fmt::format("The repository \"{}\" is not built as it should be: {}.", path, message);
    default:
        return fmt::format("The repository \"{}\" failed: {}.", path, message);
    }
}

} // namespace tavix::sql
