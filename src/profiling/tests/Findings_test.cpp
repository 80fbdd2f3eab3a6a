#include "base/DateTicks.h"
#include "base/tests/TempFolder.h"
#include "expression/RowEvaluator.h"
#include "findings/Catalogue.h"
#include "profiling/JobRunner.h"
#include "profiling/RunEngine.h"
#include "profiling/tests/FindingColumns.h"
#include "profiling/tests/StoredRuns.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace tavix::profiling {
namespace {

using repository::FindingFacts;
using testing::ColumnRows;
using testing::TableRows;

const std::int64_t kNow = *parseDate("2026-04-22 12:00");

/// A distribution: null and every value with its number of rows.
using Distribution = std::map<std::optional<std::string>, std::uint64_t>;

Distribution distributionOf(const ColumnRows& column) {
    Distribution distribution;
    for (const auto& cell : column)
        ++distribution[cell];
    return distribution;
}

/// The values for which the condition is true, and their rows.
findings::Hits evaluated(const std::string& condition, const Distribution& distribution) {
    const expression::Field fields[] = {{"Value", expression::Type::Text}};
    const expression::Compiled compiled = expression::compile(condition, fields, expression::Wanted::Condition, kNow);
    if (!compiled.ok()) {
        ADD_FAILURE() << condition << ": " << expression::describe(compiled.error);
        return {};
    }
    expression::RowEvaluator evaluator(*compiled.program);
    findings::Hits hits;
    for (const auto& [value, rows] : distribution) {
        const expression::Value row[] = {value ? expression::Value::ofText(*value) : expression::Value{}};
        const expression::Value result = evaluator.evaluate(row);
        EXPECT_FALSE(evaluator.hasFailed()) << condition << ": " << evaluator.failure();
        if (!result.isNull() && result.boolean)
            hits.add(rows);
    }
    return hits;
}

std::string lineOf(const FindingFacts& finding) {
    return fmt::format("{} {} {}/{} [{}] {}", finding.code, finding.likelihood, finding.values, finding.rows,
                       finding.condition, finding.detail);
}

class FindingsOfColumns : public ::testing::Test {
  protected:
    /// The findings of each column. Columns of one table have as many rows as each other.
    std::vector<std::vector<FindingFacts>> find(const TableRows& table, const std::vector<std::string>& names,
                                                unsigned threads = 1, std::size_t memory = std::size_t{256} << 20,
                                                std::size_t rowsPerBlock = 500) {
        const job::TableDescription description;
        RunEngine engine({threads, memory, m_folder.path().string(), kNow}, {});
        TablePasses passes;
        passes.push_back(std::make_unique<TablePass>(description, names, TablePrograms{}));
        testing::TableReader reader(table, names, rowsPerBlock);
        const Status counted = engine.count(reader, passes, [](std::size_t) {});
        EXPECT_TRUE(counted.ok()) << counted.error().text;
        auto fields = engine.figures(*passes.front());
        std::vector<std::vector<FindingFacts>> found;
        if (!fields) {
            ADD_FAILURE() << fields.error().text;
            return found;
        }
        for (const FieldProfile& field : *fields)
            found.push_back(field.facts.findings);
        return found;
    }
    std::vector<FindingFacts> find(const ColumnRows& column, const std::string& name) {
        return find(TableRows{column}, {name}).front();
    }

    static void expectTrue(const std::vector<FindingFacts>& findings, const ColumnRows& column) {
        const Distribution distribution = distributionOf(column);
        std::set<std::string> codes;
        for (const FindingFacts& finding : findings) {
            EXPECT_TRUE(codes.insert(finding.code).second) << finding.code << " twice";
            EXPECT_NE(findings::findEntry(finding.code), nullptr) << finding.code;
            EXPECT_LE(finding.rows, column.size());
            EXPECT_EQ(finding.values == 0, finding.rows == 0) << lineOf(finding);
            if (finding.condition.empty())
                continue;
            EXPECT_EQ(evaluated(finding.condition, distribution), (findings::Hits{finding.values, finding.rows}))
                << lineOf(finding);
        }
    }

