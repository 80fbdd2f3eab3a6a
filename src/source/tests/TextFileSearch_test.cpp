#include "base/Encodings.h"
#include "base/tests/TempFolder.h"
#include "source/FileSetReader.h"
#include "source/TextFileSearch.h"
#include "source/Utf8.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace tavix::source {
namespace {

using testing::TempFolder;

struct Row {
    std::vector<std::pair<bool, std::string>> cells; ///< null or not, text

    bool operator==(const Row&) const = default;
};

void PrintTo(const Row& row, std::ostream* out) {
    for (const auto& [isNull, text] : row.cells)
        *out << (isNull ? "~" : text) << '|';
}

std::vector<Row> rowsOf(RowReader& reader) {
    std::vector<Row> rows;
    RowBlock block;
    for (;;) {
        const auto more = reader.read(block);
        EXPECT_TRUE(more.ok()) << more.error().text;
        if (!more || !*more)
            return rows;
        for (std::size_t r = 0; r < block.rows; ++r) {
            Row row;
            for (const auto& column : block.columns)
                row.cells.emplace_back(column[r].isNull,
                                       column[r].isNull ? std::string() : std::string(column[r].data, column[r].size));
            rows.push_back(std::move(row));
        }
    }
}

std::vector<Row> read(const std::string& path, const TextFileOptions& options) {
    auto reader = TextFileReader::open(path, options);
    return reader ? rowsOf(**reader) : std::vector<Row>();
}

std::vector<Row> found(const std::string& path, const TextFileOptions& options, std::size_t column,
                       const std::string& value) {
    auto search = TextFileSearch::open(path, options);
    EXPECT_TRUE(search.ok()) << search.error().text;
    if (!search)
        return {};
    (*search)->find(column, value);
    return rowsOf(**search);
}

/// Looks only between those places of the reader that have such a row between them.
std::vector<Row> foundAtPlaces(const std::string& path, TextFileOptions options, std::size_t column,
                               const std::string& value) {
    options.offsetEvery = 1;
    options.pieceSize = 64;
    auto reader = TextFileReader::open(path, options);
    auto search = TextFileSearch::open(path, options);
    EXPECT_TRUE(reader.ok() && search.ok());
    std::vector<FileRange> ranges;
    RowBlock block;
    while ((*reader)->read(block).value()) {
        EXPECT_EQ(block.offsets.front().row, 0U);
        EXPECT_EQ(block.offsets.back().row, block.rows);
        for (std::size_t i = 1; i < block.offsets.size(); ++i)
            for (std::size_t r = block.offsets[i - 1].row; r < block.offsets[i].row; ++r) {
                const Cell& cell = block.columns[column][r];
                const FileRange range{block.offsets[i - 1].offset, block.offsets[i].offset};
                if (std::string_view(cell.data, cell.size) == value && (ranges.empty() || ranges.back() != range))
                    ranges.push_back(range);
            }
    }
    (*search)->find(column, value);
    (*search)->restrictTo(ranges);
    return rowsOf(**search);
}

std::vector<Row> chosen(const std::vector<Row>& rows, std::size_t column, const std::string& value) {
    std::vector<Row> wanted;
    for (const Row& row : rows)
        if (!row.cells[column].first && row.cells[column].second == value)
            wanted.push_back(row);
    return wanted;
}

class Files {
  public:
    explicit Files(unsigned seed) : m_random(seed) {}

    std::size_t below(std::size_t limit) { return m_random() % limit; }

    /// Pieces in any order: most files are damaged in several ways.
    std::string nasty(char delimiter) {
        static const std::vector<std::string> kPieces{"\"",       "\"",
                                                      "\"\"",     "\n",
                                                      "\n",       "\r\n",
                                                      "\r",       "ab",
                                                      "ab",       "a",
                                                      "b",        "x",
                                                      " ",        "\xFF",
                                                      "\xC3",     "\xA4",
                                                      "\xC3\xA4", "\xEF\xBF\xBD",
                                                      "\"ab\"",   "\"a,b\"",
                                                      "12",       std::string(1, '\0')};
        std::string text = below(8) == 0 ? "\xEF\xBB\xBF" : "";
        for (std::size_t left = below(200); left > 0; --left)
            text += below(4) == 0 ? std::string(1, delimiter) : kPieces[below(kPieces.size())];
        return text;
    }

