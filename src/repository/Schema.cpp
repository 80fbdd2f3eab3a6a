#include "repository/Schema.h"

#include "base/HeldRepositories.h"
#include "repository/RunDeletion.h"
#include "repository/SchemaScripts.h"
#include "sql/FileCheck.h"

#include <fmt/format.h>

#include <vector>

namespace tavix::repository {

namespace {

// Writers wait for each other. Readers normally wait for nobody, so a long wait would only hide that something else
// holds the file.
constexpr std::chrono::milliseconds kWriterPatience(5000);
constexpr std::chrono::milliseconds kReaderPatience(1000);

/// Whether the store is empty and may become a repository; fails unless it is that or a repository already.
Result<bool> isFresh(sql::Connection& connection, sql::OpenMode mode) {
    auto mark = connection.applicationId();
    if (!mark)
        return mark.error();
    if (*mark == kApplicationId)
        return false;
    auto empty = connection.isEmpty();
    if (!empty)
        return empty.error();
    if (*mark != 0 || !*empty)
        return Error{fmt::format("\"{}\" is a database of another program, not a repository.", connection.path())};
    if (mode != sql::OpenMode::Create)
        return Error{fmt::format("\"{}\" is empty: no run was ever stored in it.", connection.path())};
    return true;
}

Status migrate(sql::Connection& connection, std::span<const char* const> steps) {
    auto transaction = sql::Transaction::begin(connection);
    if (!transaction)
        return transaction.error();
    // Read again: another program may have done the work while this one waited.
    auto version = connection.schemaVersion();
    if (!version)
        return version.error();
    for (auto next = static_cast<std::size_t>(*version); next < steps.size(); ++next) {
        if (auto done = connection.execute(steps[next]); !done)
            return done;
    }
    if (auto marked = connection.setApplicationId(kApplicationId); !marked)
        return marked;
    if (auto marked = connection.setSchemaVersion(static_cast<std::int32_t>(steps.size())); !marked)
        return marked;
    return transaction->commit();
}

} // namespace

std::span<const char* const> schemaSteps() {
    static const std::vector<const char*> kSteps = [] {
        std::vector<const char*> steps{kFirstSchema};
        steps.insert(steps.end(), kSchemaChanges.begin(), kSchemaChanges.end());
        return steps;
    }();
    return kSteps;
}

Status prepareSchema(sql::Connection& connection, sql::OpenMode mode, std::span<const char* const> steps) {
    auto fresh = isFresh(connection, mode);
    if (!fresh)
        return fresh.error();
    auto version = connection.schemaVersion();
    if (!version)
        return version.error();
    auto newest = static_cast<std::int64_t>(steps.size());
    if (*version > newest)
        return Error{fmt::format("The repository \"{}\" was made by a newer version of this program (its format is {}, "
                                 "this program knows formats up to {}).",
                                 connection.path(), *version, newest)};
    if (*version < kOldestReadable && !*fresh)
        return Error{fmt::format("The repository \"{}\" is damaged: it does not tell its format.", connection.path())};
    if (mode == sql::OpenMode::Read)
        return {};
    if (auto enabled = connection.enableConcurrency(); !enabled)
        return enabled;
    if (*version == newest)
        return {};
    if (auto done = migrate(connection, steps); !done)
        return done;
    // Write into the file at once: if the log of a failing first run filled the disk, the checkpoint would find no
    // space, and the log would remain.
    if (*fresh)
        connection.checkpoint();
    return {};
}

Status checkWritable(const std::string& path) {
    return sql::checkRepositoryFile(repositoryFile(path), sql::OpenMode::Create);
}

Result<std::unique_ptr<sql::Connection>> openRepository(const std::string& path, sql::OpenMode mode,
                                                        const std::function<bool()>& mayWait) {
    if (path.starts_with("postgresql:") || path.starts_with("postgres:"))
        return Error{"This build has no support for PostgreSQL repositories. Name a repository file instead."};
    auto connection = sql::Connection::openFile(repositoryFile(path), mode,
                                                mode == sql::OpenMode::Read ? kReaderPatience : kWriterPatience);
    if (!connection)
        return connection;
    if (mayWait)
        (*connection)->waitWhile(mayWait);
    if (auto prepared = prepareSchema(**connection, mode, schemaSteps()); !prepared)
        return prepared.error();
    if (mode != sql::OpenMode::Read) {
        if (auto swept = sweepDeletedRuns(**connection); !swept)
            return swept.error();
    }
    return connection;
}

} // namespace tavix::repository
