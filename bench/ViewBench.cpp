#include "base/tests/TempFolder.h"
#include "host/TavixHost.h"
#include "host/TavixQtWindow.h"
#include "repository/RunWriter.h"
#include "shell/ShellStyle.h"

#include <QApplication>
#include <QEvent>
#include <QTreeView>

#include <benchmark/benchmark.h>
#include <fmt/format.h>
#include <sqlite3.h>

#include <chrono>
#include <cstdlib>
#include <iostream>
#include <map>
#include <string>
#include <string_view>
#include <vector>

/// What it takes from a job to a painted window, and to open a node of the navigator, beside the very same statements,
/// which are recorded, on the bare SQLite interface. The last benchmark measures both by turns and tells their ratio.
namespace tavix {
namespace {

using Veldra::Solenne::Tavix::TavixConnection;
using Veldra::Solenne::Tavix::TavixHost;

constexpr int kTables = 1000;
constexpr int kFieldsPerTable = 100;

template <typename T>
T need(Result<T> result) {
    if (!result) {
        std::cerr << result.error().text << '\n';
        std::exit(1);
    }
    return std::move(result).value();
}

void need(const Status& status) {
    if (!status) {
        std::cerr << status.error().text << '\n';
        std::exit(1);
    }
}

repository::FieldFacts fieldFacts(int number) {
    repository::FieldFacts field;
    field.name = fmt::format("field {}", number);
    field.ordinal = number + 1;
    field.typeCode = 'R';
    for (std::size_t metric = 0; metric < kMetricCount; ++metric)
        field.metrics[metric] = static_cast<std::int64_t>(1000 + metric);
    field.metrics[index(MetricId::Mean)] = 12.3456789 + number;
    field.metrics[index(MetricId::StandardDeviation)] = 0.1 + number;
    field.metrics[index(MetricId::ActualType)] = "real";
    field.metrics[index(MetricId::DefinedType)] = "text";
    return field;
}

/// Made once and removed at the end of the process. With 1 table of 1 field it shows what a window costs at least.
const std::string& repositoryOf(int tables, int fields) {
    static const testing::TempFolder folder;
    static std::map<std::pair<int, int>, std::string> made;
    std::string& path = made[{tables, fields}];
    if (!path.empty())
        return path;
    path = folder.file(fmt::format("{}x{}.tavix", tables, fields));
    auto writer = need(repository::RunWriter::begin(path, {"job", "", "", {}}));
    for (int number = 0; number < tables; ++number) {
        repository::TableFacts table;
        table.dataSource = "bench";
        table.name = fmt::format("table {}", number);
        table.totalRecords = table.processedRecords = 1'000'000;
        const int id = need(writer->addTable(table));
        for (int field = 0; field < fields; ++field)
            need(writer->addField(id, fieldFacts(field)));
    }
    need(writer->commit({}));
    return path;
}

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

/// A window that is on the (offscreen) screen, without a report.
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
    /// Back to the window without a report, on the screen as well.
    void clear() {
        m_host.ExecuteCommand(static_cast<int>(CommandId::New));
        QApplication::processEvents();
    }
    /// Until the screen shows what is selected. What is not drawn by then is an error.
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

/// Every statement that any connection of this process runs while one of these lives, with its parameters filled in.
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
        // The work of a trigger is part of the statement that set it off.
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

/// What the viewer asks when it opens the job and shows the fields of its first table.
const std::vector<std::string>& statementsOfOpening() {
    static const std::vector<std::string> statements = [] {
        const std::string& path = repositoryOf(kTables, kFieldsPerTable);
        const Recording recording;
        Window window;
        window.load(path);
        window.selectFirstTable();
        return recording.statements();
    }();
    return statements;
}

/// The same statements on a bare connection of their own, every cell taken as text.
std::size_t openOnBareInterface(const std::string& path, const std::vector<std::string>& statements) {
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

void bareOpen(benchmark::State& state) {
    const std::string& path = repositoryOf(kTables, kFieldsPerTable);
    const std::vector<std::string>& statements = statementsOfOpening();
    for (auto _ : state)
        benchmark::DoNotOptimize(openOnBareInterface(path, statements));
    state.counters["statements"] = static_cast<double>(statements.size());
}

/// Without painting: what the viewer adds to the statements.
void viewLoad(benchmark::State& state) {
    const std::string& path = repositoryOf(kTables, kFieldsPerTable);
    Window window;
    for (auto _ : state) {
        window.load(path);
        window.selectFirstTable();
        state.PauseTiming();
        window.clear();
        state.ResumeTiming();
    }
}

/// Arguments: tables and fields of each.
void viewLoadAndPaint(benchmark::State& state) {
    const std::string& path = repositoryOf(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    Window window;
    for (auto _ : state) {
        window.load(path);
        window.selectFirstTable();
        window.paint();
        state.PauseTiming();
        window.clear();
        state.ResumeTiming();
    }
}

/// Drawing alone: a window that is loaded is painted again.
void viewPaint(benchmark::State& state) {
    Window window;
    window.load(repositoryOf(kTables, kFieldsPerTable));
    window.selectFirstTable();
    for (auto _ : state)
        window.repaintAll();
}

/// From the key that opens a table of 100 fields to the picture.
void expandTable(benchmark::State& state) {
    Window window;
    window.load(repositoryOf(kTables, kFieldsPerTable));
    window.selectFirstTable();
    QTreeView& tree = window.tree();
    const QModelIndex source = tree.currentIndex().parent();
    int row = 1; // each table once: there are more of them than iterations
    for (auto _ : state) {
        tree.expand(tree.model()->index(row++, 0, source));
        window.paint();
    }
}

void ratio(benchmark::State& state) {
    using Clock = std::chrono::steady_clock;
    const std::string& path = repositoryOf(kTables, kFieldsPerTable);
    const std::vector<std::string>& statements = statementsOfOpening();
    Window window;
    Clock::duration bare{};
    Clock::duration view{};
    for (auto _ : state) {
        const auto begun = Clock::now();
        benchmark::DoNotOptimize(openOnBareInterface(path, statements));
        const auto between = Clock::now();
        window.load(path);
        window.selectFirstTable();
        window.paint();
        const auto ended = Clock::now();
        bare += between - begun;
        view += ended - between;
        window.clear();
    }
    state.counters["view/sql"] = static_cast<double>(view.count()) / static_cast<double>(bare.count());
}

BENCHMARK(bareOpen)->Unit(benchmark::kMillisecond);
BENCHMARK(viewLoad)->Unit(benchmark::kMillisecond);
BENCHMARK(viewPaint)->Unit(benchmark::kMillisecond);
BENCHMARK(viewLoadAndPaint)->Args({1, 1})->Args({kTables, kFieldsPerTable})->Unit(benchmark::kMillisecond);
BENCHMARK(expandTable)->Iterations(500)->Unit(benchmark::kMillisecond);
BENCHMARK(ratio)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace tavix

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    tavix::shell::applyLook(tavix::shell::Scheme::Light);
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
