#include "BenchFacts.h"
#include "access/PrViewer.h"
#include "base/tests/TempFolder.h"
#include "repository/RunWriter.h"

#include <benchmark/benchmark.h>
#include <fmt/format.h>
#include <sqlite3.h>

#include <array>
#include <cstdlib>
#include <deque>
#include <iostream>
#include <string>
#include <vector>

/// The cost of opening a report, a list of tables or fields, and a long distribution, compared with the same SQL on the
/// bare SQLite interface in the same process; and of reading a filtered distribution of five million values. Its rows
/// are generated, or taken from the table freq(rank, value, cnt) of the SQLite file that TAVIX_BENCH_ROWS names; that
/// file is then the peer, queried in SQL.
namespace tavix {
namespace {

using bench::fieldFacts;
using bench::need;
using testing::TempFolder;

constexpr int kManyTables = 1000;
constexpr int kFieldsPerTable = 100;
constexpr int kLongDistribution = 5'000'000;

repository::TableFacts tableFacts(int number) {
    repository::TableFacts table;
    table.dataSource = "bench";
    table.name = fmt::format("table {}", number);
    table.totalRecords = table.processedRecords = 1'000'000;
    return table;
}

/// Repositories are built once and removed at the end of the process.
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

/// Reads every cell of every row as the viewer does; returns the bytes read.
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

/// The peer: the statement prepared once, every cell read as text.
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

/// The peer for reading is the store, so the time to write it is reported, too.
void writeLong(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(withLongDistribution());
}

// Distributions to be filtered.

sqlite3_stmt* prepareOn(sqlite3*& database, const char* path, const std::string& sql) {
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_open_v2(path, &database, SQLITE_OPEN_READONLY, nullptr) != SQLITE_OK ||
        sqlite3_prepare_v2(database, sql.c_str(), -1, &statement, nullptr) != SQLITE_OK) {
        std::cerr << path << ": " << sqlite3_errmsg(database) << '\n';
        std::exit(1);
    }
    return statement;
}

const char* benchRows() {
    return std::getenv("TAVIX_BENCH_ROWS");
}

struct Texts {
    std::deque<std::string> texts;
    std::vector<repository::ValueCount> rows;

    void add(std::string text, std::uint64_t count) {
        texts.push_back(std::move(text));
        rows.push_back({texts.back(), count, false});
    }
};

/// Numbers, codes and words in equal parts, a few of them frequent.
Texts madeUpRows() {
    Texts made;
    for (std::uint64_t rank = 1; rank <= kLongDistribution; ++rank) {
        const std::uint64_t x = rank * 2'654'435'761 % 4'294'967'291;
        const std::uint64_t count = 1 + kLongDistribution / 20 / rank;
        switch (rank % 3) {
        case 0:
            made.add(std::to_string(x), count);
            break;
        case 1:
            made.add(fmt::format("K{:05X}-{:03}", x % 1'048'576, x % 997), count);
            break;
        default:
            made.add(rank == 776 ? "aBc" : fmt::format("Abc {}", x), count);
        }
    }
    return made;
}

Texts readRows(const char* path) {
    Texts read;
    sqlite3* database = nullptr;
    sqlite3_stmt* rows = prepareOn(database, path, "SELECT value, cnt FROM freq ORDER BY rank");
    while (sqlite3_step(rows) == SQLITE_ROW)
        read.add({reinterpret_cast<const char*>(sqlite3_column_text(rows, 0)),
                  static_cast<std::size_t>(sqlite3_column_bytes(rows, 0))},
                 static_cast<std::uint64_t>(sqlite3_column_int64(rows, 1)));
    sqlite3_finalize(rows);
    sqlite3_close(database);
    return read;
}

const std::string& withFilteredDistribution() {
    static const std::string path = [] {
        std::string made = folder().file("filtered.tavix");
        const Texts texts = benchRows() ? readRows(benchRows()) : madeUpRows();
        repository::FieldFacts field = fieldFacts(0);
        field.values = texts.rows;
        auto writer = need(repository::RunWriter::begin(made, {"job", "", "", {}}));
        const int table = need(writer->addTable(tableFacts(0)));
        need(writer->addField(table, field));
        need(writer->commit({}));
        return made;
    }();
    return path;
}

/// The rows that pass and the sum of their counts, which a tab's percentages need.
void filterWalk(benchmark::State& state, const char* filter) {
    auto viewer = openReport(withFilteredDistribution());
    std::int64_t rows = 0;
    double sum = 0;
    for (auto _ : state) {
        rows = 0;
        sum = 0;
        auto cursor = viewer->getFreqDist(1, filter);
        if (!cursor) {
            state.SkipWithError(viewer->getErrorString().str().c_str());
            return;
        }
        for (; cursor->next(); ++rows)
            sum += cursor->getColumnDouble(1);
    }
    state.counters["rows"] = static_cast<double>(rows);
    state.counters["sum"] = sum;
}

void filterFirst100(benchmark::State& state, const char* filter) {
    auto viewer = openReport(withFilteredDistribution());
    for (auto _ : state)
        benchmark::DoNotOptimize(drain(*viewer->getFreqDist(1, filter), 100));
}

void filterRaw(benchmark::State& state, const char* condition) {
    sqlite3* database = nullptr;
    sqlite3_stmt* statement =
        prepareOn(database, benchRows(), fmt::format("SELECT count(*), sum(cnt) FROM freq WHERE {}", condition));
    for (auto _ : state) {
        sqlite3_step(statement);
        state.counters["rows"] = sqlite3_column_double(statement, 0);
        state.counters["sum"] = sqlite3_column_double(statement, 1);
        sqlite3_reset(statement);
    }
    sqlite3_finalize(statement);
    sqlite3_close(database);
}

struct FilterCase {
    const char* name;
    const char* filter;
    const char* condition; ///< the same in SQL
};

constexpr std::array<FilterCase, 9> kFilters{{
    {"equal", "lower(`Value`) == 'abc'", "lower(value) = 'abc'"},
    {"contains", "instr(`Value`,'5') != 0", "instr(value,'5') != 0"},
    {"wildcard", "match_string(`Value`,'*12*4?')", "value GLOB '*12*4?'"},
    {"wildcard_begins", "match_string(`Value`,'K*1?5*9')", "value GLOB 'K*1?5*9'"},
    {"three", "`Count` > 1 and (lower(`Value`) == 'abc' or instr(`Value`,'5') != 0)",
     "cnt > 1 AND (lower(value) = 'abc' OR instr(value,'5') != 0)"},
    {"three_texts", "instr(`Value`,'5') != 0 and (lower(`Value`) == 'abc' or match_string(`Value`,'*12*4?'))",
     "instr(value,'5') != 0 AND (lower(value) = 'abc' OR value GLOB '*12*4?')"},
    {"count", "`Count` > 10", "cnt > 10"},
    {"count_below", "`Count` < 3", "cnt < 3"},
    {"everything", "true", "1"},
}};

void registerFilters() {
    for (const FilterCase& one : kFilters) {
        benchmark::RegisterBenchmark((std::string("filter/") + one.name).c_str(), filterWalk, one.filter)
            ->Unit(benchmark::kMillisecond);
        if (benchRows())
            benchmark::RegisterBenchmark((std::string("filterRaw/") + one.name).c_str(), filterRaw, one.condition)
                ->Unit(benchmark::kMillisecond);
    }
    benchmark::RegisterBenchmark("filterFirst100/contains", filterFirst100, "instr(`Value`,'5') != 0")
        ->Unit(benchmark::kMillisecond);
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

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    tavix::registerFilters();
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
