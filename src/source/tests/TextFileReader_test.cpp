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
         "a|b|\n\uFFFD\uFFFD\uFFFD|\u00E4|\n\uFFFD\"|2|\n2:bytes(2)\n3:bytes(2)"},
        {"damaged in two ways", "a,b\n\xFF\n1,2\n", "a|b|\n\uFFFD|~|\n1|2|\n2:short(1)\n2:bytes(1)"},
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
        {"UTF-16",
         "\xFF\xFE"
         "a\0"_raw,
         "\"F\" is in UTF-16; only UTF-8 is read"},
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
    for (const char* name : {"airports.csv", "routes.csv", "birdstrikes.csv"})
        std::filesystem::copy_file(std::string(TAVIX_SOURCE_DIR "/share/examples/") + name, folder.file(name));
    const std::vector<std::string> alphabet = {"a",  "\"",   "\"",     ",", ",",    "\n",
                                               "\r", "\r\n", "\u00E4", " ", "\"\"", "bc"};
    std::mt19937 random(42);
    for (int i = 0; i < 3000; ++i) {
        std::string content;
        for (std::size_t n = random() % 40; n > 0; --n)
            content += alphabet[random() % alphabet.size()];
        write(folder.file(std::to_string(i) + ".csv"), content);
    }
    const std::string script = TAVIX_SOURCE_DIR "/src/source/tests/read_with_csv.py";
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
    EXPECT_EQ(compared, 3003);
}

} // namespace
} // namespace tavix::source
