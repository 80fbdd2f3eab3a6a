#include "BenchFacts.h"
#include "BenchStatements.h"
#include "access/PrViewer.h"
#include "base/tests/TempFolder.h"
#include "report/AlertBackTest.h"
#include "report/AlertStates.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <iostream>

/// Reading and judging 10,000 alerts over 1,000 runs, and trying an alert on them, compared with the same statements on
/// the bare SQLite interface. `ratio` alternates both.
namespace tavix::bench {
namespace {

constexpr int kTables = 20;
constexpr int kFieldsPerTable = 10;
constexpr int kAlertsPerField = 50;
constexpr int kRuns = 1000;

void execute(sqlite3* database, const std::string& sql) {
    if (sqlite3_exec(database, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
        std::cerr << sqlite3_errmsg(database) << '\n';
        std::exit(1);
    }
}

/// Nearly all are quiet; of a hundred, five are raised, one of them in every run, and twenty are changes.
AlertRule ruleOf(int number) {
    AlertRule rule;
    const int kind = number % 100;
    if (kind == 0) {
        rule.value1 = -1; // in every run
    } else if (kind < 5) {
        rule.value1 = 990; // in the last runs
    } else if (kind < 15) {
        rule.comparison = AlertComparison::ChangedByPercent;
        rule.value1 = 50;
    } else if (kind < 25) {
        rule.comparison = AlertComparison::ChangedBy;
        rule.value1 = 100;
        rule.runs = 7;
        rule.reference = kind < 20 ? AlertReference::Median : AlertReference::SameWeekday;
    } else {
        rule.value1 = 5000 + kind;
    }
    return rule;
}

/// Built once: a run with all the alerts, and copies of it in which the null counts and means are others.
const std::string& repository() {
    static const testing::TempFolder folder;
    static const std::string path = [] {
        std::string made = folder.file("alerts.tavix");
        auto writer = need(repository::RunWriter::begin(made, {"job", "", "", {}}));
        std::vector<repository::AlertFacts> alerts;
        for (int number = 0; number < kTables; ++number) {
            repository::TableFacts table;
            table.dataSource = "bench";
            table.name = fmt::format("table {}", number);
            table.totalRecords = table.processedRecords = 1'000'000;
            const int id = need(writer->addTable(table));
            for (int field = 0; field < kFieldsPerTable; ++field) {
                const repository::FieldFacts facts = fieldFacts(field);
                need(writer->addField(id, facts));
                for (int alert = 0; alert < kAlertsPerField; ++alert) {
                    repository::AlertFacts watching;
                    watching.table = table.name;
                    watching.field = facts.name;
                    watching.metric = alert % 2 == 0 ? MetricId::NullCount : MetricId::Mean;
                    watching.rule = ruleOf(static_cast<int>(alerts.size()));
                    alerts.push_back(watching);
                }
            }
        }
        need(writer->setAlerts(alerts));
        need(writer->commit({}));
        sqlite3* database = nullptr;
        sqlite3_open(made.c_str(), &database);
        execute(database, "BEGIN; CREATE TEMP TABLE fields AS SELECT * FROM run_field; CREATE TEMP TABLE tables AS "
                          "SELECT * FROM run_table; CREATE TEMP TABLE runs AS SELECT * FROM run;");
        for (int run = 2; run <= kRuns; ++run)
            execute(database, fmt::format("UPDATE runs SET id = {0}, started = {0} * 86400000; INSERT INTO run SELECT "
                                          "* FROM runs; UPDATE tables SET run = {0}; INSERT INTO run_table SELECT * "
                                          "FROM tables; UPDATE fields SET run = {0}, null_count = {0}, mean = {0} + "
                                          "0.5; INSERT INTO run_field SELECT * FROM fields;",
                                          run));
        execute(database, "COMMIT;");
        sqlite3_close(database);
        return made;
    }();
    return path;
}

PrViewer::Handle openReport() {
    auto viewer = PrViewer::create();
    if (!viewer->init(repository()) || !viewer->setCurrentJobSetup(1)) {
        std::cerr << viewer->getErrorString().view() << '\n';
        std::exit(1);
    }
    return viewer;
}

std::vector<AlertState> readAlerts() {
    const auto viewer = openReport();
    return readAllAlertStates(*viewer);
}

AlertBackTest tryOut() {
    AlertDefinition alert;
    alert.table = 1;
    alert.field = 1;
    alert.metric = MetricId::Mean;
    alert.rule = {AlertComparison::ChangedBy, false, 0.75, 0, 30, AlertLevel::Warning, AlertReference::Median};
    const auto viewer = openReport();
    return backTest(alert.rule, readWatchedFigures(*viewer, alert));
}

template <typename Task>
std::vector<std::string> statementsOf(const Task& task) {
    (void)repository();
    const Recording recording;
    benchmark::DoNotOptimize(task());
    return recording.statements();
}

template <typename Task>
void compare(benchmark::State& state, const Task& task) {
    using Clock = std::chrono::steady_clock;
    static const std::vector<std::string> statements = statementsOf(task);
    Clock::duration bare{};
    Clock::duration own{};
    for (auto _ : state) {
        const auto begun = Clock::now();
        benchmark::DoNotOptimize(openOnBareInterface(repository(), statements));
        const auto between = Clock::now();
        benchmark::DoNotOptimize(task());
        own += Clock::now() - between;
        bare += between - begun;
    }
    const auto milliseconds = [&](Clock::duration all) {
        return std::chrono::duration<double, std::milli>(all).count() / static_cast<double>(state.iterations());
    };
    state.counters["statements"] = static_cast<double>(statements.size());
    state.counters["own_ms"] = milliseconds(own);
    state.counters["sql_ms"] = milliseconds(bare);
    state.counters["own/sql"] = static_cast<double>(own.count()) / static_cast<double>(bare.count());
}

void alertList(benchmark::State& state) {
    const AlertCounts counts = countAlerts(readAlerts());
    compare(state, readAlerts);
    state.counters["alerts"] = counts.raised() + counts.muted + counts.unjudged + counts.quiet;
    state.counters["raised"] = counts.raised();
}

void alertBackTest(benchmark::State& state) {
    const AlertBackTest test = tryOut();
    compare(state, tryOut);
    state.counters["runs"] = static_cast<double>(test.runs.size());
    state.counters["raised"] = test.raised;
}

BENCHMARK(alertList)->Unit(benchmark::kMillisecond);
BENCHMARK(alertBackTest)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace tavix::bench

BENCHMARK_MAIN();
