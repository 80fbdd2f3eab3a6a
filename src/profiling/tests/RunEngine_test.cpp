#include "base/Characters.h"
#include "base/DateTicks.h"
#include "base/NumberText.h"
#include "base/tests/TempFolder.h"
#include "forms/Reading.h"
#include "profiling/RunEngine.h"
#include "profiling/tests/DumpFigures.h"
#include "profiling/tests/RandomTable.h"
#include "profiling/tests/SlowFigures.h"

#include <gtest/gtest.h>

#include <clocale>
#include <functional>
#include <locale>
#include <string>
#include <vector>

namespace tavix::profiling {
namespace {

using nlohmann::json;
using testing::TableRows;

class CommaPoint final : public std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

class EngineOfRandomTables : public ::testing::Test {
  protected:
    /// The figures of all columns as one text, to the last bit.
    json figures(const TableRows& table, unsigned threads, std::size_t memory, std::size_t rowsPerBlock) {
        std::vector<std::string> names;
        for (std::size_t c = 0; c < table.size(); ++c)
            names.push_back("f" + std::to_string(c));
        const job::TableDescription description;
        RunEngine engine({threads, memory, m_folder.path().string()}, {});
        TablePasses passes;
        passes.push_back(std::make_unique<TablePass>(description, names, TablePrograms{}));
        testing::TableReader reader(table, names, rowsPerBlock);
        std::size_t rows = 0;
        const Status counted = engine.count(reader, passes, [&](std::size_t taken) { rows += taken; });
        EXPECT_TRUE(counted.ok()) << counted.error().text;
        EXPECT_EQ(rows, table.front().size());
        auto fields = engine.figures(*passes.front());
        if (!fields) {
            ADD_FAILURE() << fields.error().text;
            return {};
        }
        auto list = json::array();
        for (const FieldProfile& field : *fields)
            list.push_back(json::parse(testing::dumpField(field)));
        EXPECT_TRUE(std::filesystem::is_empty(m_folder.path())) << "a temporary file has a name";
        return list;
    }

