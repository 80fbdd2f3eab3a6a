#include "base/ColorScheme.h"
#include "base/tests/TempFolder.h"
#include "bench/BenchWindow.h"
#include "shell/ShellStyle.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <map>

/// The time from a job to a painted window, and of opening a node of the navigator, compared with the same statements,
/// which are recorded, on the bare SQLite interface. The last benchmark alternates both and reports their ratio.
namespace tavix::bench {
namespace {

constexpr int kTables = 1000;
constexpr int kFieldsPerTable = 100;

/// Built once and removed at the end of the process. With 1 table of 1 field it measures the minimum cost of a window.
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

/// The queries of the viewer when it opens the job and shows the fields of its first table.
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

void bareOpen(benchmark::State& state) {
    const std::string& path = repositoryOf(kTables, kFieldsPerTable);
    const std::vector<std::string>& statements = statementsOfOpening();
    for (auto _ : state)
        benchmark::DoNotOptimize(openOnBareInterface(path, statements));
    state.counters["statements"] = static_cast<double>(statements.size());
}

/// Without painting: the cost beyond the statements.
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

/// Arguments: tables, and fields of each.
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

/// Drawing alone: repaints a loaded window.
void viewPaint(benchmark::State& state) {
    Window window;
    window.load(repositoryOf(kTables, kFieldsPerTable));
    window.selectFirstTable();
    for (auto _ : state)
        window.repaintAll();
}

/// From the key that opens a table of 100 fields until the screen shows it.
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
} // namespace tavix::bench

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    tavix::shell::applyLook(tavix::ColorScheme::Light);
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
