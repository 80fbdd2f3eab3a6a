#include "base/tests/TempFolder.h"
#include "host/TavixHost.h"
#include "repository/RunWriter.h"

#include <QApplication>
#include <QFont>
#include <QTreeView>

#include <benchmark/benchmark.h>
#include <fmt/format.h>
#include <sqlite3.h>

#include <chrono>
#include <cstdlib>
#include <iostream>

/// What it takes from a job to a painted window, and to open a node of the navigator, beside the statements that this
/// needs on the bare SQLite interface. The last benchmark measures both by turns and tells their ratio.
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
    [[nodiscard]] KvbString GetConnectionString() const override { return m_path; }

  private:
    std::string m_path;
};

/// A window that is on the (offscreen) screen, without a report.
class Window {
  public:
    Window() : m_host(m_messages, makeMemorySettings()), m_view(m_host.BuildWindowCore(nullptr)) {
        m_view->resize(1280, 800);
        m_view->show();
        QApplication::processEvents();
    }
    ~Window() { m_host.DestroyWindowCore(); }
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
    void clear() { m_host.ExecuteCommand(static_cast<int>(CommandId::New)); }
    /// What the screen would show, drawn here and now.
    void paint() {
        QApplication::sendPostedEvents();
        benchmark::DoNotOptimize(m_view->grab());
    }
    QTreeView& tree() { return *m_view->findChild<QTreeView*>(QStringLiteral("page0")); }

  private:
    ConsoleMessages m_messages;
    TavixHost m_host;
    QWidget* m_view;
};

/// The statements of an opened job, on a connection of its own as the viewer opens one.
class BareSession {
  public:
    explicit BareSession(const std::string& path) {
        if (sqlite3_open_v2(path.c_str(), &m_database, SQLITE_OPEN_READONLY, nullptr) != SQLITE_OK)
            std::exit(1);
    }
    ~BareSession() { sqlite3_close(m_database); }
    BareSession(const BareSession&) = delete;
    BareSession& operator=(const BareSession&) = delete;

    std::size_t run(const char* sql) {
        sqlite3_stmt* statement = nullptr;
        if (sqlite3_prepare_v2(m_database, sql, -1, &statement, nullptr) != SQLITE_OK) {
            std::cerr << sqlite3_errmsg(m_database) << '\n';
            std::exit(1);
        }
        std::size_t bytes = 0;
        while (sqlite3_step(statement) == SQLITE_ROW) {
            for (int column = 0; column < sqlite3_column_count(statement); ++column) {
                if (sqlite3_column_text(statement, column))
                    bytes += static_cast<std::size_t>(sqlite3_column_bytes(statement, column));
            }
        }
        sqlite3_finalize(statement);
        return bytes;
    }

  private:
    sqlite3* m_database = nullptr;
};

constexpr const char* kFieldsOfFirstTable =
    "SELECT f.id, f.name, rf.type_code, rf.count, rf.unique_count, rf.null_count, rf.non_null_count, rf.blank_count, "
    "rf.pattern_count, rf.minimum_value, rf.maximum_value, rf.minimum_length, rf.maximum_length, rf.mean, rf.median, "
    "rf.mode, rf.standard_deviation, rf.standard_error, rf.defined_type, rf.defined_length, rf.ordinal, "
    "rf.primary_key, rf.nullable, rf.decimal_precision, rf.actual_type, rf.unique_percent, rf.percent_null, "
    "rf.value_rows, rf.pattern_rows, f.table_id FROM run_field rf JOIN field f ON f.id = rf.field WHERE rf.run = 1 "
    "AND rf.table_id = 1 ORDER BY rf.position";

/// What an opened job shows: its runs, data sources, tables, collections, analyses, and the fields of one table.
std::size_t openOnBareInterface(const std::string& path) {
    BareSession session(path);
    std::size_t bytes = 0;
    for (const char* sql :
         {"SELECT id, name, description FROM job WHERE id = 1",
          "SELECT id, started, description FROM run WHERE job = 1 ORDER BY id",
          "SELECT d.id, d.name, d.kind, COUNT(*) FROM run_table rt JOIN profiled_table t ON t.id = rt.table_id JOIN "
          "data_source d ON d.id = t.data_source WHERE rt.run = 1 GROUP BY d.id",
          "SELECT t.kind, t.id, t.name, t.object_name, t.schema, t.catalog, rt.filter, rt.query, rt.alternate_filter, "
          "rt.total_records, rt.processed_records, rt.fields, rt.damaged_records FROM run_table rt JOIN profiled_table "
          "t ON t.id = rt.table_id WHERE rt.run = 1 ORDER BY rt.position",
          "SELECT id, name, description FROM collection ORDER BY name", "SELECT id, name FROM redundancy",
          "SELECT id, table_id, field, metric FROM alert", kFieldsOfFirstTable})
        bytes += session.run(sql);
    return bytes;
}

void bareOpen(benchmark::State& state) {
    const std::string& path = repositoryOf(kTables, kFieldsPerTable);
    for (auto _ : state)
        benchmark::DoNotOptimize(openOnBareInterface(path));
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
        window.paint();
}

/// From the key that opens a table of 100 fields to the picture.
void expandTable(benchmark::State& state) {
    Window window;
    window.load(repositoryOf(kTables, kFieldsPerTable));
    window.selectFirstTable();
    QTreeView& tree = window.tree();
    const QModelIndex source = tree.currentIndex().parent();
    int row = 1;
    for (auto _ : state) {
        tree.expand(tree.model()->index(row++ % kTables, 0, source));
        window.paint();
    }
}

void ratio(benchmark::State& state) {
    using Clock = std::chrono::steady_clock;
    const std::string& path = repositoryOf(kTables, kFieldsPerTable);
    Window window;
    Clock::duration bare{};
    Clock::duration view{};
    for (auto _ : state) {
        const auto begun = Clock::now();
        benchmark::DoNotOptimize(openOnBareInterface(path));
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
BENCHMARK(expandTable)->Unit(benchmark::kMillisecond);
BENCHMARK(ratio)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace tavix

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QApplication::setFont(QFont(QStringLiteral("DejaVu Sans"), 9));
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
