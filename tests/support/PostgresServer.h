#pragma once

#include "base/tests/TempFolder.h"

#include <string>

namespace tavix::testing {

/// A PostgreSQL server for the test on the loopback interface, run by an unprivileged user; it ends with this object.
/// It asks for the password over the network.
class PostgresServer {
  public:
    static constexpr const char* kUser = "tester";
    static constexpr const char* kPassword = "p;w{}='\"ss";

    /// Starts it. Throws std::runtime_error with the server's message on failure.
    PostgresServer();
    ~PostgresServer();
    PostgresServer(const PostgresServer&) = delete;
    PostgresServer& operator=(const PostgresServer&) = delete;

    [[nodiscard]] int port() const { return m_port; }
    /// A connection string for the PostgreSQL driver, without user and password.
    [[nodiscard]] std::string connection() const;
    /// Runs SQL with psql. Throws std::runtime_error.
    void execute(const std::string& sql) const;
    /// Kills the server without a shutdown, like a power failure.
    void kill();

  private:
    [[nodiscard]] std::string asServerUser(const std::string& command) const;

    TempFolder m_folder;
    std::string m_programs;
    int m_port = 0;
    bool m_isRunning = false;
};

/// Makes the driver manager of this process and its children use these data sources only: "lite", the SQLite file, and
/// "pg" on the port, if there is one.
void useOdbcFiles(const TempFolder& folder, const std::string& sqliteFile, int port = 0);

} // namespace tavix::testing
