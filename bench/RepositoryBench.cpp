#include "access/PrViewer.h"
#include "base/tests/TempFolder.h"
#include "repository/RunWriter.h"

#include <benchmark/benchmark.h>
#include <fmt/format.h>
#include <sqlite3.h>

#include <cstdlib>
#include <iostream>
#include <optional>

/// What it costs to open a report, a list of tables or fields, and a long distribution, beside the same SQL on the bare
/// SQLite interface in the same process.
namespace tavix {
namespace {

using testing::TempFolder;

constexpr int kManyTables = 1000;
constexpr int kFieldsPerTable = 100;
constexpr int kLongDistribution = 5'000'000;

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

repository::TableFacts tableFacts(int number) {
    repository::TableFacts table;
    table.dataSource = "bench";
    table.name = fmt::format("table {}", number);
    table.totalRecords = table.processedRecords = 1'000'000;
    return table;
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
    field.metrics[index(MetricId::StandardError)] = 0.01;
    field.metrics[index(MetricId::ActualType)] = "real";
    field.metrics[index(MetricId::DefinedType)] = "text";
    return field;
}

/// Repositories are made once and removed at the end of the process.
const TempFolder& folder() {
    static const TempFolder made;
    return made;
}

std::string withRuns(int runs) {
    std::string path = folder().file(fmt::format("runs{}.tavix", runs));
    for (int run = 0; run < runs; ++run) {
        auto writer = need(repository::RunWriter::begin(path, {"job", "", "", {}}));
        int table = need(writer->addTable(tableFacts(0)));
        for (int field = 0; field < 10; ++field)
            need(writer->addField(table, fieldFacts(field)));
        need(writer->commit({}));
    }
    return path;
}

const std::string& withTables() {
    static const std::string path = [] {
        std::string made = folder().file("tables.tavix");
        auto writer = need(repository::RunWriter::begin(made, {"job", "", "", {}}));
        for (int number = 0; number < kManyTables; ++number) {
            int table = need(writer->addTable(tableFacts(number)));
            for (int field = 0; field < kFieldsPerTable; ++field)
                need(writer->addField(table, fieldFacts(field)));
        }
        need(writer->commit({}));
        return made;
    }();
    return path;
}

const std::string& withLongDistribution() {
    static const std::string path = [] {
        std::string made = folder().file("long.tavix");
        std::vector<std::string> texts;
        texts.reserve(kLongDistribution);
        for (int number = 0; number < kLongDistribution; ++number)
            texts.push_back(fmt::format("K{:07}", number));
        std::vector<repository::ValueCount> rows;
        rows.reserve(texts.size());
        for (const std::string& text : texts)
            rows.push_back({text, 1, false});
        repository::FieldFacts field = fieldFacts(0);
        field.values = rows;
        auto writer = need(repository::RunWriter::begin(made, {"job", "", "", {}}));
        int table = need(writer->addTable(tableFacts(0)));
        need(writer->addField(table, field));
        need(writer->commit({}));
        return made;
    }();
    return path;
}

PrViewer::Handle openReport(const std::string& path) {
    auto viewer = PrViewer::create();
    if (!viewer->init(path) || !viewer->setCurrentJobSetup(1)) {
        std::cerr << viewer->getErrorString().view() << '\n';
        std::exit(1);
    }
    return viewer;
}

/// Reads every cell of every row as its readers do; the number of bytes seen.
std::size_t drain(ProfileCursor& cursor, int limit = -1) {
    std::size_t bytes = 0;
    const int columns = cursor.getColumnCount();
    for (int row = 0; row != limit && cursor.next(); ++row) {
        for (int column = 0; column < columns; ++column)
            bytes += cursor.getColumnValue(column).view().size();
    }
    return bytes;
}

void openJob(benchmark::State& state) {
    const std::string path = withRuns(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        auto viewer = openReport(path);
        benchmark::DoNotOptimize(viewer->getJobCount());
    }
}

void tableList(benchmark::State& state) {
    auto viewer = openReport(withTables());
    for (auto _ : state)
        benchmark::DoNotOptimize(drain(*viewer->getTableList(-1)));
}

void fieldList(benchmark::State& state) {
    auto viewer = openReport(withTables());
    for (auto _ : state)
        benchmark::DoNotOptimize(drain(*viewer->getFieldListPKR(500)));
}

void first1000OfLong(benchmark::State& state) {
    const std::string& path = withLongDistribution();
    for (auto _ : state) {
        auto viewer = openReport(path);
        auto cursor = viewer->getFreqDist(1, "");
        benchmark::DoNotOptimize(drain(*cursor, 1000));
        benchmark::DoNotOptimize(viewer->getFreqDistSum(1));
    }
}

/// The peer: the statement prepared once, every cell taken as text.
void raw(benchmark::State& state, const std::string& path, const char* sql) {
    sqlite3* database = nullptr;
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_open_v2(path.c_str(), &database, SQLITE_OPEN_READWRITE, nullptr) != SQLITE_OK ||
        sqlite3_prepare_v2(database, sql, -1, &statement, nullptr) != SQLITE_OK)
        state.SkipWithError(sqlite3_errmsg(database));
    for (auto _ : state) {
        std::size_t bytes = 0;
        while (sqlite3_step(statement) == SQLITE_ROW) {
            for (int column = 0; column < sqlite3_column_count(statement); ++column) {
                if (sqlite3_column_text(statement, column))
                    bytes += static_cast<std::size_t>(sqlite3_column_bytes(statement, column));
            }
        }
        benchmark::DoNotOptimize(bytes);
        sqlite3_reset(statement);
    }
    sqlite3_finalize(statement);
    sqlite3_close(database);
}

void tableListRaw(benchmark::State& state) {
    raw(state, withTables(),
        "SELECT t.kind, t.id, t.name, t.object_name, t.schema, t.catalog, '', rt.filter, rt.query, "
        "rt.alternate_filter, rt.total_records, rt.processed_records, rt.fields, rt.damaged_records FROM run_table rt "
        "JOIN profiled_table t ON t.id = rt.table_id WHERE rt.run = 1 ORDER BY rt.position");
}

void fieldListRaw(benchmark::State& state) {
    raw(state, withTables(),
        "SELECT f.id, f.name, rf.type_code, (SELECT COUNT(*) FROM key_analysis k WHERE k.run = rf.run AND k.field = "
        "rf.field), (SELECT COUNT(*) FROM redundancy_field m WHERE m.field = f.id), rf.count, rf.unique_count, "
        "rf.null_count, rf.non_null_count, rf.blank_count, rf.pattern_count, rf.minimum_value, rf.maximum_value, "
        "rf.minimum_length, rf.maximum_length, rf.mean, rf.median, rf.mode, rf.standard_deviation, rf.standard_error, "
        "rf.defined_type, rf.defined_length, rf.ordinal, rf.primary_key, rf.nullable, rf.decimal_precision, "
        "rf.actual_type, rf.unique_percent, rf.percent_null, rf.value_rows, rf.pattern_rows, f.table_id, "
        "rf.quantile_rule FROM run_field rf JOIN field f ON f.id = rf.field WHERE rf.run = 1 AND rf.table_id = 500 "
        "ORDER BY rf.position");
}

/// What is compared here is the store, so the time to write it is told too.
void writeLong(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(withLongDistribution());
}

BENCHMARK(openJob)->Arg(10)->Arg(1000)->Unit(benchmark::kMillisecond);
BENCHMARK(tableListRaw)->Unit(benchmark::kMillisecond);
BENCHMARK(tableList)->Unit(benchmark::kMillisecond);
BENCHMARK(fieldListRaw)->Unit(benchmark::kMillisecond);
BENCHMARK(fieldList)->Unit(benchmark::kMillisecond);
BENCHMARK(writeLong)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(first1000OfLong)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace tavix

BENCHMARK_MAIN();
