#include "base/tests/SourceFolder.h"
// `tavix compare`; the expected output is in tests/programs/compare.
#include "Program.h"
#include "base/tests/TempFolder.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <random>
#include <sstream>

namespace tavix::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

const std::filesystem::path kFolder = testing::sourceFile("tests/programs/compare");

std::string textOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

class Compare : public ::testing::Test {
  protected:
    void profile(const std::string& table, const std::string& job) {
        const auto overwrite = std::filesystem::copy_options::overwrite_existing;
        std::filesystem::copy_file(kFolder / table, m_folder.file("people.csv"), overwrite);
        std::filesystem::copy_file(kFolder / job, m_folder.file("job.yaml"), overwrite);
        const Outcome outcome = runTavix({"profile", m_folder.file("job.yaml"), "-R", m_repository});
        ASSERT_EQ(outcome.exitCode, 0) << outcome.err;
    }
    Outcome compare(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"compare", "-R", m_repository});
        return runTavix(std::move(arguments));
    }

    TempFolder m_folder;
    std::string m_repository = m_folder.file("r.tavix");
};

TEST_F(Compare, ListsWhatChangedInEveryFormat) {
    profile("before.csv", "job.yaml");
    profile("after.csv", "job-after.yaml");
    EXPECT_EQ(compare({"--all"}).out, textOf(kFolder / "expected.txt"));
    EXPECT_EQ(compare({}).out, textOf(kFolder / "expected-ranked.txt"));
    EXPECT_EQ(compare({"--format", "csv"}).out, textOf(kFolder / "expected.csv"));
    EXPECT_EQ(compare({"--format", "json", "--top", "0"}).out, textOf(kFolder / "expected.json"));
    EXPECT_EQ(compare({"--run", "2", "--run", "2"}).out, "No difference\n");
    EXPECT_EQ(compare({"--run", "2", "--run", "2", "--format", "json"}).out, "[]\n");
}

TEST_F(Compare, TakesTheLastTwoRunsOrTheOneBefore) {
    profile("before.csv", "job.yaml");
    EXPECT_THAT(compare({}).err, HasSubstr("has one run only"));
    profile("after.csv", "job.yaml");
    profile("after.csv", "job.yaml");
    EXPECT_EQ(compare({}).out, "No difference\n");
    const Outcome second = compare({"--run", "2", "--top", "0", "--all"});
    EXPECT_THAT(second.err, HasSubstr("run 1 of job \"people\" compared with run 2"));
    EXPECT_THAT(second.out, HasSubstr("Processed records"));
    // In both directions.
    EXPECT_THAT(compare({"--run", "2", "--run", "1", "--format", "csv"}).out,
                HasSubstr("people,extra,field,vanished,"));
    for (const std::vector<std::string>& wrong : std::vector<std::vector<std::string>>{{"--run", "1"},
                                                                                       {"--run", "9"},
                                                                                       {"--table", "nobody"},
                                                                                       {"--top", "-1"},
                                                                                       {"--job", "other"},
                                                                                       {"--field", "nobody"},
                                                                                       {"--at-least", "101"},
                                                                                       {"--at-least", "half"}}) {
        const Outcome outcome = compare(wrong);
        EXPECT_EQ(outcome.exitCode, 2) << wrong.front() << outcome.err;
        EXPECT_EQ(outcome.out, "");
    }
}

TEST_F(Compare, OneFieldOrOnlyLargeChangesCanBeAskedFor) {
    profile("before.csv", "job.yaml");
    profile("after.csv", "job-after.yaml");
    const std::string city = compare({"--field", "city"}).out;
    EXPECT_THAT(city, HasSubstr("people.city"));
    EXPECT_THAT(city, HasSubstr("+1 (+25.00 %); counts of 1 field follow")) << "the base of its figures";
    EXPECT_THAT(city, Not(HasSubstr("people.n")));
    EXPECT_EQ(compare({"--field", "people.city"}).out, city);
    EXPECT_THAT(compare({"--field", "people.extra", "--all"}).out, HasSubstr("field  new"));
    EXPECT_EQ(compare({"--at-least", "100%", "--table", "people", "--field", "extra"}).out,
              "3 changes, those of the largest share of rows first\n"
              "% of rows  Table or field  What       Before  After  Change\n"
              "---------  --------------  ---------  ------  -----  ------\n"
              "   100.00  people.extra    New field       -      -  -\n"
              "\nand 2 further changes; --all lists them\n");
    EXPECT_EQ(compare({"--at-least", "99.5", "--field", "n"}).out,
              "No change of 99.5 % of the rows or more\n\nand 14 further changes; --all lists them\n");
    EXPECT_THAT(compare({"--at-least", "40", "--format", "csv", "--field", "city"}).out,
                Not(HasSubstr("Unique Count")));
}

