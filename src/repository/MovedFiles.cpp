#include "repository/MovedFiles.h"

#include "repository/BindValue.h"

#include <fmt/format.h>

#include <string_view>

namespace tavix::repository {

namespace {

constexpr std::int64_t kFilesSince = 4; ///< the version that added run_file
constexpr std::int64_t kMovesSince = 6; ///< the version that added moved_file and the size of each file

/// More files than anybody locates by hand.
constexpr const char* kMoves =
    "SELECT path, size, modified, new_path FROM moved_file ORDER BY found DESC, path LIMIT 10000";

// A table of one file has its size and time in run_table; the path of one of several is their pattern.
constexpr std::string_view kFilesOfTables =
    "SELECT file_path, COALESCE(file_size, -1), COALESCE(file_modified, -1) FROM run_table WHERE file_path = ?1";
constexpr std::string_view kFilesOfSets = " UNION SELECT f.path, {}, {} FROM run_file f JOIN run_table t "
                                          "ON t.run = f.run AND t.table_id = f.table_id "
                                          "WHERE f.path = ?1 AND t.file_path IS NOT f.path";

std::string filesSql(std::int64_t version) {
    std::string sql(kFilesOfTables);
    if (version >= kMovesSince)
        sql += fmt::format(kFilesOfSets, "COALESCE(f.size, -1)", "COALESCE(f.modified, -1)");
    else if (version >= kFilesSince)
        sql += fmt::format(kFilesOfSets, -1, -1);
    return sql;
}

ReadFile fileOf(const sql::Statement& row) {
    return {std::string(row.text(0)), row.integer(1), row.integer(2)};
}

/// Calls take(row) for each row.
template <typename Take>
Status forEachRow(sql::Connection& connection, sql::Statement& statement, Take take) {
    sql::Step step = statement.step();
    for (; step == sql::Step::Row; step = statement.step())
        take(statement);
    return step == sql::Step::Failed ? Status{Error{connection.errorText()}} : Status{};
}

} // namespace

Result<std::vector<MovedFile>> readMovedFiles(sql::Connection& connection) {
    std::vector<MovedFile> moves;
    const auto version = connection.schemaVersion();
    if (!version)
        return version.error();
    if (*version < kMovesSince)
        return moves;
    auto select = connection.prepare(kMoves);
    if (!select)
        return select.error();
    const Status read = forEachRow(connection, *select, [&](const sql::Statement& row) {
        moves.push_back({fileOf(row), std::string(row.text(3))});
    });
    if (!read)
        return read.error();
    return moves;
}

Status storeMovedFile(sql::Connection& connection, const MovedFile& moved, UtcTime now) {
    auto insert = connection.prepare(
        "INSERT OR REPLACE INTO moved_file(path, size, modified, new_path, found) VALUES(?1,?2,?3,?4,?5)");
    if (!insert)
        return insert.error();
    insert->bind(1, moved.file.path).bind(2, moved.file.size).bind(3, moved.file.modified).bind(4, moved.newPath);
    return insert->bind(5, storedTime(now)).run();
}

Result<std::vector<ReadFile>> filesReadAt(sql::Connection& connection, const std::string& path) {
    const auto version = connection.schemaVersion();
    if (!version)
        return version.error();
    auto select = connection.prepare(filesSql(*version));
    if (!select)
        return select.error();
    select->bind(1, path);
    std::vector<ReadFile> files;
    if (Status read = forEachRow(connection, *select, [&](const sql::Statement& row) { files.push_back(fileOf(row)); });
        !read)
        return read.error();
    return files;
}

} // namespace tavix::repository
