#pragma once

#include <sqlite3.h>

#include <cstdlib>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

/// The statements of a task, to be compared with the same ones on the bare SQLite interface.
namespace tavix::bench {

/// Records every statement, with its parameters, that any connection of this process runs during its lifetime.
class Recording {
  public:
    Recording() {
        s_statements = &m_statements;
        sqlite3_auto_extension(reinterpret_cast<void (*)()>(&Recording::watch));
    }
    ~Recording() {
        sqlite3_cancel_auto_extension(reinterpret_cast<void (*)()>(&Recording::watch));
        s_statements = nullptr;
    }
    Recording(const Recording&) = delete;
    Recording& operator=(const Recording&) = delete;

    std::vector<std::string> statements() const { return m_statements; }

  private:
    static int watch(sqlite3* database, char**, const void*) {
        return sqlite3_trace_v2(database, SQLITE_TRACE_STMT, &Recording::note, nullptr);
    }
    static int note(unsigned, void*, void* statement, void* text) {
        const std::string_view begun = static_cast<const char*>(text);
        // The work of a trigger belongs to the statement that fired it.
        if (!s_statements || begun.starts_with("--"))
            return 0;
        char* const expanded = sqlite3_expanded_sql(static_cast<sqlite3_stmt*>(statement));
        s_statements->emplace_back(expanded);
        sqlite3_free(expanded);
        return 0;
    }

    static inline std::vector<std::string>* s_statements = nullptr;
    std::vector<std::string> m_statements;
};

/// The same statements on a bare connection, every cell read as text.
inline std::size_t openOnBareInterface(const std::string& path, const std::vector<std::string>& statements) {
    sqlite3* database = nullptr;
    if (sqlite3_open_v2(path.c_str(), &database, SQLITE_OPEN_READWRITE, nullptr) != SQLITE_OK)
        std::exit(1);
    std::size_t bytes = 0;
    for (const std::string& sql : statements) {
        sqlite3_stmt* statement = nullptr;
        if (sqlite3_prepare_v2(database, sql.c_str(), -1, &statement, nullptr) != SQLITE_OK) {
            std::cerr << sqlite3_errmsg(database) << ": " << sql << '\n';
            std::exit(1);
        }
        while (sqlite3_step(statement) == SQLITE_ROW) {
            for (int column = 0; column < sqlite3_column_count(statement); ++column) {
                if (sqlite3_column_text(statement, column))
                    bytes += static_cast<std::size_t>(sqlite3_column_bytes(statement, column));
            }
        }
        sqlite3_finalize(statement);
    }
    sqlite3_close(database);
    return bytes;
}

} // namespace tavix::bench
