#include "base/tests/SourceFolder.h"
#include "base/tests/TempFolder.h"
#include "source/TextFileReader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace tavix::source {
namespace {

using testing::TempFolder;

constexpr const char* kDamageWords[] = {"short", "long", "bytes", "quote"};

/// All rows as a user would note them: names, then cells between '|', null as ~, then damage as line:kind(cells).
std::string printed(const Result<std::unique_ptr<TextFileReader>>& opened) {
    if (!opened)
        return opened.error().text;
    TextFileReader& reader = **opened;
    std::string out;
    for (const std::string& name : reader.columnNames())
        out += name + "|";
    RowBlock block;
    for (;;) {
        const auto more = reader.read(block);
        if (!more)
            return out + "\n" + more.error().text;
        if (!*more)
            break;
        for (std::size_t r = 0; r < block.rows; ++r) {
            out += "\n";
            for (const auto& column : block.columns)
                out += (column[r].isNull ? "~" : std::string(column[r].data, column[r].size)) + "|";
        }
    }
    for (const DamagedRow& row : reader.damagedRows())
        out += "\n" + std::to_string(row.line) + ":" + kDamageWords[static_cast<int>(row.damage)] + "(" +
               std::to_string(row.cells) + ")";
    return out;
}

std::string write(const std::string& path, std::string_view content) {
    std::ofstream(path, std::ios::binary) << content;
    return path;
}

struct Case {
    const char* what;
    std::string_view file;
    const char* expected;
    TextFileOptions options = {};
};

constexpr std::string_view operator""_raw(const char* text, std::size_t size) {
    return {text, size};
}

TextFileOptions stated(const char* encoding) {
    return {std::nullopt, true, false, findEncoding(encoding)};
}

TextFileOptions quoted(char quote) {
    return {',', true, false, nullptr, quote};
}

TEST(TextFileReader, ReadsWhatFilesInTheWildHold) {
    const std::vector<Case> cases = {
        {"plain, last line without an end", "a,b\n1,2\n3,4", "a|b|\n1|2|\n3|4|"},
        {"line ends of all three kinds", "a,b\r\n1,2\r3,4\n5,6\r\n", "a|b|\n1|2|\n3|4|\n5|6|"},
        {"byte order mark before a quote", "\xEF\xBB\xBF\"a\",b\n1,2\n", "a|b|\n1|2|"},
        {"null, empty and blank", "a,b,c\n,\"\", \n", "a|b|c|\n~|| |"},
        {"a line end at the end makes no row, a delimiter a cell", "a,b\n1,\n,", "a|b|\n1|~|\n~|~|"},
        {"delimiter and line ends in quotes", "a,b\n\"1,\r\n2\n3\",\"x\"\"y\"\"\"\n", "a|b|\n1,\r\n2\n3|x\"y\"|"},
        {"quotes where they mean nothing", "a,b\n1\"2, \"3\"\n", "a|b|\n1\"2| \"3\"|"},
        {"text behind a closing quote", "a,b\n\"1\"2\"3,\"\"\"4\"5\n", "a|b|\n12\"3|\"45|"},
        {"short and long rows with their lines", "a,b,c\n\"\n\n\",1\n1,2,3,4,5\n1,2,3\n",
         "a|b|c|\n\n\n|1|~|\n1|2|3|\n1|2|3|\n2:short(2)\n5:long(5)"},
        {"an open quote", "a,b\n1,2\n3,\"4\n5,6\n", "a|b|\n1|2|\n3|4\n5,6\n|\n3:quote(2)"},
        {"bytes that are no text", "a,b\n\xFF\xE2\x82,\xC3\xA4\n\"\x80\"\"\",2\n",
         "a|b|\n\uFFFD\uFFFD\uFFFD|\u00E4|\n\uFFFD\"|2|\n2:bytes(2)\n3:bytes(2)", stated("UTF-8")},
        {"damaged in two ways", "a,b\n\xFF\n1,2\n", "a|b|\n\uFFFD|~|\n1|2|\n2:short(1)\n2:bytes(1)", stated("UTF-8")},
        {"a few bad bytes among much good UTF-8", "a,b\n\xC3\xA4\xC3\xB6,\xFF\n",
         "a|b|\n\u00E4\u00F6|\uFFFD|\n2:bytes(2)"},
        {"more bad bytes than good: windows-1252", "a,b\n\xE4\xF6,\x80\n", "a|b|\n\u00E4\u00F6|\u20AC|"},
        {"a stated code page", "a\n\xE4\n", "a|\n\u0434|", stated("windows-1251")},
        {"EBCDIC, whose commas and line ends are other bytes", "\x81\x6B\x82\x25\xF1\x6B\x25", "a|b|\n1|~|",
         stated("cp37")},
        {"Shift_JIS, where a bar is the second byte of a character", "a|b\n\x83\x7C|1\n\x83\n",
         "a|b|\n\u30DD|1|\n\uFFFD|~|\n3:short(1)\n3:bytes(1)", stated("sjis")},
        {"UTF-16 with a mark", "\xFF\xFE\"\0a\0\"\0,\0b\0\n\0\xE4\0,\0\x3D\xD8\x00\xDE\n\0"_raw,
         "a|b|\n\u00E4|\U0001F600|"},
        {"UTF-16, big end first, without one", "\0a\0;\0b\0\r\0\n\0\x31\0;\0\x32"_raw, "a|b|\n1|2|"},
        {"UTF-16 with half a pair and an odd byte at the end", "\xFF\xFE\x61\0\n\0\x3D\xD8\n\0\x62\0\n\0x"_raw,
         "a|\n\uFFFD|\nb|\n\uFFFD|\n2:bytes(1)\n4:bytes(1)"},
        {"UTF-32", "\0\0\xFE\xFF\0\0\0a\0\0\0\n\0\x01\xF6\0"_raw, "a|\n\U0001F600|"},
        {"a mark decides the order of a stated UTF-16", "\xFE\xFF\0a\0\n\0\x31"_raw, "a|\n1|", stated("UTF-16LE")},
        {"control characters of a DOS code page", "a\n\x7F\n\x1A\n\x1C\n", "a|\n\x7F|\n\x1A|\n\x1C|", stated("cp437")},
        {"another quote", "a,b\n'1,''2',\"3\n", "a|b|\n1,'2|\"3|", quoted('\'')},
        {"no quotes", "a,b\n\"1,2\"\n", "a|b|\n\"1|2\"|", quoted('\0')},
        {"a first row of names, found", "year,b2\n1,2\n", "year|b2|\n1|2|", {std::nullopt, true, true}},
        {"a first row of data, found",
         "x,2024-01-31\ny,2\n",
         "Column1|Column2|\nx|2024-01-31|\ny|2|",
         {std::nullopt, true, true}},
        {"empty lines in two columns", "\n\na,b\n\n1,2\n\r\n\n3\n", "a|b|\n1|2|\n3|~|\n8:short(1)"},
        {"empty lines in one column", "a\n\n1\n\n", "a|\n~|\n1|\n~|"},
        {"empty lines before the first row of one column", "\n1\n", "Column1|\n~|\n1|", {std::nullopt, false}},
        {"no header", "1,\"2\"\n3,4\n", "Column1|Column2|\n1|2|\n3|4|", {std::nullopt, false}},
        {"only a header", "a,b\n", "a|b|"},
        {"only a header without a line end", "a,b", "a|b|"},
        {"names that need help", "a,,a,\"\",a (2),Column2\n", "a|Column2 (2)|a (3)|Column4|a (2)|Column2|"},
        {"semicolon", "a;b\n1,5;2,5\n", "a|b|\n1,5|2,5|"},
        {"tab", "a\tb\n1,2\t3\n", "a|b|\n1,2|3|"},
        {"bar", "a|b\n1;2|3\n", "a|b|\n1;2|3|"},
        {"commas in quotes do not count", "a;b\n\"1,2,3\";4\n\"1,2,3\";4\n", "a|b|\n1,2,3|4|\n1,2,3|4|"},
        {"now and then a comma is no delimiter", "title\nOne, two\nThree\nFour\n", "title|\nOne, two|\nThree|\nFour|"},
        {"a stated delimiter", "a,b~c\n1,2~3\n", "a,b|c|\n1,2|3|", {'~', true}},
        {"nothing", "", "\"F\" is empty"},
        {"only line ends", "\r\n\n", "\"F\" is empty"},
        {"only a mark", "\xEF\xBB\xBF", "\"F\" is empty"},
    };
    TempFolder folder;
    const std::string path = folder.file("f");
    for (const Case& one : cases) {
        write(path, one.file);
        std::string found = printed(TextFileReader::open(path, one.options));
        if (const auto at = found.find(path); at != std::string::npos)
            found.replace(at, path.size(), "F");
        EXPECT_EQ(found, one.expected) << one.what;
    }
    write(path, "a,b\n1\0002,\0\n"_raw);
    EXPECT_EQ(printed(TextFileReader::open(path, {})), "a|b|\n1\0002|\0|"_raw) << "NUL is a character";
}

TEST(TextFileReader, SaysWhatIsWrongWithAFile) {
    TempFolder folder;
    EXPECT_EQ(printed(TextFileReader::open(folder.file("none"), {})),
              "\"" + folder.file("none") + "\" cannot be opened: No such file or directory");
    EXPECT_EQ(printed(TextFileReader::open(folder.path(), {})),
              "\"" + folder.path().string() + "\" is a folder, not a text file");
    if (::geteuid() != 0) {
        const std::string closed = write(folder.file("closed"), "a\n");
        ::chmod(closed.c_str(), 0);
        EXPECT_THAT(printed(TextFileReader::open(closed, {})), ::testing::EndsWith("Permission denied"));
    }
    std::string large = "a,b\n";
    while (large.size() < 3'000'000)
        large += "some text,and more\n";
    auto shrunk = TextFileReader::open(write(folder.file("shrunk"), large), {});
    std::filesystem::resize_file(folder.file("shrunk"), 1'500'000);
    EXPECT_THAT(printed(shrunk), ::testing::EndsWith("changed its size while it was read"));
}

TEST(TextFileReader, ReadsAPipe) {
    TempFolder folder;
    const std::string path = folder.file("pipe");
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    std::thread writer([&] { write(path, "a,b\n1,2\n"); });
    EXPECT_EQ(printed(TextFileReader::open(path, {})), "a|b|\n1|2|");
    writer.join();
}

TEST(TextFileReader, ReadsEveryEncodingInPiecesAsAWhole) {
    // What is longer than a chunk of the file, the units of a decoder and a piece, with characters at odd places.
    std::u16string text = u"a,b\n";
    std::string expected = "a|b|";
    for (int i = 0; i < 90'000; ++i) {
        const std::string n = std::to_string(i);
        text += std::u16string(n.begin(), n.end()) + (i % 3 == 0 ? u",\U0001F600\u00E4\n" : u",\u20ACx\n");
        expected += "\n" + n + (i % 3 == 0 ? "|\U0001F600\u00E4|" : "|\u20ACx|");
    }
    std::string little;
    std::string big;
    for (const char16_t c : text) {
        little += {static_cast<char>(c & 0xFF), static_cast<char>(c >> 8)};
        big += {static_cast<char>(c >> 8), static_cast<char>(c & 0xFF)};
    }
    TempFolder folder;
    for (const std::string& content : {little, big}) {
        auto reader = TextFileReader::open(write(folder.file("wide"), content), {});
        ASSERT_TRUE(reader.ok());
        EXPECT_EQ((*reader)->encoding().reason, EncodingReason::ZeroBytes);
        TextFileReader& read = **reader;
        EXPECT_TRUE(printed(reader) == expected);
        EXPECT_EQ(read.position(), read.total());
    }
}

TEST(TextFileReader, NoticesEveryChangeOfAFileThatIsBeingRead) {
    TempFolder folder;
    std::string large = "a,b\n";
    while (large.size() < 3'000'000)
        large += "some text,and more\n";
    const std::string path = write(folder.file("f"), large);
    auto grown = TextFileReader::open(path, {});
    std::ofstream(path, std::ios::app) << "1,2\n";
    EXPECT_THAT(printed(grown), ::testing::EndsWith("changed its size while it was read"));
    auto changed = TextFileReader::open(path, {});
    const auto time = std::filesystem::last_write_time(path);
    std::fstream(path, std::ios::in | std::ios::out) << "x,y\n";
    std::filesystem::last_write_time(path, time + std::chrono::seconds(2));
    EXPECT_THAT(printed(changed), ::testing::EndsWith("was changed while it was read"));
}

TEST(TextFileReader, HugeCellsAndManyColumnsAreRead) {
    TempFolder folder;
    const std::string huge(std::size_t{50} << 20, 'x');
    auto reader = TextFileReader::open(write(folder.file("cell"), "a,b\n1,\"" + huge + "\"\n2,3\n"), {});
    ASSERT_TRUE(reader.ok());
    RowBlock block;
    std::size_t rows = 0;
    std::size_t longest = 0;
    while (*(*reader)->read(block))
        for (std::size_t r = 0; r < block.rows; ++r, ++rows)
            longest = std::max<std::size_t>(longest, block.columns[1][r].size);
    EXPECT_EQ(rows, 2U);
    EXPECT_EQ(longest, huge.size());

    std::string wide;
    for (int row = 0; row < 200; ++row)
        for (int column = 0; column < 20'000; ++column)
            wide += (row == 0 ? "c" : "") + std::to_string(column) + (column == 19'999 ? "\n" : ",");
    auto many = TextFileReader::open(write(folder.file("wide"), wide), {});
    ASSERT_TRUE(many.ok());
    rows = 0;
    while (*(*many)->read(block)) {
        EXPECT_EQ(block.columns.size(), 20'000U);
        EXPECT_EQ(std::string(block.columns[19'999][0].data, block.columns[19'999][0].size), "19999");
        rows += block.rows;
    }
    EXPECT_EQ(rows, 199U);
    EXPECT_EQ((*many)->damagedRowCount(), 0);

    EXPECT_THAT(printed(TextFileReader::open(write(folder.file("f"), std::string(100'000, ',')), {})),
                ::testing::EndsWith("has 100001 columns; more than 100000 are not read"));
}

TEST(TextFileReader, RowsAcrossPiecesAndBlocksStayWhole) {
    // Several pieces of 1 MiB, several blocks; a cell larger than a piece, a character cut by a piece's end, and quotes
    // and CR LF that fall on such ends by their sheer number.
    std::string expected = "n|t|";
    std::string content = "n,t\r\n";
    const std::string huge(3'000'000, 'x');
    for (int i = 0; i < 120'000; ++i) {
        const std::string n = std::to_string(i);
        const std::string text = i == 50'000 ? huge : i % 7 == 0 ? "\u20AC" : "q\"\u00E4" + n;
        content += n + ",\"";
        for (const char c : text)
            content += c == '"' ? std::string("\"\"") : std::string(1, c);
        content += "\"\r\n";
        expected += "\n" + n + "|" + text + "|";
    }
    TempFolder folder;
    EXPECT_TRUE(printed(TextFileReader::open(write(folder.file("large"), content), {})) == expected);
}

TEST(TextFileReader, CountsAllDamageAndListsTheFirst) {
    std::string content = "a,b\n";
    for (int i = 0; i < 2500; ++i)
        content += "1\n";
    TempFolder folder;
    auto reader = TextFileReader::open(write(folder.file("f"), content), {TextFileOptions{',', true}});
    ASSERT_TRUE(reader.ok());
    RowBlock block;
    ASSERT_TRUE(*(*reader)->read(block));
    EXPECT_EQ(block.rows, 2500U);
    EXPECT_EQ((*reader)->damagedRowCount(), 2500);
    ASSERT_EQ((*reader)->damagedRows().size(), 1000U);
    EXPECT_EQ((*reader)->damagedRows().back().line, 1001);
    EXPECT_EQ((*reader)->position(), (*reader)->total());
}

std::string asJson(const Cell& cell) {
    std::string out = "\"";
    for (const char c : std::string_view(cell.data, cell.size)) {
        if (c == '"' || c == '\\')
            out += '\\';
        out += c == '\n' ? "\\n" : c == '\r' ? "\\r" : std::string(1, c);
    }
    return out + "\"";
}

std::string rowsAsJson(const std::string& path) {
    auto reader = TextFileReader::open(path, {',', false});
    if (!reader)
        return "empty\n";
    std::string out;
    RowBlock block;
    while (*(*reader)->read(block))
        for (std::size_t r = 0; r < block.rows; ++r)
            for (std::size_t c = 0; c < block.columns.size(); ++c)
                out +=
                    (c == 0 ? "[" : ",") + asJson(block.columns[c][r]) + (c + 1 == block.columns.size() ? "]\n" : "");
    return out;
}

TEST(TextFileReader, AgreesWithPythonsCsvModule) {
    if (!std::filesystem::exists("/usr/bin/python3"))
        GTEST_SKIP() << "no /usr/bin/python3 to compare with";
    TempFolder folder;
    for (const char* name : {"airports.csv", "routes.csv", "birdstrikes.csv", "deliveries.csv"})
        std::filesystem::copy_file(testing::sourceFile(std::string("share/examples/") + name), folder.file(name));
    const std::vector<std::string> alphabet = {"a",  "\"",   "\"",     ",", ",",    "\n",
                                               "\r", "\r\n", "\u00E4", " ", "\"\"", "bc"};
    std::mt19937 random(42);
    for (int i = 0; i < 3000; ++i) {
        std::string content;
        for (std::size_t n = random() % 40; n > 0; --n)
            content += alphabet[random() % alphabet.size()];
        write(folder.file(std::to_string(i) + ".csv"), content);
    }
    const std::string script = testing::sourceFile("src/source/tests/read_with_csv.py");
    ASSERT_EQ(std::system(("/usr/bin/python3 '" + script + "' '" + folder.path().string() + "'").c_str()), 0);
    int compared = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
        if (entry.path().extension() != ".csv")
            continue;
        std::ifstream expected(std::filesystem::path(entry.path()).replace_extension(".expected"), std::ios::binary);
        std::stringstream text;
        text << expected.rdbuf();
        std::ifstream source(entry.path(), std::ios::binary);
        std::stringstream content;
        content << source.rdbuf();
        ASSERT_EQ(rowsAsJson(entry.path()), text.str()) << content.str().substr(0, 1000);
        ++compared;
    }
    EXPECT_EQ(compared, 3004);
}

} // namespace
} // namespace tavix::source
