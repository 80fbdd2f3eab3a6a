#include "base/tests/TempFolder.h"
#include "worksheet/Workbook.h"

#include <benchmark/benchmark.h>
#include <fmt/format.h>
#include <xlsxwriter.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

/// A worksheet of 60,000 rows and six columns, three of distinct texts, one of a constant text and two of numbers: ours
/// compared with libxlsxwriter in its constant-memory mode, alternating in the same process.
namespace tavix::worksheet {
namespace {

constexpr std::uint32_t kRows = 60'000;
constexpr int kColumns = 6;

struct Row {
    std::vector<std::string> texts;
    double real = 0;
    std::int64_t whole = 0;
};

const std::vector<Row>& rows() {
    static const std::vector<Row> all = [] {
        std::vector<Row> made;
        for (std::uint32_t number = 0; number < kRows; ++number)
            made.push_back(
                {{fmt::format("Customer {}", number), fmt::format("M\u00FCnchen, Stra\u00DFe {}", number * 7),
                  fmt::format("\u6771\u4EAC {}", number * 13), "active"},
                 number * 0.37,
                 std::int64_t{number} * 11});
        return made;
    }();
    return all;
}

void need(bool done, const std::string& what) {
    if (done)
        return;
    std::cerr << what << '\n';
    std::exit(1);
}

void need(const Status& status) {
    need(status.ok(), status.ok() ? "" : status.error().text);
}

void writeOurs(const std::string& path) {
    Workbook book;
    Sheet& sheet = *book.sheet("Sheet1");
    std::int64_t number = 0;
    for (const Row& row : rows()) {
        Range cell = *sheet.range(fmt::format("A{}", ++number));
        for (const std::string& text : row.texts) {
            need(cell.putText(text));
            cell = cell.next();
        }
        need(cell.putNumber(row.real));
        need(cell.next().putInteger(row.whole));
    }
    need(book.save(path));
}

void writeTheirs(const std::string& path) {
    lxw_workbook_options options{};
    options.constant_memory = LXW_TRUE;
    lxw_workbook* book = workbook_new_opt(path.c_str(), &options);
    lxw_worksheet* sheet = workbook_add_worksheet(book, nullptr);
    lxw_row_t number = 0;
    for (const Row& row : rows()) {
        lxw_col_t column = 0;
        for (const std::string& text : row.texts)
            worksheet_write_string(sheet, number, column++, text.c_str(), nullptr);
        worksheet_write_number(sheet, number, column++, row.real, nullptr);
        worksheet_write_number(sheet, number, column, static_cast<double>(row.whole), nullptr);
        ++number;
    }
    need(workbook_close(book) == LXW_NO_ERROR, "libxlsxwriter failed");
}

/// In seconds, at first more than any.
struct Times {
    double wall = 1e9;
    double process = 1e9;

    void keepBest(const Times& other) {
        wall = std::min(wall, other.wall);
        process = std::min(process, other.process);
    }
};

template <typename Write>
Times timesOf(Write write, const std::string& path) {
    const auto start = std::chrono::steady_clock::now();
    const std::clock_t processStart = std::clock();
    write(path);
    return {std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count(),
            static_cast<double>(std::clock() - processStart) / CLOCKS_PER_SEC};
}

void measure(benchmark::State& state) {
    const testing::TempFolder folder;
    const std::string oursPath = folder.file("ours.xls");
    const std::string theirsPath = folder.file("theirs.xlsx");
    rows();
    Times ours;
    Times theirs;
    for (auto _ : state) {
        theirs.keepBest(timesOf(writeTheirs, theirsPath));
        ours.keepBest(timesOf(writeOurs, oursPath));
    }
    state.counters["ours_ms"] = ours.wall * 1e3;
    state.counters["libxlsxwriter_ms"] = theirs.wall * 1e3;
    state.counters["ratio"] = ours.wall / theirs.wall;
    state.counters["ratio_process_time"] = ours.process / theirs.process;
    state.counters["cells_per_s"] = kRows * kColumns / ours.wall;
    state.counters["ours_MB"] = static_cast<double>(std::filesystem::file_size(oursPath)) / 1e6;
    state.counters["libxlsxwriter_MB"] = static_cast<double>(std::filesystem::file_size(theirsPath)) / 1e6;
}

/// The counters are the best of all rounds.
BENCHMARK(measure)->Name("worksheet_60000x6")->Iterations(7)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace tavix::worksheet

BENCHMARK_MAIN();
