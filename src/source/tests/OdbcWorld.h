#pragma once

#include "base/tests/TempFolder.h"
#include "source/OdbcReader.h"
#include "support/PostgresServer.h"

#include <sqlite3.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace tavix::source {

/// The text of a null in the expected rows.
inline const std::string kNull = "NULL";

/// What all tests of the program share: the driver manager reads its files once.
struct World {
    World() { tavix::testing::useOdbcFiles(folder, folder.file("t.db"), server.port()); }

    tavix::testing::TempFolder folder;
    tavix::testing::PostgresServer server;
};

inline World& world() {
    static World kWorld;
    return kWorld;
}

inline tavix::testing::PostgresServer& server() {
    return world().server;
}

inline void runSqlite(const std::string& file, const std::string& sql) {
    sqlite3* database = nullptr;
    sqlite3_open(file.c_str(), &database);
    char* problem = nullptr;
    const int code = sqlite3_exec(database, sql.c_str(), nullptr, nullptr, &problem);
    const std::string text = problem ? problem : "";
    sqlite3_free(problem);
    sqlite3_close(database);
    if (code != SQLITE_OK)
        throw std::runtime_error(text);
}

inline Result<std::unique_ptr<OdbcConnection>> connect(const std::string& text, const std::string& password = {}) {
    const AskCredentials ask = [&](const std::string&, const std::string& refusal) -> std::optional<Credentials> {
        if (!refusal.empty() || password.empty())
            return std::nullopt;
        return Credentials{tavix::testing::PostgresServer::kUser, password};
    };
    return OdbcConnection::open("shop", *ConnectionText::parse(text), ask);
}

using Rows = std::vector<std::vector<std::string>>;

/// All rows of a reader; an error's text as the only cell of a last row.
inline Rows drain(Result<std::unique_ptr<OdbcReader>> reader, std::size_t* blocks = nullptr) {
    if (!reader)
        return {{reader.error().text}};
    Rows rows;
    RowBlock block;
    for (;;) {
        const auto more = (*reader)->read(block);
        if (!more) {
            rows.push_back({more.error().text});
            return rows;
        }
        if (!*more)
            return rows;
        if (blocks)
            ++*blocks;
        for (std::size_t r = 0; r < block.rows; ++r) {
            auto& row = rows.emplace_back();
            for (const auto& column : block.columns)
                row.push_back(column[r].isNull ? kNull : std::string(column[r].data, column[r].size));
        }
    }
}

inline Rows sorted(Rows rows) {
    std::sort(rows.begin(), rows.end());
    return rows;
}

inline Rows read(const OdbcConnection& connection, const DatabaseTable& table, const SqlText& text) {
    return drain(OdbcReader::open(connection, text, table.columns(), table.columnNames()));
}

} // namespace tavix::source
