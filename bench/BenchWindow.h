#pragma once

#include "BenchFacts.h"
#include "BenchStatements.h"
#include "host/TavixHost.h"
#include "host/TavixQtWindow.h"

#include <QApplication>
#include <QEvent>
#include <QTreeView>

#include <fmt/format.h>

#include <cstdlib>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

/// Shared by the benchmarks of the window.
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

} // namespace tavix::bench
