#include "blocks/BlockEvaluator.h"

#include <benchmark/benchmark.h>
#include <fmt/format.h>
#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <map>
#include <numeric>
#include <random>
#include <string>
#include <vector>

/// The cost of filtering a distribution of five million values that is in memory in blocks. The peer is the same
/// condition in SQL over the same rows: if TAVIX_BENCH_ROWS names an SQLite file with a table freq(rank, value, cnt),
/// its rows are used instead of generated ones.
namespace tavix::expression {
namespace {

constexpr std::size_t kValues = 5'000'000;
constexpr std::size_t kRowsPerBlock = 4096;

struct StoredBlock {
    std::string bytes;
    std::vector<std::uint32_t> ends;
    std::vector<std::uint64_t> counts;
};

/// The values of a distribution that is made up.
enum class Values : std::uint8_t { Mixed, Numbers, Dates };

class Distribution {
  public:
    explicit Distribution(Values values) : m_values(values) {
        const char* const file = std::getenv("TAVIX_BENCH_ROWS");
        if (file && values == Values::Mixed)
            read(file);
        else
            makeUp();
    }

    [[nodiscard]] const std::vector<StoredBlock>& blocks() const { return m_blocks; }

  private:
    void add(std::string_view value, std::uint64_t count) {
        if (m_blocks.empty() || m_blocks.back().ends.size() == kRowsPerBlock)
            m_blocks.emplace_back();
        StoredBlock& block = m_blocks.back();
        block.bytes += value;
        block.ends.push_back(static_cast<std::uint32_t>(block.bytes.size()));
        block.counts.push_back(count);
    }

    void read(const char* file) {
        sqlite3* database = nullptr;
        sqlite3_stmt* rows = nullptr;
        if (sqlite3_open_v2(file, &database, SQLITE_OPEN_READONLY, nullptr) != SQLITE_OK ||
            sqlite3_prepare_v2(database, "SELECT value, cnt FROM freq ORDER BY rank", -1, &rows, nullptr) !=
                SQLITE_OK) {
            std::cerr << file << ": " << sqlite3_errmsg(database) << '\n';
            std::exit(1);
        }
        while (sqlite3_step(rows) == SQLITE_ROW)
            add({reinterpret_cast<const char*>(sqlite3_column_text(rows, 0)),
                 static_cast<std::size_t>(sqlite3_column_bytes(rows, 0))},
                static_cast<std::uint64_t>(sqlite3_column_int64(rows, 1)));
        sqlite3_finalize(rows);
        sqlite3_close(database);
    }

