#include "base/Encodings.h"
#include "base/tests/TempFolder.h"
#include "profiling/JobRunner.h"
#include "repository/FileOffsetIndex.h"
#include "repository/Schema.h"
#include "source/TextFileSearch.h"

#include <gtest/gtest.h>

#include <fstream>
#include <random>
#include <string>
#include <vector>

namespace tavix::profiling {
namespace {

RunOptions withOffsetIndex(unsigned threads, std::size_t memory = 0) {
    RunOptions options;
    options.threads = threads;
    options.memory = memory;
    options.offsetIndexFrom = 1;
    return options;
}

/// Rows with unique, rare, frequent and null values; some are quoted and some contain line breaks.
std::string rowsOf(unsigned seed, bool isOneColumn) {
    std::mt19937 random(seed);
    std::string text = isOneColumn ? "id\n" : "id,rare,frequent,note\n";
    for (int row = 0; text.size() < (std::size_t{3} << 20); ++row) {
        text += row % 7 == 0 ? "\"row " + std::to_string(row) + "\"" : "row " + std::to_string(row);
        if (!isOneColumn) {
            text += random() % 5000 == 0 ? ",needle" + std::to_string(random() % 5) : ",";
            text += random() % 2 == 0 ? ",A" : ",B";
            text += random() % 50 == 0 ? ",\"two\nlines, here\"" : "," + std::string(random() % 40, 'x');
        }
        text += random() % 300 == 0 ? "\n\n" : "\n";
    }
    return text;
}

std::vector<std::string> rowsWith(const std::string& path, std::size_t column, const std::string& value,
                                  const std::vector<source::FileRange>* ranges, std::int64_t& searched) {
    auto search = source::TextFileSearch::open(path, {});
    EXPECT_TRUE(search.ok());
    (*search)->find(column, value);
    if (ranges)
        (*search)->restrictTo(*ranges);
    std::vector<std::string> rows;
    source::RowBlock block;
    for (;;) {
        const auto more = (*search)->read(block);
        EXPECT_TRUE(more.ok());
        if (!more || !*more)
            break;
        for (std::size_t r = 0; r < block.rows; ++r) {
            std::string& row = rows.emplace_back();
            for (const auto& cells : block.columns)
                row += std::string(cells[r].data, cells[r].size) + '|';
        }
    }
    searched = (*search)->position();
    return rows;
}

class ValueOffsetIndexTest : public ::testing::Test {
  protected:
    void run(const RunOptions& options, bool hasFiltered, job::TableDescription table = {}) {
        job::JobDescription job;
        job.name = "j";
        table.name = "t";
        table.path = m_path;
        job.tables.push_back(table);
        if (hasFiltered) {
            job::TableDescription filtered;
            filtered.name = "f";
            filtered.basedOn = "t";
            filtered.where.text = "`frequent` == 'A'";
            job.tables.push_back(filtered);
        }
        const auto outcome = runJob(job, m_repository, options);
        ASSERT_TRUE(outcome.ok()) << outcome.error().text;
    }

    std::optional<repository::FoundRanges> find(int table, int field, const std::string& value) {
        auto connection = repository::openRepository(m_repository, sql::OpenMode::Read);
        EXPECT_TRUE(connection.ok());
        auto run = (*connection)->queryInteger("SELECT MAX(id) FROM run");
        auto places = repository::findRanges(**connection, {static_cast<int>(*run), table, field}, value);
        EXPECT_TRUE(places.ok()) << places.error().text;
        return places ? *places : std::nullopt;
    }

    /// Checks that the indexed ranges give the same rows as the whole file. Returns the share of the file that they
    /// spare, in percent.
    int spared(int table, int field, std::size_t column, const std::string& value) {
        const auto places = find(table, field, value);
        EXPECT_TRUE(places) << value;
        if (!places)
            return 0;
        std::int64_t all = 0;
        std::int64_t some = 0;
        EXPECT_EQ(rowsWith(m_path, column, value, &places->ranges, some), rowsWith(m_path, column, value, nullptr, all))
            << value;
        return static_cast<int>(100 - some * 100 / all);
    }

