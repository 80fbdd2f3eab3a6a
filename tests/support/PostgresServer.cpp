#include "support/PostgresServer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace tavix::testing {

namespace {

std::string quoted(const std::string& text) {
    std::string out = "'";
    for (const char c : text)
        out += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return out + "'";
}

/// The output of a command; throws if it fails.
std::string outputOf(const std::string& command) {
    std::FILE* const pipe = ::popen((command + " 2>&1").c_str(), "r");
    if (!pipe)
        throw std::runtime_error("no shell");
    std::string out;
    std::array<char, 4096> buffer{};
    for (std::size_t got = 0; (got = std::fread(buffer.data(), 1, buffer.size(), pipe)) > 0;)
        out.append(buffer.data(), got);
    if (::pclose(pipe) != 0)
        throw std::runtime_error(command + ": " + out);
    return out;
}

std::string serverPrograms() {
    namespace fs = std::filesystem;
    fs::path newest;
    const fs::path root = "/usr/lib/postgresql";
    if (fs::exists(root))
        for (const auto& entry : fs::directory_iterator(root))
            if (fs::exists(entry.path() / "bin/initdb") && entry.path() > newest)
                newest = entry.path();
    if (newest.empty())
        throw std::runtime_error("no PostgreSQL server below /usr/lib/postgresql: tools/install-dependencies test");
    return (newest / "bin").string();
}

int freePort() {
    const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    const bool isBound = ::bind(socket, reinterpret_cast<sockaddr*>(&address), size) == 0 &&
                         ::getsockname(socket, reinterpret_cast<sockaddr*>(&address), &size) == 0;
    ::close(socket);
    if (!isBound)
        throw std::runtime_error("no free port");
    return ntohs(address.sin_port);
}

} // namespace

PostgresServer::PostgresServer() : m_programs(serverPrograms()), m_port(freePort()) {
    namespace fs = std::filesystem;
    const fs::path home = m_folder.path() / "server";
    fs::create_directory(home);
    std::ofstream(home / "password") << kPassword;
    if (::geteuid() == 0) { // the server refuses to run as root
        fs::permissions(m_folder.path(), fs::perms::others_exec | fs::perms::group_exec, fs::perm_options::add);
        outputOf("chown -R postgres " + quoted(home.string()));
    }
    const std::string data = quoted((home / "data").string());
    outputOf(asServerUser(m_programs + "/initdb -D " + data + " -U " + kUser +
                          " --pwfile=" + quoted((home / "password").string()) +
                          " --auth-local=trust --auth-host=scram-sha-256 -E UTF8 --locale=C.UTF-8 --no-sync"));
    outputOf(asServerUser(m_programs + "/pg_ctl -D " + data + " -w -l " + quoted((home / "log").string()) + " -o '-p " +
                          std::to_string(m_port) + " -c listen_addresses=127.0.0.1 -c unix_socket_directories=" +
                          home.string() + " -c fsync=off' start >/dev/null </dev/null"));
    m_isRunning = true;
}

PostgresServer::~PostgresServer() {
    try {
        kill();
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "%s\n", problem.what());
    }
}

void PostgresServer::kill() {
    if (!m_isRunning)
        return;
    m_isRunning = false;
    outputOf(asServerUser(m_programs + "/pg_ctl -D " + quoted((m_folder.path() / "server/data").string()) +
                          " -m immediate stop"));
}

std::string PostgresServer::asServerUser(const std::string& command) const {
    const std::string inside = "cd / && " + command;
    return ::geteuid() == 0 ? "setpriv --reuid=postgres --regid=postgres --clear-groups sh -c " + quoted(inside)
                            : "sh -c " + quoted(inside);
}

std::string PostgresServer::connection() const {
    return "Driver=psqlodbcw.so;Servername=127.0.0.1;Port=" + std::to_string(m_port) + ";Database=postgres";
}

void PostgresServer::execute(const std::string& sql) const {
    const std::string file = m_folder.file("script.sql");
    std::ofstream(file) << sql;
    outputOf(m_programs + "/psql -q -v ON_ERROR_STOP=1 -h " + quoted((m_folder.path() / "server").string()) + " -p " +
             std::to_string(m_port) + " -U " + kUser + " -d postgres -f " + quoted(file));
}

void useOdbcFiles(const TempFolder& folder, const std::string& sqliteFile, int port) {
    std::ofstream(folder.file("odbcinst.ini"))
        << "[SQLite3]\nDriver=libsqlite3odbc.so\n\n[PostgreSQL]\nDriver=psqlodbcw.so\n";
    std::ofstream(folder.file("odbc.ini"))
        << "[lite]\nDriver=SQLite3\nDatabase=" << sqliteFile
        << "\n\n[pg]\nDriver=PostgreSQL\nServername=127.0.0.1\nPort=" << port << "\nDatabase=postgres\n";
    ::setenv("ODBCSYSINI", folder.path().c_str(), 1);
    ::setenv("ODBCINSTINI", "odbcinst.ini", 1);
    ::setenv("ODBCINI", folder.file("odbc.ini").c_str(), 1);
}

} // namespace tavix::testing
