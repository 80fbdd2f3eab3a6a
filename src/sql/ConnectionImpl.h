#pragma once

#include "base/HeldRepositories.h"
#include "sql/Connection.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

/// The state of a connection, shared by the files of this folder.
namespace tavix::sql {

/// A result code of SQLite other than success.
struct Failure {
    int code = 0; ///< extended
    int systemError = 0;
    bool isReader = true; ///< nothing was to be written
};

struct Connection::Impl {
    sqlite3* handle = nullptr;
    std::string path;
    bool isReader = true;
    std::optional<HeldRepository> hold;
    /// Parsed statements not in use. The texts come from our own code, so their number is bounded.
    std::map<std::string, std::vector<sqlite3_stmt*>, std::less<>> idle;
    std::string lastError;
    std::function<bool()> mayWait;
    std::function<bool()> mayGoOn;

    Impl() = default;
    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;
    ~Impl();

    /// The error of the call on `handle` that just failed.
    [[nodiscard]] Failure failure() const;
    /// Stores and returns the error of the call on `handle` that just failed.
    Error fail();
};

struct Statement::State {
    Connection::Impl* connection = nullptr;
    sqlite3_stmt* handle = nullptr;
    std::vector<sqlite3_stmt*>* home = nullptr; ///< the pool to return to
    bool bindFailed = false;

    State() = default;
    State(const State&) = delete;
    State& operator=(const State&) = delete;
    ~State();
};

/// The error in a user's words.
[[nodiscard]] std::string describeError(const Failure& failure, std::string_view message, const std::string& path);
/// The disk is full.
[[nodiscard]] bool isDiskFull(const Failure& failure);

} // namespace tavix::sql
