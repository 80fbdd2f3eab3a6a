#include "access/PrViewer.h"
#include "base/tests/TempFolder.h"
#include "bench/BenchWindow.h"
#include "chart/FieldPictures.h"
#include "grid/ui/CUGCtrl.h"
#include "report/FieldRecords.h"
#include "settings/MetricDisplay.h"
#include "tabs/StdMetRows.h"

#include <QTabBar>

#include <benchmark/benchmark.h>

#include <chrono>
#include <map>

/// The time until a wide table, a wide collection or a long distribution is on the screen, each compared with the same
/// statements on the bare SQLite interface, or the same rows through the cursor.
namespace tavix::bench {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int kWideTable = 2000;
constexpr int kCollectionTables = 50;
constexpr int kFieldsOfEach = 40;
constexpr int kLongDistribution = 5'000'000;
constexpr int kFirstRows = 100;
constexpr int kFieldsWithHistory = 500;
constexpr int kRuns = 12;

const testing::TempFolder& folder() {
    static const testing::TempFolder made;
    return made;
}

void addTable(repository::RunWriter& writer, const std::string& name, int fields) {
    repository::TableFacts table;
    table.dataSource = "bench";
    table.name = name;
    table.totalRecords = table.processedRecords = 1'000'000;
    const int id = need(writer.addTable(table));
    for (int field = 0; field < fields; ++field)
        need(writer.addField(id, fieldFacts(field)));
}

/// "table 0" has 2,000 fields; the collection "wide" has every field of 50 further tables.
const std::string& wideRepository() {
    static const std::string path = [] {
        std::string file = folder().file("wide.tavix");
        auto writer = need(repository::RunWriter::begin(file, {"job", "", "", {}}));
        addTable(*writer, "table 0", kWideTable);
        repository::CollectionFacts collection{"wide", "", {}};
        for (int number = 0; number < kCollectionTables; ++number) {
            const std::string name = fmt::format("other {}", number);
            addTable(*writer, name, kFieldsOfEach);
            for (int field = 0; field < kFieldsOfEach; ++field)
                collection.fields.push_back({name, fmt::format("field {}", field)});
        }
        need(writer->addCollection(collection));
        need(writer->commit({}));
        return file;
    }();
    return path;
}

/// "table 0" has a field with that many distinct values, then a short one.
const std::string& longRepository() {
    static const std::string path = [] {
        std::string file = folder().file("long.tavix");
        auto writer = need(repository::RunWriter::begin(file, {"job", "", "", {}}));
        repository::TableFacts table;
        table.dataSource = "bench";
        table.name = "table 0";
        table.totalRecords = table.processedRecords = kLongDistribution;
        const int id = need(writer->addTable(table));
        std::vector<std::string> texts(kLongDistribution);
        std::vector<repository::ValueCount> values(kLongDistribution);
        for (int i = 0; i < kLongDistribution; ++i) {
            texts[static_cast<std::size_t>(i)] = fmt::format("value {:07}", i);
            values[static_cast<std::size_t>(i)] = {texts[static_cast<std::size_t>(i)], 1, false};
        }
        repository::FieldFacts field = fieldFacts(0);
        field.values = values;
        need(writer->addField(id, field));
        repository::FieldFacts second = fieldFacts(1);
        second.values = std::span(values).first(1000);
        need(writer->addField(id, second));
        need(writer->commit({}));
        return file;
    }();
    return path;
}

/// A table of 500 fields in 12 runs.
const std::string& historyRepository() {
    static const std::string path = [] {
        std::string file = folder().file("history.tavix");
        for (int run = 0; run < kRuns; ++run) {
            auto writer = need(repository::RunWriter::begin(file, {"job", "", "", {}}));
            addTable(*writer, "table 0", kFieldsWithHistory);
            need(writer->commit({}));
        }
        return file;
    }();
    return path;
}

/// The report is open and nothing in it is selected.
class OpenReport : public Window {
  public:
    explicit OpenReport(const std::string& path) { load(path); }