    /// Numbers, codes, names and texts in equal parts, a few of them frequent.
    void makeUp() {
        static constexpr std::array<std::string_view, 8> kSyllables{"ba", "den", "kor", "li", "mus", "ta", "rel", "vi"};
        std::vector<std::uint32_t> order(kValues);
        std::iota(order.begin(), order.end(), 0U);
        std::shuffle(order.begin(), order.end(), std::mt19937(5));
        std::uint64_t rank = 0;
        for (const std::uint32_t x : order) {
            const std::uint64_t count = 1 + kValues / 20 / ++rank;
            if (m_values == Values::Numbers) {
                add(fmt::format("{}.{:02}", x % 100'000, x % 97), count);
                continue;
            }
            if (m_values == Values::Dates) {
                add(fmt::format("{}-{:02}-{:02} {:02}:{:02}", 1990 + x % 40, 1 + x % 12, 1 + x % 28, x % 24, x % 60),
                    count);
                continue;
            }
            switch (x % 4) {
            case 0:
                add(std::to_string(std::uint64_t{x} * 13), count);
                break;
            case 1:
                add(fmt::format("K{:05X}-{:03}", x, x % 997), count);
                break;
            case 2:
                add(fmt::format("{}{}.{}", kSyllables[x % 8], kSyllables[x / 8 % 8], x), count);
                break;
            default:
                add(rank == 778 ? "aBc" : fmt::format("Abc {}", x), count);
            }
        }
    }

    Values m_values;
    std::vector<StoredBlock> m_blocks;
};

const Distribution& distribution(Values values) {
    static std::map<Values, Distribution> made;
    return made.try_emplace(values, values).first->second;
}

void filter(benchmark::State& state, const char* text, Values values, Columns columns) {
    const std::vector<Field> fields{{"Value", Type::Text}, {"Count", Type::Integer}};
    const Compiled compiled = compile(text, fields, Wanted::Condition, thisMoment(), columns);
    if (!compiled.ok()) {
        state.SkipWithError(describe(compiled.error).c_str());
        return;
    }
    const std::vector<StoredBlock>& blocks = distribution(values).blocks();
    BlockEvaluator evaluator(*compiled.program);
    std::size_t rows = 0;
    std::uint64_t sum = 0;
    for ([[maybe_unused]] const auto& round : state) {
        rows = 0;
        sum = 0;
        for (const StoredBlock& stored : blocks) {
            // Counts descend.
            const bool isUniform = stored.counts.front() == stored.counts.back();
            const std::array<BlockColumn, 2> stores{BlockColumn{stored.bytes, stored.ends, {}, {}},
                                                    BlockColumn{{}, {}, stored.counts, {}, isUniform}};
            const auto passing = evaluator.passing({stored.ends.size(), stores});
            rows += passing.size();
            for (const std::uint32_t row : passing)
                sum += stored.counts[row];
        }
        benchmark::DoNotOptimize(sum);
    }
    state.counters["rows"] = static_cast<double>(rows);
    state.counters["sum"] = static_cast<double>(sum);
}

struct Case {
    const char* name;
    const char* text;
    Values values = Values::Mixed;
    Columns columns = Columns::Texts;
};

constexpr auto kCases = std::to_array<Case>({
    {"equal", "lower(`Value`) == 'abc'"},
    {"contains", "instr(`Value`,'5') != 0"},
    {"wildcard", "match_string(`Value`,'K*1?5*9')"},
    {"count", "`Count` > 10"},
    {"three", "`Count` > 1 and (lower(`Value`) == 'abc' or instr(`Value`,'5') != 0)"},
    {"begins", "compare(left(`Value`,3),'Abc',false) == 0"},
    {"begins_folded", "compare(left(`Value`,3),'abc',true) == 0"},
    {"ends", "compare(right(`Value`,2),'17',false) == 0"},
    {"longer", "length(`Value`) > 9"},
    {"not_upper", "upper(`Value`) != `Value`"},
    {"contains_folded", "instr(lower(`Value`),'bc 1') != 0"},
    {"greater", "`Value` > 'K5'"},
    {"numeric", "isnumber(`Value`)"},
    {"control", "has_control_chars(`Value`)"},
    {"list", "inlist(`Value`,'13','26','aBc','K00001-001')"},
    {"regular", "matches(`Value`,'K[0-9A-F]+-\\d*7')"},
    {"number", "tonumber(`Value`) > 50000000"},
    {"replaced", "length(replace(`Value`,'5','')) < 6"},
    {"remainder", "`Count` % 2 == 0"},
    {"upper", "upper(`Value`) == 'ABC'"},
    {"upper_greater", "upper(`Value`) > 'K5'"},
    {"substring", "substring(`Value`,2,3) > 'bc '"},
    {"joined", "length(concat(`Value`,'x',left(`Value`,2))) > 12"},
    {"trimmed", "trim(`Value`) != `Value`"},
    {"rounded", "round(tonumber(`Value`) / 7, 2) > 1000.5"},
    {"rounded_count", "round(`Count` / 3, 1) > 2"},
    {"year", "year(todate(`Value`)) == 2020"},
    {"between", "`Value` >= 'K2' and `Value` <= 'K5'"},
    {"list_of_parts", "inlist(lower(left(`Value`,2)),'ab','k0','ba')"},
    {"choice", "if length(`Value`) > 9 then return `Value` > 'K' else return `Count` > 1"},
    {"arithmetic", "(length(`Value`) * 3 + `Count`) % 7 == 2"},
    {"not_wildcard", "not match_string(`Value`,'*a?c*')"},
    {"regular_search", "matches(`Value`,'.*[0-9]{3}-[0-9]+')"},
    {"regular_choice", "matches(`Value`,'(bad|kor)[a-z]*\\.(1|2)\\d+')"},
    {"position", "instr(`Value`,'-') > 5"},
    {"filled", "lpad(`Value`,12,'0') > '00000K'"},
    {"some", "contains(`Value`,'a') or contains(`Value`,'F') or ends_with(`Value`,'7')"},
    {"first_not_null", "coalesce(nullif(`Value`,'13'),'x') == 'x'"},
    {"integer", "isinteger(`Value`)"},
    {"replaced_word", "replace(`Value`,'Abc','xy') > 'xy 5'"},
    {"absolute", "abs(`Count` - 10) < 3"},
    {"list_of_lengths", "inlist(length(`Value`),3,7,9)"},
    {"long_list", "inlist(`Value`,'13','26','39','52','65','78','91','104','117','130','K00001-001','K00005-005')"},
    {"greatest", "max(length(`Value`),`Count`) > 9"},
    {"behind_sign", "substring(`Value`,instr(`Value`,'-')+1) == '017'"},
    {"position_from", "instr(`Value`,'5',3) > 0"},
    {"occurrences", "length(`Value`) - length(replace(`Value`,'1','')) == 2"},
    {"fits", "fits(`Value`,'integer')"},
    {"fits_number", "fits(`Value`,'real decimal-comma')"},
    {"fits_date", "fits(`Value`,'date day-first')"},
    {"is_date", "isdate(`Value`)"},
    {"luhn", "isluhn(`Value`)"},
    {"ean", "isean(`Value`)"},
    {"iban", "isiban(`Value`)"},
    {"split", "split(`Value`,'-',2) == '017'"},
    {"initcap", "initcap(`Value`) == `Value`"},
    {"reverse", "reverse(`Value`) > '7'"},
    {"unaccent", "unaccent(`Value`) != `Value`"},
    {"extract", "regexp_extract(`Value`,'-(\\d+)',1) == '017'"},
    {"replace_regular", "regexp_replace(`Value`,'[0-9]+','') == 'K-'"},
    {"edit_distance", "editdistance(`Value`,'Abc 5') < 2"},
    {"jaro_winkler", "jarowinkler(`Value`,'Abc 5') > 0.9"},
    {"soundex", "soundex(`Value`) == 'A120'"},
    {"number_of_number", "tonumber(`Value`) > 50000", Values::Numbers},
    {"cell_above", "`Value` > 50000", Values::Numbers, Columns::Typed},
    {"cell_above_mixed", "`Value` > 50000000", Values::Mixed, Columns::Typed},
    {"cell_between", "`Value` between 20000 and 30000", Values::Numbers, Columns::Typed},
    {"cell_listed", "`Value` in (5, 7, 13, 26)", Values::Mixed, Columns::Typed},
    {"cell_of_count", "`Value` > `Count`", Values::Numbers, Columns::Typed},
    {"cell_pair", "`Value` <= `Value`", Values::Numbers, Columns::Typed},
    {"to_date", "todate(`Value`) > todate('2010-01-01')", Values::Dates},
    {"year_of_date", "year(todate(`Value`)) == 2020", Values::Dates},
    {"month", "month(todate(`Value`)) == 2", Values::Dates},
    {"quarter", "quarter(todate(`Value`)) == 2", Values::Dates},
    {"weekday", "weekday(todate(`Value`)) > 5", Values::Dates},
    {"hour", "hour(todate(`Value`)) < 6", Values::Dates},
    {"days_ago", "datediff(todate(`Value`), todate('2026-11-22')) < 365", Values::Dates},
    {"months_ago", "datediff(todate(`Value`), todate('2026-11-22'), 'month') < 12", Values::Dates},
    {"month_begins", "startof(todate(`Value`), 'month') == todate('2020-05-01')", Values::Dates},
    {"last_day", "lastday(todate(`Value`)) == todate('2020-05-31')", Values::Dates},
});

} // namespace
} // namespace tavix::expression

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    for (const auto& one : tavix::expression::kCases)
        benchmark::RegisterBenchmark(one.name, tavix::expression::filter, one.text, one.values, one.columns)
            ->Unit(benchmark::kMillisecond);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
