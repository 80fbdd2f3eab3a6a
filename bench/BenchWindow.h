#pragma once

#include "BenchFacts.h"
#include "host/TavixHost.h"
#include "host/TavixQtWindow.h"

#include <QApplication>
#include <QEvent>
#include <QTreeView>

#include <fmt/format.h>
#include <sqlite3.h>

#include <cstdlib>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

/// Shared by the benchmarks of the window: a window, and its statements on the bare SQLite interface.
namespace tavix::bench {

using Veldra::Solenne::Tavix::TavixConnection;
using Veldra::Solenne::Tavix::TavixHost;

class ConsoleMessages final : public Messages {
  public:
    void warn(std::string_view text, std::string_view) override {
        std::cerr << text << '\n';
        std::exit(1);
    }
    Answer ask(std::string_view, std::string_view, Answer preset) override { return preset; }
    std::unique_ptr<Busy> busy() override { return std::make_unique<Busy>(); }
};

class FileConnection final : public TavixConnection {
  public:
    explicit FileConnection(std::string path) : m_path(std::move(path)) {}
    [[nodiscard]] std::string GetName() const override { return m_path; }
    [[nodiscard]] std::string GetKind() const override { return "SQLite"; }
    [[nodiscard]] std::string GetConnectionString() const override { return m_path; }

  private:
    std::string m_path;
};

/// A window on the (offscreen) screen, without a report.
class Window : private QObject {
  public:
    Window()
        : m_host(m_messages, makeMemorySettings()),
          m_view(Veldra::Solenne::Tavix::TavixQtWindow::Build(m_host, nullptr)) {
        m_view->resize(1280, 800);
        m_view->show();
        tree().viewport()->installEventFilter(this);
        QApplication::processEvents();
    }
    ~Window() override { m_host.Dispose(); }
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    void load(const std::string& path) {
        const FileConnection connection(path);
        if (!m_host.LoadReportForJob("job", 1, &connection))
            std::exit(1);
    }
    void selectFirstTable() {
        if (!m_host.SelectTable("bench", "KVTK", "", "", "table 0"))
            std::exit(1);
    }
    /// Returns to the window without a report, also on the screen.
    void clear() {
        m_host.ExecuteCommand(static_cast<int>(CommandId::New));
        QApplication::processEvents();
    }
    /// Returns when the screen shows the selection; fails if something is not drawn by then.
    void paint() {
        m_painted = false;
        QApplication::processEvents();
        if (!m_painted) {
            std::cerr << "nothing was painted\n";
            std::exit(1);
        }
    }
    void repaintAll() {
        m_view->update();
        for (QWidget* child : m_view->findChildren<QWidget*>())
            child->update();
        paint();
    }
    TavixHost& host() { return m_host; }
    QWidget& view() { return *m_view; }
    QTreeView& tree() { return *m_view->findChild<QTreeView*>(QStringLiteral("page0")); }

  private:
    bool eventFilter(QObject* watched, QEvent* event) override {
        m_painted = m_painted || event->type() == QEvent::Paint;
        return QObject::eventFilter(watched, event);
    }

    ConsoleMessages m_messages;
    TavixHost m_host;
    QWidget* m_view;
    bool m_painted = false;
};

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