    /// Rows that are mostly as they should be, cells quoted here and there.
    std::string regular(char delimiter) {
        static const std::vector<std::string> kCells{"ab",
                                                     "a",
                                                     "",
                                                     "\"ab\"",
                                                     "\"a\nb\"",
                                                     "\"a,b\"",
                                                     "\"\"",
                                                     "\"a\"\"b\"",
                                                     "abab",
                                                     "a\"b",
                                                     "\"ab\"c",
                                                     "\xFF"
                                                     "ab",
                                                     "12345678"};
        std::string text = "h1" + std::string(1, delimiter) + "h2" + std::string(1, delimiter) + "h3\n";
        for (std::size_t rows = below(60); rows > 0; --rows) {
            const std::size_t cells = below(10) == 0 ? 1 + below(5) : 3;
            for (std::size_t c = 0; c < cells; ++c)
                text += (c > 0 ? std::string(1, delimiter) : "") + kCells[below(kCells.size())];
            text += below(12) == 0 ? "\r\n" : "\n";
        }
        return text;
    }

  private:
    std::mt19937 m_random;
};

// What every row of the file says, against an ordinary reading of the whole file.
TEST(TextFileSearch, FindsTheRowsThatAFullReadFinds) {
    const TempFolder folder;
    const std::string path = folder.file("f.csv");
    std::size_t compared = 0;
    std::size_t hits = 0;
    for (unsigned seed = 0; seed < 1500; ++seed) {
        Files files(seed);
        const char delimiter = ",;\t"[files.below(3)];
        std::ofstream(path, std::ios::binary)
            << (files.below(2) == 0 ? files.nasty(delimiter) : files.regular(delimiter));
        const TextFileOptions options{files.below(12) == 0 ? std::optional('\0') : std::optional(delimiter),
                                      files.below(3) != 0, false, &encodingUtf8(), "\"\"\"'"[files.below(5)]};
        auto opened = TextFileReader::open(path, options);
        if (!opened)
            continue;
        const std::vector<Row> rows = rowsOf(**opened);
        const std::size_t column = files.below((*opened)->columnNames().size());
        std::set<std::string> values{"ab", "b", "none", "a\nb", "\xFF"};
        for (const Row& row : rows)
            if (!row.cells[column].first)
                values.insert(row.cells[column].second);
        for (const std::string& value : values) {
            if (!TextFileSearch::canFind(value, options.quote))
                continue;
            const std::vector<Row> expected = chosen(rows, column, value);
            ASSERT_EQ(found(path, options, column, value), expected)
                << "seed " << seed << ", column " << column << ", value " << ::testing::PrintToString(value);
            if (validUtf8Prefix(value) == value.size()) {
                ASSERT_EQ(foundAtPlaces(path, options, column, value), expected)
                    << "seed " << seed << ", column " << column << ", value " << ::testing::PrintToString(value);
            }
            ++compared;
            hits += expected.size();
        }
    }
    EXPECT_GT(compared, 5000U);
    EXPECT_GT(hits, 5000U);
}

// Files of many pieces: rows, quotes and the value itself lie across their borders at every offset.
TEST(TextFileSearch, RowsMayLieAcrossTheBordersOfPieces) {
    const TempFolder folder;
    const std::string path = folder.file("f.csv");
    for (unsigned seed = 0; seed < 24; ++seed) {
        Files files(seed);
        std::ofstream file(path, std::ios::binary);
        file << "a,b,c\n";
        const std::size_t longCell = files.below(3) == 0 ? 700'000 : 70;
        for (std::size_t size = 0; size < 900'000;) {
            std::string row = std::to_string(size) + ",";
            const std::string filler(files.below(longCell), files.below(9) == 0 ? '\n' : 'z');
            row += "\"" + filler + "\",";
            row += files.below(50) == 0 ? (files.below(2) == 0 ? "needle" : "\"needle\"") : "hay";
            row += files.below(40) == 0 ? "\"" : "";
            row += files.below(2) == 0 ? "\r\n" : "\n";
            file << row;
            size += row.size();
        }
        file.close();
        const std::vector<Row> rows = read(path, {});
        ASSERT_EQ(found(path, {}, 2, "needle"), chosen(rows, 2, "needle")) << "seed " << seed;
        ASSERT_EQ(found(path, {}, 1, std::string(69, 'z')), chosen(rows, 1, std::string(69, 'z'))) << "seed " << seed;
    }
}

/// ASCII and Latin text as another system may have written it: as it is, marked, or in UTF-16.
std::string written(const std::string& text, std::size_t way) {
    if (way == 0)
        return text;
    if (way == 1)
        return "\xEF\xBB\xBF" + text;
    std::string wide = "\xFF\xFE";
    for (const char c : text)
        (wide += c) += '\0';
    return wide;
}

// Each file has its own delimiter and encoding; some are searched and some read row by row.
TEST(TextFileSearch, SeveralFilesGiveTheRowsThatAFullReadGives) {
    const TempFolder folder;
    std::size_t compared = 0;
    std::size_t hits = 0;
    for (unsigned seed = 0; seed < 400; ++seed) {
        Files files(seed);
        std::vector<std::string> paths;
        bool areSearched = true;
        for (std::size_t left = 2 + files.below(3); left > 0; --left) {
            const std::size_t way = files.below(8) / 3;
            std::string text = files.regular(",;\t|"[files.below(4)]);
            if (files.below(4) != 0)
                std::replace(text.begin(), text.end(), '\xFF', 'y');
            areSearched = areSearched && way < 2 && text.find('\xFF') == std::string::npos;
            paths.push_back(folder.file("f" + std::to_string(left)));
            std::ofstream(paths.back(), std::ios::binary) << written(text, way);
        }
        TextFileOptions options;
        options.quote = "\"\"'"[files.below(3)];
        auto opened = FileSetReader::open(paths, options);
        ASSERT_TRUE(opened.ok()) << opened.error().text;
        if (!(*opened)->checkColumns())
            continue; // of a few rows the delimiter is not told
        const std::vector<Row> rows = rowsOf(**opened);
        for (const std::string value : {"ab", "a", "12345678", "a,b", "a\nb",
                                        "\xC3\xBF"
                                        "ab",
                                        "none"}) {
            const std::size_t column = files.below(3);
            auto narrowed = FileSetReader::open(paths, options);
            ASSERT_TRUE((*narrowed)->checkColumns() && (*narrowed)->narrowTo(column, value));
            const std::vector<Row> left = rowsOf(**narrowed);
            const std::vector<Row> expected = chosen(rows, column, value);
            ASSERT_EQ(chosen(left, column, value), expected) << "seed " << seed << ", value " << value;
            ASSERT_EQ((*narrowed)->position(), (*narrowed)->total()) << "seed " << seed << ", value " << value;
            if (areSearched) {
                ASSERT_EQ(left, expected) << "seed " << seed << ", value " << value;
            }
            compared += areSearched ? 1 : 0;
            hits += expected.size();
        }
    }
    EXPECT_GT(compared, 100U);
    EXPECT_GT(hits, 5000U);
}

TEST(TextFileSearch, LooksOnlyWhereItIsTold) {
    const TempFolder folder;
    const std::string path = folder.file("f.csv");
    std::ofstream(path, std::ios::binary) << "a,b\nx,1\nx,2\ny,3\nx,4\n";
    auto search = TextFileSearch::open(path, {});
    ASSERT_TRUE(search.ok());
    (*search)->find(0, "x");
    EXPECT_EQ((*search)->firstRow(), 4);
    (*search)->restrictTo({{4, 8}, {8, 8}, {12, 20}});
    EXPECT_EQ(rowsOf(**search), (std::vector<Row>{{{{false, "x"}, {false, "1"}}}, {{{false, "x"}, {false, "4"}}}}));
    EXPECT_EQ((*search)->position(), (*search)->total());
}

TEST(TextFileSearch, SaysWhatIsWrongWithTheFile) {
    const TempFolder folder;
    const std::string path = folder.file("f.csv");
    const auto error = [&](const std::string& file) {
        const auto search = TextFileSearch::open(file, {});
        return search ? std::string("none") : search.error().text;
    };
    EXPECT_EQ(error(path), "\"" + path + "\" cannot be opened: No such file or directory");
    EXPECT_EQ(error(folder.path().string()), "\"" + folder.path().string() + "\" is a folder, not a text file");
    EXPECT_EQ(error("/dev/null"), "\"/dev/null\" is not a file that can be read again");
    std::ofstream(path, std::ios::binary) << "a,b\n" << std::string(3'000'000, '\n') << "x,1\n";
    auto search = TextFileSearch::open(path, {});
    ASSERT_TRUE(search.ok());
    (*search)->find(0, "x");
    std::filesystem::resize_file(path, 2'000'000);
    RowBlock block;
    const auto more = (*search)->read(block);
    ASSERT_FALSE(more.ok());
    EXPECT_EQ(more.error().text, "\"" + path + "\" changed its size while it was read");
    const auto reader = TextFileReader::open(path, {});
    ASSERT_TRUE(reader.ok());
    std::filesystem::last_write_time(path, std::filesystem::file_time_type::clock::now() + std::chrono::hours(1));
    const auto other = TextFileSearch::open(**reader);
    ASSERT_FALSE(other.ok());
    EXPECT_EQ(other.error().text, "\"" + path + "\" was changed while it was read");
}

} // namespace
} // namespace tavix::source
