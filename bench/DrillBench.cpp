#include "drill/CDrillThruDataSrc.h"

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

/// Rows of a drill-through: reading a million of them into the grid and sorting them. Without TAVIX_DRILL_FILE the
/// columns are generated; with it, they are the first column of a text file, a value a line after a heading, so that a
/// peer can sort the same (bench/drill_sort_bench).
namespace tavix {
namespace {

constexpr int kRows = 1'000'000;

std::uint64_t draw() {
    static std::uint64_t state = 1;
    state = state * 6364136223846793005U + 1442695040888963407U;
    return state >> 33;
}

std::string word(std::uint64_t number) {
    std::string text;
    for (std::uint64_t rest = number * 2654435761U % 100'000'000'000U; rest > 0; rest /= 26)
        text += static_cast<char>((number % 3 == 0 ? 'A' : 'a') + static_cast<int>(rest % 26));
    return text;
}

std::string value(std::string_view kind) {
    const bool isNumber = kind == "numbers" || (kind == "mixed" && draw() % 10 < 7);
    if (!isNumber)
        return word(draw() % 60'000);
    return draw() % 2 == 0 ? std::to_string(draw() % 50'000)
                           : std::to_string(draw() % 1000) + "." + std::to_string(1 + draw() % 9);
}

const DrillRows& column(const std::string& kind) {
    static std::string madeKind;
    static DrillRows made;
    if (madeKind == kind)
        return made;
    madeKind = kind;
    made = DrillRows({{"v", kvbType::Text}});
    if (const char* path = std::getenv("TAVIX_DRILL_FILE")) {
        std::ifstream file(path);
        std::string line;
        for (std::getline(file, line); std::getline(file, line); made.endRow())
            made.add(KvbString(line));
    } else {
        for (int row = 0; row < kRows; ++row, made.endRow())
            made.add(KvbString(value(kind)));
    }
    return made;
}

void sortColumn(benchmark::State& state, const std::string& kind) {
    CDrillThruDataSrc source;
    source.SetRows(column(kind));
    bool descending = false;
    for (auto _ : state) {
        if (!source.Sort(0, descending))
            state.SkipWithError("not sorted");
        benchmark::DoNotOptimize(source.GetText(0, 0));
    }
    state.counters["rows"] = static_cast<double>(source.GetRowCount());
}
BENCHMARK_CAPTURE(sortColumn, numbers, "numbers")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(sortColumn, texts, "texts")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(sortColumn, mixed, "mixed")->Unit(benchmark::kMillisecond);

// A row of an ordinary table; the memory is that of the rows and their order without their text.
void readRows(benchmark::State& state) {
    std::vector<KvbString> row;
    for (int i = 0; i < 8; ++i)
        row.emplace_back(word(static_cast<std::uint64_t>(i) + 7) + std::to_string(i));
    std::size_t text = 0;
    for (const KvbString& cell : row)
        text += cell.view().size();
    double memory = 0;
    for (auto _ : state) {
        ::malloc_trim(0);
        const auto before = ::mallinfo2();
        DrillRows rows(std::vector<DrillColumn>(row.size(), {"c", kvbType::Text}));
        for (int i = 0; i < kRows; ++i, rows.endRow()) {
            for (const KvbString& cell : row)
                rows.add(cell);
        }
        rows.finish();
        CDrillThruDataSrc source;
        source.SetRows(std::move(rows));
        if (!source.Sort(0, false))
            state.SkipWithError("not sorted");
        const auto after = ::mallinfo2();
        memory = static_cast<double>(after.uordblks + after.hblkhd - before.uordblks - before.hblkhd);
    }
    state.counters["bytes_per_byte_of_text"] = memory / static_cast<double>(text) / kRows;
}
BENCHMARK(readRows)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace tavix

BENCHMARK_MAIN();
