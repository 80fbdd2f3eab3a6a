#pragma once

#include "sql/Connection.h"

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

/// What the files of this folder share about a connection.
namespace tavix::sql {

struct Connection::Impl {
    sqlite3* handle = nullptr;
    std::string path;
    /// Parsed statements that nobody uses at the moment. The texts come from our own code, so their number is bounded.
    std::map<std::string, std::vector<sqlite3_stmt*>, std::less<>> idle;
    std::string lastError;
    std::function<bool()> mayWait;

    Impl() = default;
    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;
    ~Impl();

    /// Keeps and returns the error of the call on `handle` that just failed.
    Error fail();
};

struct Statement::State {
    Connection::Impl* connection = nullptr;
    sqlite3_stmt* handle = nullptr;
    std::vector<sqlite3_stmt*>* home = nullptr; ///< where it goes when it is idle
    bool bindFailed = false;

    State() = default;
    State(const State&) = delete;
    State& operator=(const State&) = delete;
    ~State();
};

/// The failure of `code` (an extended result code) in a user's words.
[[nodiscard]] std::string describeError(int code, std::string_view message, int systemError, const std::string& path);

} // namespace tavix::sql