    testing::TempFolder m_folder;
    std::string m_path = m_folder.file("t.csv");
    std::string m_repository = m_folder.file("r.tavix");
};

TEST_F(ValueOffsetIndexTest, LeadToEveryRowWithAValue) {
    std::ofstream(m_path, std::ios::binary) << rowsOf(1, false);
    for (const unsigned threads : {1U, 2U, 5U}) {
        run(withOffsetIndex(threads), false);
        for (int i = 0; i < 5; ++i)
            EXPECT_GT(spared(1, 2, 1, "needle" + std::to_string(i)), 70);
        for (int row = 0; row < 60'000; row += 1999)
            EXPECT_GT(spared(1, 1, 0, "row " + std::to_string(row)), 80);
        EXPECT_FALSE(find(1, 3, "A")) << "it occurs everywhere";
        EXPECT_FALSE(find(1, 4, "two\nlines, here"));
        EXPECT_GT(spared(1, 3, 2, "C"), 70) << "it occurs nowhere";
    }
}

TEST_F(ValueOffsetIndexTest, AColumnAloneIsSharedByThreads) {
    std::ofstream(m_path, std::ios::binary) << rowsOf(2, true);
    for (const unsigned threads : {1U, 3U}) {
        run(withOffsetIndex(threads), false);
        for (int row = 0; row < 200'000; row += 3001)
            EXPECT_GT(spared(1, 1, 0, "row " + std::to_string(row)), 80);
    }
}

TEST_F(ValueOffsetIndexTest, OfAFilteredTableAreThoseOfItsRows) {
    std::ofstream(m_path, std::ios::binary)
        << "id,frequent\n"
        << [] {
               std::string rows;
               for (int row = 0; row < 200'000; ++row)
                   rows += "row " + std::to_string(row) + (row % 2 == 0 ? ",A\n" : ",B\n");
               return rows;
           }();
    run(withOffsetIndex(2), true);
    int inFiltered = 0;
    for (int row = 0; row < 200'000; row += 997) {
        const auto base = find(1, 1, "row " + std::to_string(row));
        const auto filtered = find(2, 3, "row " + std::to_string(row));
        ASSERT_TRUE(base && filtered);
        if (row % 2 == 0) {
            EXPECT_GT(spared(2, 3, 0, "row " + std::to_string(row)), 80);
        } else if (filtered->ranges.size() < base->ranges.size()) {
            ++inFiltered;
        }
    }
    EXPECT_GT(inFiltered, 50) << "the rows that did not pass are not in the index";
}

TEST_F(ValueOffsetIndexTest, AreGivenUpBeforeTheMemoryIs) {
    std::ofstream(m_path, std::ios::binary) << rowsOf(3, true);
    run(withOffsetIndex(2, std::size_t{4} << 20), false);
    EXPECT_FALSE(find(1, 1, "row 5")) << "a sixteenth of the memory has no room for them";
    run(withOffsetIndex(2, std::size_t{64} << 20), false);
    EXPECT_TRUE(find(1, 1, "row 5"));
}

// A value that was spilled may occur again and is counted anew.
TEST_F(ValueOffsetIndexTest, OutliveTheValues) {
    std::ofstream(m_path, std::ios::binary) << rowsOf(4, false);
    run(withOffsetIndex(1, std::size_t{6} << 20), false);
    for (int i = 0; i < 5; ++i)
        EXPECT_GT(spared(1, 2, 1, "needle" + std::to_string(i)), 70);
    EXPECT_FALSE(find(1, 3, "A"));
}

TEST_F(ValueOffsetIndexTest, AreNotTakenForAFileThatIsTooShortForThem) {
    std::ofstream(m_path, std::ios::binary) << rowsOf(7, true);
    run(withOffsetIndex(1), false);
    ASSERT_TRUE(find(1, 1, "row 5"));
    auto damaged = repository::openRepository(m_repository, sql::OpenMode::Write);
    ASSERT_TRUE(damaged.ok() && (*damaged)->execute("UPDATE file_place SET file_size = file_size - 1"));
    EXPECT_FALSE(find(1, 1, "row 5"));
}

TEST_F(ValueOffsetIndexTest, AreNotKeptOfWhatCannotBeSearchedByThem) {
    std::ofstream(m_path, std::ios::binary) << rowsOf(5, true);
    run(withOffsetIndex(1), false);
    EXPECT_TRUE(find(1, 1, "row 5"));
    run({}, false);
    EXPECT_FALSE(find(1, 1, "row 5")) << "a small file";

    job::TableDescription table;
    table.sample = {source::Sample::Kind::First, 1000, 0};
    run(withOffsetIndex(2), false, table);
    EXPECT_FALSE(find(1, 1, "row 5")) << "a sample";

    table = {};
    table.encoding = findEncoding("ISO-8859-1");
    run(withOffsetIndex(2), false, table);
    EXPECT_FALSE(find(1, 1, "row 5")) << "another encoding";

    table = {};
    std::ofstream(m_folder.file("u.csv"), std::ios::binary) << rowsOf(6, true);
    table.files = {m_path, m_folder.file("u.csv")};
    run(withOffsetIndex(2), false, table);
    EXPECT_FALSE(find(1, 1, "row 5")) << "several files";
}

} // namespace
} // namespace tavix::profiling
