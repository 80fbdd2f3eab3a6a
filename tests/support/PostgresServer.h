#pragma once

#include "base/tests/TempFolder.h"

#include <string>

namespace tavix::testing {

/// A PostgreSQL server of the test's own on the loopback interface, run by a user without rights; it ends with the
/// object. Over the network it asks for the password.
class PostgresServer {
  public:
    static constexpr const char* kUser = "tester";
    static constexpr const char* kPassword = "p;w{}='\"ss";

    /// Starts it. Throws std::runtime_error with the server's words when that does not succeed.
    PostgresServer();
    ~PostgresServer();
    PostgresServer(const PostgresServer&) = delete;
    PostgresServer& operator=(const PostgresServer&) = delete;

    [[nodiscard]] int port() const { return m_port; }
    /// A connection string of the driver for PostgreSQL without user and password.
    [[nodiscard]] std::string connection() const;
    /// Runs SQL by psql. Throws std::runtime_error.
    void execute(const std::string& sql) const;
    /// Kills the server as a power failure would.
    void kill();

  private:
    [[nodiscard]] std::string asServerUser(const std::string& command) const;

    TempFolder m_folder;
    std::string m_programs;
    int m_port = 0;
    bool m_isRunning = false;
};

/// Lets the driver manager of this process, and of those that it starts, see these data sources alone: "lite", the
/// SQLite file, and "pg" on the port, when there is one.
void useOdbcFiles(const TempFolder& folder, const std::string& sqliteFile, int port = 0);

} // namespace tavix::testing