    tavix::testing::TempFolder m_folder;
};

TEST_F(FindingsOfColumns, EachKindIsFoundInAColumnThatHasIt) {
    // Of tables and runs; see below.
    std::set<std::string> left = {"damaged-rows", "type-differs-elsewhere", "pattern-differs-elsewhere", "type-changed",
                                  "decimals-lost"};
    for (const findings::CatalogueEntry& entry : findings::catalogue()) {
        const auto column = testing::columnsWithFindings().find(std::string(entry.code));
        if (column == testing::columnsWithFindings().end()) {
            EXPECT_EQ(left.erase(std::string(entry.code)), 1U) << entry.code << " is never found";
            continue;
        }
        const auto findings = find(column->second, entry.code == "addresses-among-names" ? "last_name" : "field");
        std::string lines;
        const FindingFacts* found = nullptr;
        for (const FindingFacts& finding : findings) {
            lines += lineOf(finding) + "\n";
            if (finding.code == entry.code)
                found = &finding;
        }
        EXPECT_NE(found, nullptr) << entry.code << " is not among\n" << lines;
        expectTrue(findings, column->second);
    }
    EXPECT_THAT(left, ::testing::IsEmpty());
}

TEST_F(FindingsOfColumns, ASoundColumnHasNone) {
    for (const auto& [name, column] : testing::soundColumns())
        for (const FindingFacts& finding : find(column, name))
            ADD_FAILURE() << name << ": " << lineOf(finding);
}

/// Any mixture of the columns, so that findings meet whose bounds they are near.
ColumnRows mixture(std::mt19937& random) {
    const auto pick = [&]() -> const ColumnRows& {
        const auto& columns = random() % 4 == 0 ? testing::soundColumns() : testing::columnsWithFindings();
        return std::next(columns.begin(), static_cast<std::ptrdiff_t>(random() % columns.size()))->second;
    };
    const ColumnRows& most = pick();
    const ColumnRows& others = pick();
    const std::size_t step = 1 + random() % 80;
    ColumnRows column;
    for (std::size_t i = 0; i < 1500; ++i) {
        const ColumnRows& from = i % step == 0 ? others : most;
        column.push_back(from[random() % from.size()]);
    }
    return column;
}

TEST_F(FindingsOfColumns, TheConditionOfAFindingIsTrueForExactlyItsValues) {
    std::mt19937 random(22);
    std::set<std::string> seen;
    for (int round = 0; round < 40; ++round) {
        TableRows table;
        std::vector<std::string> names;
        for (int c = 0; c < 10; ++c) {
            table.push_back(mixture(random));
            names.push_back(c % 2 == 0 ? "name" + std::to_string(c) : "id" + std::to_string(c));
        }
        const auto found = find(table, names);
        for (std::size_t c = 0; c < table.size(); ++c) {
            expectTrue(found[c], table[c]);
            for (const FindingFacts& finding : found[c])
                seen.insert(finding.code);
        }
    }
    EXPECT_GT(seen.size(), 40U) << "the mixtures are too sound to prove anything";
}

TEST_F(FindingsOfColumns, DoNotDependOnThreadsBlocksMemoryOrTheOrderOfRows) {
    std::mt19937 random(5);
    TableRows table;
    std::vector<std::string> names;
    for (int c = 0; c < 12; ++c) {
        table.push_back(mixture(random));
        // Many long values, so that the column is spilled when the memory is small.
        for (std::size_t i = 0; i < 20'000; ++i)
            table.back().push_back(c % 3 == 0 ? fmt::format("{:040}", i * 7919 % 1'000'003) : table.back()[i % 1500]);
        names.push_back("field" + std::to_string(c));
    }
    const auto lines = [](const std::vector<std::vector<FindingFacts>>& found) {
        std::string text;
        for (const auto& field : found) {
            for (const FindingFacts& finding : field)
                text += lineOf(finding) + "\n";
            text += "--\n";
        }
        return text;
    };
    const std::string expected = lines(find(table, names));
    EXPECT_EQ(lines(find(table, names, 3, std::size_t{256} << 20, 77)), expected);
    EXPECT_EQ(lines(find(table, names, 2, std::size_t{1} << 20, 1000)), expected) << "spilled";
    std::vector<std::size_t> order(table.front().size());
    for (std::size_t i = 0; i < order.size(); ++i)
        order[i] = i;
    std::shuffle(order.begin(), order.end(), random);
    TableRows shuffled(table.size());
    for (std::size_t c = 0; c < table.size(); ++c)
        for (const std::size_t i : order)
            shuffled[c].push_back(table[c][i]);
    EXPECT_EQ(lines(find(shuffled, names)), expected);
}

class FindingsOfRuns : public tavix::testing::StoredRuns {
  protected:
    class Moment final : public Clock {
      public:
        explicit Moment(std::int64_t day) : m_day(day) {}
        [[nodiscard]] UtcTime now() const override {
            return UtcTime(std::chrono::milliseconds((kNow + m_day * kTicksPerDay) / (kTicksPerSecond / 1000)));
        }

      private:
        std::int64_t m_day;
    };
    void run(const std::vector<std::string>& files, std::int64_t day) {
        const Moment clock(day);
        const auto done = runJob(*job::describeFiles(files, "Job"), m_repository, {"", nullptr, &clock});
        ASSERT_TRUE(done.ok()) << done.error().text;
    }
    /// Of the last run.
    std::string findings(const std::string& where = "1") {
        return stored("SELECT t.name, coalesce(f.name, ''), b.code, b.row_count, b.detail FROM finding b JOIN "
                      "profiled_table t ON t.id = b.table_id LEFT JOIN field f ON f.id = b.field WHERE b.run = "
                      "(SELECT max(id) FROM run) AND " +
                      where + " ORDER BY 1, 2, 3");
    }
    static std::string table(const std::string& heading, const std::function<std::string(int)>& row, int rows = 120) {
        std::string text = heading + "\n";
        for (int i = 0; i < rows; ++i)
            text += row(i) + "\n";
        return text;
    }
};

TEST_F(FindingsOfRuns, DamagedRowsAndFieldsThatDifferBetweenTablesAreStored) {
    const auto orders = write("orders.csv", table("customer,part", [](int i) {
                                  return fmt::format("{},AB-{}", i + 1, 1000 + i) + (i == 3 ? ",too many" : "");
                              }));
    const auto customers =
        write("customers.csv", table("customer,part", [](int i) {
                  return fmt::format("C{},AB{}", testing::wordOf(static_cast<std::size_t>(i)), 1000 + i);
              }));
    run({orders, customers}, 0);
    EXPECT_EQ(findings(), "customers|customer|type-differs-elsewhere|0|text here, integer in orders\n"
                          "customers|part|pattern-differs-elsewhere|0|\"AA9{4}\" here, \"AA-9{4}\" in orders\n"
                          "orders||damaged-rows|1|\n"
                          "orders|customer|type-differs-elsewhere|0|integer here, text in customers\n"
                          "orders|part|pattern-differs-elsewhere|0|\"AA-9{4}\" here, \"AA9{4}\" in customers\n");
    EXPECT_EQ(stored("SELECT count(*) FROM run_examination"), "1\n");
}

TEST_F(FindingsOfRuns, AFieldIsComparedWithTheRunBefore) {
    const auto sales = [&](const std::string& price, const std::string& code) {
        return write("sales.csv", table("price,code,sold", [&](int i) {
                         return fmt::format("{}{},{}{},{}", 10 + i, price, code, i, testing::dayAfter(830 + i % 12));
                     }));
    };
    run({sales(".25", "")}, 0);
    EXPECT_EQ(findings("b.code LIKE '%lost' OR b.code LIKE '%changed' OR b.code LIKE 'no-%'"), "");
    run({sales("", "K")}, 10);
    EXPECT_EQ(findings("b.code LIKE '%lost' OR b.code LIKE '%changed' OR b.code LIKE 'no-%'"),
              "sales|code|type-changed|0|integer before, text now\n"
              "sales|price|decimals-lost|0|2 decimal places before\n"
              "sales|sold|no-recent-dates|0|the last one is 2026-04-21 as in the run 10 days before\n");
}

} // namespace
} // namespace tavix::profiling
