#include "profiling/JobRunner.h"
#include "profiling/tests/StoredRuns.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace tavix::profiling {
namespace {

class RuleRuns : public testing::StoredRuns {
  protected:
    Result<RunOutcome> run(std::string_view yaml, const RunOptions& options = {}) {
        std::ofstream(m_job, std::ios::binary) << yaml;
        const auto job = job::readJobFile(m_job);
        if (!job)
            return job.error();
        if (Status status = checkFields(*job); !status)
            return status.error();
        return runJob(*job, m_repository, options);
    }
    double number(std::string_view query) { return std::stod(stored(query)); }

    std::string m_job = m_folder.file("job.yaml");
};

/// A row as the test computes it, with its line in the file.
struct Row {
    int id = 0;
    std::optional<std::string> amount;
    std::string city;
};

std::optional<long double> numberOf(const std::optional<std::string>& text) {
    if (!text || text->empty() || text->find_first_not_of("-.0123456789") != std::string::npos)
        return std::nullopt;
    return std::stold(*text);
}

std::vector<Row> randomRows(std::size_t count) {
    std::mt19937 random(11);
    const std::vector<std::string> cities{"Bonn", "K\u00F6ln", "Ulm", "ulm"};
    std::vector<Row> rows;
    for (std::size_t i = 0; i < count; ++i) {
        Row row;
        row.id = static_cast<int>(i) + 1;
        const auto kind = random() % 20;
        if (kind == 0)
            row.amount = std::nullopt;
        else if (kind == 1)
            row.amount = "none";
        else
            row.amount = fmt::format("{}.{}", static_cast<int>(random() % 2000) - 100, random() % 10);
        row.city = cities[random() % cities.size()];
        rows.push_back(row);
    }
    return rows;
}

TEST_F(RuleRuns, FiguresAreThoseOfAPlainComputation) {
    // More rows than a block of the reader, and than a slice of the evaluation, have.
    const std::vector<Row> rows = randomRows(70'000);
    std::string csv = "id,amount,city\n";
    for (const Row& row : rows)
        csv += fmt::format("{},{},{}\n", row.id, row.amount.value_or(""), row.city);
    write("orders.csv", csv);
    const auto outcome = run(R"yaml(job: J
row log limit: 7
tables:
  - file: orders.csv
    key: [id]
    custom metrics:
      - {name: Big, count: "tonumber(`amount`) > 1000"}
      - {name: Total, output: euros, sum: "`amount`"}
      - {name: Mean amount, average: "tonumber(`amount`) * 2"}
      - {name: Lowest, min: "tonumber(`amount`)"}
      - {name: Last city, max: "lower(`city`)"}
      - {name: Filled, metric: "round(100 - `amount:Percent Null`, 6) + 0 * `Big`"}
      - {name: Share, metric: "`Big` / `Records`"}
    rules:
      - {name: Amount known, condition: "not isnull(`amount`)"}
      - {name: Not negative, condition: "tonumber(`amount`) >= 0", row log limit: 100000}
  - name: bonn
    based on: orders
    where: "`city` == 'Bonn'"
    custom metrics: [{name: Big, count: "tonumber(`amount`) > 1000"}]
    rules: [{name: Not negative, condition: "tonumber(`amount`) >= 0"}]
)yaml");
    ASSERT_TRUE(outcome.ok()) << outcome.error().text;

    std::int64_t big = 0, bonn = 0, bonnBig = 0, unknown = 0, negative = 0, bonnNegative = 0, numbers = 0;
    long double sum = 0;
    std::optional<long double> lowest;
    std::string firstUnknown, lastNegative;
    for (const Row& row : rows) {
        const auto amount = numberOf(row.amount);
        const bool isBonn = row.city == "Bonn";
        bonn += isBonn;
        big += amount > 1000.0L;
        bonnBig += isBonn && amount > 1000.0L;
        if (!row.amount && ++unknown <= 7)
            firstUnknown += fmt::format("{}|[\"{}\",null]\n", row.id, row.id);
        const bool isMet = amount && *amount >= 0;
        negative += !isMet;
        bonnNegative += isBonn && !isMet;
        if (!isMet)
            lastNegative = fmt::format("{}\n", row.id);
        if (amount) {
            ++numbers;
            sum += *amount;
            lowest = lowest ? std::min(*lowest, *amount) : *amount;
        }
    }
    const auto metric = [&](const char* name) {
        return number(
            fmt::format("SELECT value FROM v_custom_metrics WHERE table_name = 'orders' AND metric = '{}'", name));
    };
    EXPECT_EQ(metric("Big"), static_cast<double>(big));
    EXPECT_NEAR(metric("Total"), static_cast<double>(sum), 1e-6);
    EXPECT_NEAR(metric("Mean amount"), static_cast<double>(2 * sum / static_cast<long double>(numbers)), 1e-9);
    EXPECT_DOUBLE_EQ(metric("Lowest"), static_cast<double>(*lowest));
    EXPECT_NEAR(metric("Filled"), 100.0 - 100.0 * static_cast<double>(unknown) / 70'000, 1e-6);
    EXPECT_NEAR(metric("Share"), static_cast<double>(big) / 70'000, 1e-12);
    EXPECT_EQ(stored("SELECT output_name, value, used_rows FROM v_custom_metrics WHERE metric = 'Last city'"),
              "Last city|ulm|70000\n");
    EXPECT_EQ(stored("SELECT used_rows, error_rows, figure, output_name FROM v_custom_metrics WHERE metric = 'Total'"),
              fmt::format("{}|0|sum|euros\n", numbers));
    EXPECT_EQ(
        stored("SELECT table_name, rule, checked_rows, failed_rows, logged_rows FROM v_business_rules"),
        fmt::format("orders|Amount known|70000|{}|7\norders|Not negative|70000|{}|{}\nbonn|Not negative|{}|{}|7\n",
                    unknown, negative, negative, bonn, bonnNegative));
    EXPECT_EQ(stored("SELECT record, row_values FROM v_rule_rows WHERE rule = 'Amount known'"), firstUnknown);
    EXPECT_EQ(
        stored("SELECT max(record) FROM v_rule_rows WHERE rule = 'Not negative' AND column_names LIKE '[\"id\"%'"),
        lastNegative);
    EXPECT_EQ(stored("SELECT total_records, processed_records, filter, kind, object_name, source_table FROM v_tables "
                     "WHERE kind = 'D'"),
              fmt::format("70000|{}|`city` == 'Bonn'|D|bonn|orders\n", bonn));
    EXPECT_EQ(stored("SELECT value FROM v_custom_metrics WHERE table_name = 'bonn'"), fmt::format("{}\n", bonnBig));
    EXPECT_EQ(stored("SELECT field_name, count, unique_count FROM v_fields WHERE table_name = 'bonn' AND field_name <> "
                     "'amount'"),
              fmt::format("id|{}|{}\ncity|{}|1\n", bonn, bonn, bonn));
    EXPECT_EQ(outcome->tables.size(), 2U);
    EXPECT_EQ(outcome->tables[1].rows, bonn);
}

TEST_F(RuleRuns, RowsThatCannotBeEvaluatedAreCountedAndLogged) {
    write("t.csv", "a,b\n1,x\n9223372036854775807,y\n3,y\n");
    const auto outcome = run(R"yaml(job: J
tables:
  - file: t.csv
    custom metrics:
      - {name: Sum, sum: "tointeger(`a`) + 1"}
      - {name: Count, count: "tointeger(`a`) + 1 > 0"}
      - {name: Nothing, average: "tonumber(`b`)"}
      - {name: Late, metric: "9223372036854775807 + `a:Count`"}
    rules:
      - {name: Rule, condition: "tointeger(`a`) + 1 > 0"}
  - {name: f, based on: t, where: "tointeger(`a`) + 1 > 0", rules: [{name: Never, condition: "`b` == null"}]}
)yaml");
    ASSERT_TRUE(outcome.ok()) << outcome.error().text;
    EXPECT_EQ(stored("SELECT metric, value, used_rows, error_rows FROM v_custom_metrics"),
              "Sum|6|2|1\nCount|2|2|1\nNothing|NULL|0|0\nLate|NULL|NULL|0\n");
    EXPECT_EQ(stored("SELECT rule, checked_rows, failed_rows, error_rows, logged_rows FROM v_business_rules"),
              "Rule|3|1|1|1\nNever|2|2|0|2\n")
        << "a row that fails violates the rule, and so does one for which the condition is null";
    EXPECT_EQ(stored("SELECT record FROM v_rule_rows WHERE rule = 'Never'"), "1\n3\n") << "rows of the source";
    const std::string log = stored("SELECT level, text FROM v_log");
    for (const char* what : {"The custom metric \"Sum\"", "The custom metric \"Count\"", "The rule \"Rule\"",
                             "The condition of the table"})
        EXPECT_THAT(log, ::testing::HasSubstr(fmt::format("1|{}: row 2 could not be evaluated: ", what)));
    EXPECT_THAT(log, ::testing::HasSubstr("1|The custom metric \"Late\" could not be evaluated: "));
}

TEST_F(RuleRuns, ExpressionsThatDoNotFitAreNamedWithTheirPlaceBeforeAnythingIsWritten) {
    write("t.csv", "amount,city\n1,x\n");
    const auto problem = [&](const std::string& lines) {
        const auto outcome = run("job: J\ntables:\n  - file: t.csv\n" + lines);
        if (outcome)
            return std::string("none");
        const std::string& text = outcome.error().text;
        return text.starts_with(m_job + ":") ? text.substr(m_job.size() + 1) : text;
    };
    EXPECT_EQ(problem("    rules: [{name: R, condition: '`amuont` > 1'}]\n"),
              "4:34: the rule \"R\": line 1, column 1: there is no field `amuont` (did you mean \"amount\"?)");
    EXPECT_EQ(problem("    rules: [{name: R, condition: '`amount`'}]\n"),
              "4:34: the rule \"R\": line 1, column 1: a condition is needed here, but this is of type text");
    EXPECT_EQ(problem("    custom metrics:\n      - {name: M, sum: '`city` == 1'}\n"),
              "5:24: the custom metric \"M\": a number is needed here, but this is of type boolean; "
              "\"count\" gives the number of rows for which it is true");
    EXPECT_EQ(problem("    custom metrics:\n      - {name: M, metric: '`amount:Null count` + `Later`'}\n"
                      "      - {name: Later, count: 'true'}\n"),
              "5:27: the custom metric \"M\": line 1, column 23: there is no field `Later`");
    EXPECT_EQ(problem("  - {name: f, based on: t, where: '`town` == 1'}\n"),
              "4:35: the condition of the table \"f\": line 1, column 1: there is no field `town`");
    EXPECT_EQ(problem("    key: [ctiy]\n"),
              "4:11: The key of the table \"t\": there is no field \"ctiy\" (did you mean \"city\"?).");
    EXPECT_FALSE(std::filesystem::exists(m_repository));
}

TEST_F(RuleRuns, NowIsTheStartOfTheRunInEveryExpression) {
    class ClockThatRuns final : public Clock {
      public:
        [[nodiscard]] UtcTime now() const override {
            return UtcTime(std::chrono::milliseconds(1'700'000'000'000 + std::int64_t{1000} * m_calls++));
        }

      private:
        mutable int m_calls = 0;
    };
    const ClockThatRuns clock;
    RunOptions options;
    options.clock = &clock;
    write("t.csv", "day\n2023-11-14\n2023-11-15\n2023-11-14 22:13:20\n");
    ASSERT_TRUE(run(R"yaml(job: J
tables:
  - file: t.csv
    custom metrics:
      - {name: Late, count: 'day > now()'}
      - {name: Today, count: "startof(day, 'day') = today()"}
    rules: [{name: Past, condition: 'todate(day) < now()'}]
)yaml",
                    options)
                    .ok());
    EXPECT_EQ(stored("SELECT metric, value FROM v_custom_metrics ORDER BY metric"), "Late|1\nToday|2\n");
    EXPECT_EQ(stored("SELECT rule, failed_rows FROM v_business_rules"), "Past|2\n");
}

TEST_F(RuleRuns, LongValuesAreCutInTheRowLog) {
    write("t.csv", "k,v\n1," + std::string(3999, 'x') + "\u00E4\u00E4\n");
    ASSERT_TRUE(run("job: J\ntables: [{file: t.csv, rules: [{name: R, condition: \"`v` == 'x'\"}]}]").ok());
    EXPECT_EQ(stored("SELECT row_values FROM v_rule_rows"), "[\"" + std::string(3999, 'x') + "\u2026\"]\n");
}

TEST_F(RuleRuns, ColumnsAreComparedAsWhatTheirCellsAre) {
    write("t.csv",
          "price,low,zip,day,mixed\n9.5,9,00501,2024-02-29T12:00:00+02:00,10\n10,9.50,10001,2024-02-29 11:00,9\n"
          "100,2,99950,\"\",abc\n,,,2023-12-31,\nabc,abd,,,\"\"\n");
    const auto outcome = run(R"yaml(
job: J
tables:
  - file: t.csv
    custom metrics:
      - {name: above, count: "`price` > 5"}
      - {name: equal, count: "`price` = 10.0"}
      - {name: listed, count: "`price` in (10, 'abc')"}
      - {name: unequal, count: "`price` != 10"}
      - {name: below, count: "`low` <= `price`"}
      - {name: summed, sum: "if `price` between 9 and 10 then return `price`"}
      - {name: max mixed, max: mixed}
      - {name: max price, max: "`price`"}
      - {name: max zip, max: "`zip`"}
      - {name: max low, max: "nullif(`low`, 'abd')"}
      - {name: min zip, min: "`zip`"}
      - {name: min day, min: "`day`"}
      - {name: max day, max: "`day`"}
      - {name: least, metric: "if `max price` > 5 then return 'text' else return 'less'"}
    rules:
      - {name: R, condition: '`price` > 5'}
  - {name: dear, based on: t, where: "`price` >= 10", custom metrics: [{name: dearest, max: "`price`"}, {name: cheapest, min: "`price`"}]}
)yaml");
    ASSERT_TRUE(outcome) << outcome.error().text;
    EXPECT_THAT(outcome->tables.front().remarks, ::testing::ElementsAre());
    EXPECT_EQ(stored("SELECT metric, value, used_rows, typeof(value) FROM v_custom_metrics ORDER BY metric"),
              "above|3|3|integer\nbelow|3|3|integer\ncheapest|10|2|integer\ndearest|100|2|integer\nequal|1|1|integer\n"
              "least|less|NULL|text\nlisted|2|2|integer\n"
              "max day|2024-02-29 11:00:00|3|text\nmax low|9.50|3|text\nmax mixed|abc|4|text\nmax price|abc|4|text\n"
              "max zip|99950|3|text\nmin day|2023-12-31|3|text\nmin zip|00501|3|text\nsummed|19.5|2|real\n"
              "unequal|3|3|integer\n");
    EXPECT_EQ(stored("SELECT failed_rows, error_rows FROM v_business_rules"), "2|0\n");
}

TEST_F(RuleRuns, AComparisonOfATextWithANumberIsRemarkedOn) {
    write("t.csv", "amount,city\n9,a\n10,b\n");
    const auto outcome = run("job: J\ntables:\n  - file: t.csv\n    rules:\n"
                             "      - {name: R, condition: 'trim(`amount`) > 5'}\n"
                             "      - {name: S, condition: '`amount` > 5'}\n"
                             "      - {name: T, condition: \"`amount` > '5'\"}\n"
                             "      - {name: U, condition: \"`amount` == '5'\"}\n");
    ASSERT_TRUE(outcome) << outcome.error().text;
    const std::string remark = "the rule \"R\": line 1, column 16: this compares texts, where '9' comes after "
                               "'10'; to compare numbers write tonumber(...)";
    EXPECT_THAT(outcome->tables.front().remarks,
                ::testing::ElementsAre(m_job + ":5:30: " + remark,
                                       m_job + ":7:30: the rule \"T\": line 1, column 10: this compares texts, where "
                                               "'9' comes after '10'; to compare numbers write 5 without quotes"));
    EXPECT_THAT(stored("SELECT * FROM v_log"), ::testing::HasSubstr(remark));
}

} // namespace
} // namespace tavix::profiling