    void selectTable() {
        selectFirstTable();
        paint();
    }
    /// The node of the page at those rows, opened as far as necessary.
    QModelIndex node(int page, std::initializer_list<int> path) {
        QTreeView& pageTree = *view().findChild<QTreeView*>(QStringLiteral("page%1").arg(page));
        QModelIndex index;
        for (const int row : path) {
            if (pageTree.model()->canFetchMore(index))
                pageTree.model()->fetchMore(index);
            index = pageTree.model()->index(row, 0, index);
        }
        return index;
    }
    void select(int page, const QModelIndex& index) {
        view().findChild<QWidget*>(QStringLiteral("navigator"))->findChild<QTabBar*>()->setCurrentIndex(page);
        view().findChild<QTreeView*>(QStringLiteral("page%1").arg(page))->setCurrentIndex(index);
        QApplication::processEvents();
    }
    void openTab(int index) {
        for (QTabBar* strip : view().findChildren<QTabBar*>(QStringLiteral("tabStrip"))) {
            if (strip->isVisible())
                strip->setCurrentIndex(index);
        }
        QApplication::processEvents();
    }
};

/// Milliseconds of `act`.
template <typename Act>
double measured(Act act) {
    const auto begun = Clock::now();
    act();
    return std::chrono::duration<double, std::milli>(Clock::now() - begun).count();
}

/// Shows it repeatedly, alternating with its statements on the bare interface. `away` selects something else.
template <typename Show, typename Away>
void besideItsStatements(benchmark::State& state, const std::string& path, Show show, Away away) {
    std::vector<std::string> statements;
    {
        const Recording recording;
        OpenReport recorded(path);
        recorded.clear();
        recorded.load(path);
        const std::size_t before = recording.statements().size();
        show(recorded);
        const std::vector<std::string> all = recording.statements();
        statements.assign(all.begin() + static_cast<std::ptrdiff_t>(before), all.end());
    }
    OpenReport window(path);
    double bare = 0;
    double shown = 0;
    for (auto _ : state) {
        bare += measured([&] { benchmark::DoNotOptimize(openOnBareInterface(path, statements)); });
        away(window);
        shown += measured([&] { show(window); });
    }
    const auto rounds = static_cast<double>(state.iterations());
    state.counters["ms shown"] = shown / rounds;
    state.counters["ms sql"] = bare / rounds;
    state.counters["shown/sql"] = shown / bare;
    state.counters["statements"] = static_cast<double>(statements.size());
}

void showWideTable(benchmark::State& state) {
    besideItsStatements(
        state, wideRepository(), [](OpenReport& window) { window.selectTable(); },
        [](OpenReport& window) { window.select(0, window.node(0, {0})); });
}

void showWideCollection(benchmark::State& state) {
    besideItsStatements(
        state, wideRepository(), [](OpenReport& window) { window.select(1, window.node(1, {0})); },
        [](OpenReport& window) { window.select(0, window.node(0, {0})); });
}

FieldRecord recordOf(PrViewer& viewer, int table, int field) {
    ReportSelection selection;
    selection.kind = ReportSelection::Kind::Table;
    selection.table.id = table;
    selection.fieldId = field;
    FieldRecords records;
    const auto found = records.Find(viewer, selection);
    if (!found)
        std::exit(1);
    return **found;
}

/// The frequency tab at the default limit against the first rows through the cursor, and against reading and drawing
/// the picture beside its list, which is a part of it.
void openLongDistribution(benchmark::State& state) {
    const std::string& path = longRepository();
    OpenReport window(path);
    const QModelIndex field = window.node(0, {0, 0, 0});
    window.select(0, field);
    PrViewer::Handle viewer = PrViewer::create();
    if (!viewer->init(path) || !viewer->setCurrentJobSetup(1))
        std::exit(1);
    const FieldRecord record = recordOf(*viewer, 1, 1);
    const chart::Canvas canvas = chart::plainCanvas(480, 560);
    double cursor = 0;
    double tab = 0;
    double picture = 0;
    for (auto _ : state) {
        window.openTab(0);
        picture += measured([&] {
            const auto ranks = chart::pictureOfRanks(*viewer, record);
            if (!ranks || !ranks->picture)
                std::exit(1);
            benchmark::DoNotOptimize(ranks->picture->draw(canvas).hits.size());
        });
        cursor += measured([&] {
            const ProfileCursorHandle rows = viewer->getFreqDist(1, {});
            std::size_t bytes = 0;
            for (int row = 0; row < kFirstRows && rows->next(); ++row)
                bytes += rows->getColumnValue(0).view().size();
            benchmark::DoNotOptimize(bytes);
        });
        tab += measured([&] { window.openTab(1); });
    }
    const auto* list =
        window.view().findChild<QWidget*>(QStringLiteral("frequencydistribution"))->findChild<CUGCtrl*>();
    const auto rounds = static_cast<double>(state.iterations());
    state.counters["rows"] = list->model()->rowCount();
    state.counters["ms tab"] = tab / rounds;
    state.counters["ms cursor"] = cursor / rounds;
    state.counters["tab/cursor"] = tab / cursor;
    state.counters["ms picture"] = picture / rounds;
    state.counters["picture/rest of tab"] = picture / (tab - picture);
    viewer->close();
}

/// From one field to the next, until the screen shows it, at that tab.
void walkFields(benchmark::State& state) {
    OpenReport window(wideRepository());
    const QModelIndex table = window.node(0, {0, 0});
    window.select(0, window.node(0, {0, 0, 0}));
    window.openTab(static_cast<int>(state.range(0)));
    int row = 0;
    for (auto _ : state) {
        row = (row + 1) % kWideTable;
        window.select(0, table.model()->index(row, 0, table));
    }
}

/// From a table to one of its fields and back: each time to another view. Two changes a round.
void changeOfView(benchmark::State& state) {
    OpenReport window(longRepository());
    const QModelIndex table = window.node(0, {0, 0});
    const QModelIndex field = window.node(0, {0, 0, 1});
    for (auto _ : state) {
        window.select(0, field);
        window.select(0, table);
    }
}

/// The rows of the standard metrics with the lines of the last runs against the same rows without them.
void readLastRuns(benchmark::State& state) {
    PrViewer::Handle viewer = PrViewer::create();
    if (!viewer->init(historyRepository()) || !viewer->setCurrentJobSetup(1))
        std::exit(1);
    const std::unique_ptr<SettingsStore> settings = makeMemorySettings();
    need(writeFirstStartDefaults(*settings));
    const std::vector<MetricDisplay> metrics = standardMetricDisplay(*settings);
    ReportSelection selection;
    selection.kind = ReportSelection::Kind::Table;
    selection.table.id = 1;
    double without = 0;
    double with = 0;
    std::int64_t lines = 0;
    const auto fill = [&](int metric) {
        StdMetRows rows;
        if (!rows.Fill(*viewer, selection, metrics, {}, metric))
            std::exit(1);
        lines = rows.GetTrendMetric() == metric ? rows.GetRowCount() : 0;
    };
    for (auto _ : state) {
        without += measured([&] { fill(-1); });
        with += measured([&] { fill(static_cast<int>(MetricId::PercentNull)); });
    }
    const auto rounds = static_cast<double>(state.iterations());
    state.counters["lines"] = static_cast<double>(lines);
    state.counters["ms without"] = without / rounds;
    state.counters["ms with"] = with / rounds;
    state.counters["ms of lines"] = (with - without) / rounds;
    viewer->close();
}

/// A window on the table with its pictures, until the screen shows it.
void showHistory(benchmark::State& state) {
    OpenReport window(historyRepository());
    for (auto _ : state) {
        window.select(0, window.node(0, {0}));
        window.selectTable();
    }
}

BENCHMARK(readLastRuns)->Unit(benchmark::kMillisecond);
BENCHMARK(showHistory)->Unit(benchmark::kMillisecond);
BENCHMARK(showWideTable)->Unit(benchmark::kMillisecond);
BENCHMARK(showWideCollection)->Unit(benchmark::kMillisecond);
BENCHMARK(openLongDistribution)->Unit(benchmark::kMillisecond);
BENCHMARK(walkFields)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK(changeOfView)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace tavix::bench