/// Five tables, each with one field in which one run changes some of the rows.
class PlantedChange : public ::testing::Test {
  protected:
    using Change = std::function<std::string(const std::string&)>;
    struct Plan {
        std::string field;
        int percent;
        Change change;
    };

    void add(const std::string& table, std::vector<std::string> lines, Plan plan) {
        m_heads[table] = lines.front();
        lines.erase(lines.begin());
        // Values that contain the delimiter are in quotes.
        std::erase_if(lines, [](const std::string& line) { return line.find('"') != std::string::npos; });
        std::shuffle(lines.begin(), lines.end(), m_random);
        m_rows[table] = std::move(lines);
        m_plans[table] = std::move(plan);
    }
    void addExample(const std::string& table, Plan plan) {
        std::istringstream text(textOf(testing::sourceFile("share/examples/" + table + ".csv")));
        std::vector<std::string> lines;
        for (std::string line; std::getline(text, line);)
            lines.push_back(line);
        add(table, std::move(lines), std::move(plan));
    }

    /// A run over the rows; the first one leaves out the last `growth` percent, the second one has the changes.
    void profile(int growth, bool isChanged) {
        std::vector<std::string> arguments = {"profile", "-R", m_folder.file("r.tavix"), "--job", "all"};
        for (const auto& [table, rows] : m_rows) {
            const Plan& plan = m_plans[table];
            const std::vector<std::string> names = cells(m_heads[table]);
            const auto column =
                static_cast<std::size_t>(std::find(names.begin(), names.end(), plan.field) - names.begin());
            ASSERT_LT(column, names.size()) << plan.field;
            const std::size_t count =
                isChanged ? rows.size() : rows.size() * 100 / static_cast<std::size_t>(100 + growth);
            std::ofstream file(m_folder.file(table + ".csv"));
            file << m_heads[table] << '\n';
            for (std::size_t row = 0; row < count; ++row) {
                std::vector<std::string> line = cells(rows[row]);
                if (isChanged && static_cast<int>(row * 7919 % 100) < plan.percent)
                    line[column] = plan.change(line[column]);
                for (std::size_t i = 0; i < line.size(); ++i)
                    file << (i > 0 ? "," : "") << line[i];
                file << '\n';
            }
            arguments.push_back(m_folder.file(table + ".csv"));
        }
        ASSERT_EQ(runTavix(arguments).exitCode, 0);
    }
    /// Field and share of the first line.
    std::string first(const std::string& table) {
        std::istringstream lines(runTavix({"compare", "-R", m_folder.file("r.tavix"), "--table", table}).out);
        std::string line;
        for (int i = 0; i < 4; ++i)
            std::getline(lines, line);
        return line;
    }
    static std::vector<std::string> cells(const std::string& line) {
        std::vector<std::string> made(1);
        for (const char c : line)
            if (c == ',')
                made.emplace_back();
            else
                made.back() += c;
        return made;
    }

    TempFolder m_folder;
    std::mt19937 m_random{11};
    std::map<std::string, std::string> m_heads;
    std::map<std::string, std::vector<std::string>> m_rows;
    std::map<std::string, Plan> m_plans;
};

TEST_F(PlantedChange, ComesFirstInFiveTablesAlsoWhenTheyGrow) {
    addExample("airports", {"state", 8, [](const std::string&) { return "ZZ"; }});
    addExample("birdstrikes", {"Wildlife Size", 6, [](const std::string&) { return ""; }});
    addExample("routes", {"destination", 5, [](const std::string& value) { return "X" + value; }});
    // Keys, times and figures without repetition surround the change.
    std::vector<std::string> orders = {"id,placed,amount,status"};
    std::vector<std::string> people = {"number,phone,born"};
    for (int i = 0; i < 4000; ++i) {
        orders.push_back(fmt::format("{},2026-01-{:02} {:02}:{:02},{}.{:02},{}", i, 1 + i % 28, m_random() % 24,
                                     m_random() % 60, m_random() % 500, m_random() % 100,
                                     m_random() % 3 == 0 ? "open" : "paid"));
        people.push_back(fmt::format("P{:06},0{}-{},{}", i, 30 + m_random() % 60, 100'000 + m_random() % 900'000,
                                     1930 + m_random() % 80));
    }
    add("orders", orders, {"amount", 9, [](const std::string& value) { return value + "00"; }});
    add("people", people, {"phone", 7, [](const std::string& value) { return "+49 " + value.substr(1); }});
    for (const int growth : {0, 3}) {
        std::filesystem::remove(m_folder.file("r.tavix"));
        profile(growth, false);
        profile(growth, true);
        for (const auto& [table, plan] : m_plans)
            EXPECT_THAT(first(table), HasSubstr(table + "." + plan.field)) << growth << " % more rows";
    }
}

} // namespace
} // namespace tavix::testing