    tavix::testing::TempFolder m_folder;
};

/// The reading of a text field that has figures over the values that fit it.
std::optional<forms::Reading> readingOf(const json& field) {
    const json& breakdown = field["breakdown"];
    return breakdown["has_figures"] ? forms::Reading::parse(breakdown["reading"].get<std::string>()) : std::nullopt;
}

/// That each bin has the count of the rows whose value, date or length is within its borders.
void expectBins(const std::vector<std::optional<std::string>>& rows, const json& field) {
    const json& bins = field["histogram"];
    const auto reading = readingOf(field);
    const bool isFitted = reading && reading->type != FieldType::Boolean;
    const std::string type =
        isFitted ? std::string(1, static_cast<char>(reading->type)) : field["type"].get<std::string>();
    ASSERT_EQ(bins.is_null(), type.empty() || type == "B") << field["name"];
    if (bins.is_null())
        return;
    Histogram histogram{static_cast<HistogramKind>(bins["kind"].get<std::string>()[0]),
                        static_cast<BinUnit>(bins["unit"].get<std::string>()[0]),
                        bins["first"],
                        bins["step"],
                        bins["exponent"],
                        bins["counts"]};
    ASSERT_TRUE(histogram.isSound()) << bins;
    EXPECT_EQ(histogram.kind, type == "D"   ? HistogramKind::Dates
                              : type == "S" ? HistogramKind::Lengths
                                            : HistogramKind::Numbers);
    const auto place = [&](const std::string& text) -> std::optional<long double> {
        if (type == "S")
            return static_cast<long double>(countCharacters(text));
        if (isBlank(text) || (isFitted && !reading->fits(text)))
            return std::nullopt;
        if (isFitted)
            return type == "D" ? static_cast<long double>(*reading->ticks(text))
                               : static_cast<long double>(*reading->number(text));
        return type == "D" ? static_cast<long double>(*parseDate(text)) : static_cast<long double>(*parseNumber(text));
    };
    const auto border = [&](std::size_t i) {
        return type == "D" ? static_cast<long double>(histogram.dateBorder(i)) : histogram.border(i);
    };
    std::vector<std::uint64_t> expected(histogram.counts.size());
    for (const auto& row : rows)
        if (const auto at = row ? place(*row) : std::nullopt)
            for (std::size_t i = 0; i < expected.size(); ++i)
                expected[i] += *at >= border(i) && *at < border(i + 1) ? 1 : 0;
    EXPECT_EQ(histogram.counts, expected) << field["name"] << bins;
}

/// The obvious figures of a column. Those over the values that fit are the figures of the column in which all others
/// are null; this holds for values that fit a strict type. Null for other columns, which Figures_test compares.
json obviousFigures(const std::vector<std::optional<std::string>>& rows, int ordinal, const json& found) {
    json expected = testing::slowFigures(rows, found["name"], ordinal);
    const auto reading = readingOf(found);
    if (!reading)
        return expected;
    auto fitting = rows;
    for (auto& row : fitting)
        if (row && !reading->fits(*row))
            row.reset();
    const json figures = testing::slowFigures(fitting, found["name"], ordinal);
    if (figures["type"] == "S")
        return nullptr;
    for (const char* part : {"rule", "percentiles", "outliers"})
        expected[part] = figures[part];
    for (const char* metric :
         {"minimum_value", "maximum_value", "mean", "median", "standard_deviation", "standard_error"})
        expected["metrics"][metric] = figures["metrics"][metric];
    return expected;
}

constexpr std::size_t kMuch = std::size_t{1} << 30;

TEST_F(EngineOfRandomTables, FiguresAreThoseOfAnObviousComputation) {
    std::mt19937 random(11);
    int fitted = 0;
    for (const std::size_t rows : {0, 1, 2, 3, 50, 1500}) {
        const TableRows table = testing::randomTable(random, rows);
        json found = figures(table, 1, kMuch, 400);
        for (std::size_t c = 0; c < table.size(); ++c) {
            expectBins(table[c], found[c]);
            const json expected = obviousFigures(table[c], static_cast<int>(c) + 1, found[c]);
            fitted += readingOf(found[c]) && !expected.is_null() ? 1 : 0;
            for (const char* part : {"histogram", "breakdown"})
                found[c].erase(part);
            if (!expected.is_null()) {
                EXPECT_EQ(testing::difference(expected, found[c]), "") << "column " << c << " of " << rows << " rows";
            }
        }
    }
    EXPECT_GE(fitted, 4) << "columns with figures over what fits";
}

TEST_F(EngineOfRandomTables, ThreadsMemoryBlocksAndLocaleChangeNothing) {
    std::mt19937 random(12);
    const std::locale before = std::locale::global(std::locale(std::locale::classic(), new CommaPoint));
    for (const std::size_t rows : {1, 700, 6000}) {
        const TableRows table = testing::randomTable(random, rows);
        const std::string expected = figures(table, 1, kMuch, 100'000).dump();
        // One byte spills after every block, so that lists are merged several times over.
        EXPECT_EQ(figures(table, 1, 1, rows / 300 + 1).dump(), expected);
        EXPECT_EQ(figures(table, 2, 1, 97).dump(), expected);
        EXPECT_EQ(figures(table, 2, kMuch, 1 + rows / 50).dump(), expected);
        EXPECT_EQ(figures(table, 3, std::size_t{4} << 20, 256).dump(), expected);
        EXPECT_EQ(figures(table, 4, std::size_t{1} << 20, 1000).dump(), expected);
        EXPECT_EQ(figures(table, 4, kMuch, 64).dump(), expected);
    }
    std::locale::global(before);
}

TEST_F(EngineOfRandomTables, ThreadsShareALongColumn) {
    // Null comes between the values, several parts are packed, and the last value has a block of its own.
    constexpr std::size_t kValues = 200'704;
    const auto longText = [](std::size_t i) { return std::string(300, 'x') + std::to_string(i % 12'000); };
    const auto name = [](std::size_t i) { return "key " + std::to_string(i * 2654435761U % 4294967291U); };
    const auto number = [](std::size_t i) { return std::to_string(static_cast<std::int64_t>(i) * 7919 - 500'000); };
    const auto blank = [&](std::size_t i) { return i % 1000 == 0 ? std::string(i / 1000, ' ') : number(i); };
    const auto written = [&](std::size_t i) { return i % 500 == 0 ? "none " + number(i) : "$" + number(i) + ".5"; };
    for (const auto& value :
         std::vector<std::function<std::string(std::size_t)>>{longText, name, number, blank, written}) {
        TableRows table(1);
        for (std::size_t i = 0; i < kValues; ++i)
            table[0].insert(table[0].end(), i % 5 == 0 ? 3 : 1, value(i));
        table[0].insert(table[0].begin() + 1234, 2, std::nullopt);
        const std::string expected = figures(table, 1, kMuch, 100'000).dump();
        EXPECT_EQ(figures(table, 2, kMuch, 3000).dump(), expected) << value(1);
        EXPECT_EQ(figures(table, 3, kMuch, 50'000).dump(), expected) << value(1);
    }
}

TEST_F(EngineOfRandomTables, StopsWhereverItIs) {
    std::mt19937 random(13);
    const TableRows table = testing::randomTable(random, 3000);
    const std::vector<std::string> names(table.size(), "f");
    const job::TableDescription description;
    for (const std::size_t memory : {std::size_t{1}, kMuch}) {
        bool isDone = false;
        int polls = 1;
        for (; !isDone; polls = polls * 3 / 2 + 1) {
            int left = polls;
            RunEngine engine({2, memory, m_folder.path().string()}, [&] { return --left > 0; });
            TablePasses passes;
            passes.push_back(std::make_unique<TablePass>(description, names, TablePrograms{}));
            testing::TableReader reader(table, names, 500);
            Status status = engine.count(reader, passes, [](std::size_t) {});
            if (status) {
                auto fields = engine.figures(*passes.front());
                isDone = fields.ok();
                if (!isDone)
                    status = fields.error();
            }
            if (!isDone) {
                EXPECT_EQ(status.error(), StopSignal::stopped());
            }
        }
        EXPECT_GT(polls, 8) << "nothing was stopped on the way";
    }
}

TEST_F(EngineOfRandomTables, AFullDiskIsAClearError) {
    std::mt19937 random(14);
    const TableRows table = testing::randomTable(random, 3000);
    const std::vector<std::string> names(table.size(), "f");
    const job::TableDescription description;
    RunEngine engine({2, 1, m_folder.file("none")}, {});
    TablePasses passes;
    passes.push_back(std::make_unique<TablePass>(description, names, TablePrograms{}));
    testing::TableReader reader(table, names, 500);
    const Status status = engine.count(reader, passes, [](std::size_t) {});
    ASSERT_FALSE(status.ok());
    EXPECT_NE(status.error().text.find("temporary file in \"" + m_folder.file("none")), std::string::npos)
        << status.error().text;
}

} // namespace
} // namespace tavix::profiling
