#include "base/tests/TempFolder.h"
#include "worksheet/CellText.h"
#include "worksheet/Workbook.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <string>
#include <vector>

namespace tavix::worksheet {
namespace {

std::string contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::size_t filesIn(const std::filesystem::path& folder) {
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder), {}));
}

std::vector<std::string> sheetNames(const Sheet& sheet) {
    std::vector<std::string> names;
    for (const SheetImage& image : sheet.images())
        names.push_back(image.part->name());
    return names;
}

TEST(CellText, KeepsAtMostWhatACellHolds) {
    struct Case {
        std::string text;
        std::size_t length;
        bool wide;
        bool cut;
    };
    const std::string broken(40'000, '\x80');
    std::string pairs;
    for (int i = 0; i < 16'384; ++i)
        pairs += "\U0001F600";
    for (const Case& c :
         {Case{std::string(32'767, 'a'), 32'767, false, false}, Case{std::string(32'768, 'a'), 32'767, false, true},
          Case{"x" + std::string(1'000'000, 'a'), 32'767, false, true}, Case{pairs, 32'766, true, true},
          Case{"x" + pairs, 32'767, true, true}, Case{pairs + std::string(1'000'000, 'a'), 32'766, true, true},
          Case{broken, 32'767, true, true}, Case{"\u00FF", 1, false, false}, Case{"\u0100", 1, true, false},
          Case{"\xF0\x9F", 1, true, false}, Case{"", 0, false, false}}) {
        CellText text;
        text.assign(c.text);
        const std::string label = c.text.substr(0, 8) + " of " + std::to_string(c.text.size());
        EXPECT_EQ(text.length(), c.length) << label;
        EXPECT_EQ(text.wide(), c.wide) << label;
        EXPECT_EQ(text.cut(), c.cut) << label;
    }
}

TEST(Workbook, CutsLongTextsAndCountsThem) {
    Workbook book;
    Range cell = *book.sheet("Sheet1")->range("A1");
    EXPECT_TRUE(cell.putText(std::string(32'767, 'a')));
    EXPECT_EQ(book.cutTexts(), 0);
    EXPECT_TRUE(cell.next().putText(std::string(32'768, 'a')));
    EXPECT_TRUE(cell.next().next().putHeader(std::string(50'000, 'a')));
    EXPECT_EQ(book.cutTexts(), 2);
}

TEST(Workbook, RefusesWhatHasNoPlace) {
    Workbook book;
    Sheet& sheet = *book.sheet("sheet1");
    EXPECT_TRUE(sheet.range("IV1")->putText("last column"));
    EXPECT_EQ(sheet.range("IV1")->next().putText("x").error().text,
              "Column 257 does not fit into the worksheet \"Sheet1\", which has 256");
    EXPECT_TRUE(sheet.putNumber({4, 0}, 1));
    EXPECT_EQ(sheet.putInteger({3, 0}, 1).error().text, "Row 4 of the worksheet \"Sheet1\" is already written");
    EXPECT_FALSE(sheet.range("B0"));
    EXPECT_FALSE(sheet.putText({0, -1}, "x"));

    EXPECT_FALSE(sheet.range("A999999999999")->putText("x"));
    EXPECT_EQ(sheet.images().size(), 1u) << "empty sheets were made for a row that has no place";
    EXPECT_TRUE(sheet.putText({5, 0}, "the row after a refused one"));
    EXPECT_EQ(sheet.images().back().extent.endRow, 6u);

    for (double digits : {-1.0, 256.0, std::numeric_limits<double>::quiet_NaN()})
        EXPECT_FALSE(sheet.setColumnWidth(0, digits));
    EXPECT_FALSE(sheet.setColumnWidth(256, 1));
}

TEST(Workbook, SheetsHaveNamesOfTheirOwn) {
    Workbook book;
    EXPECT_EQ(book.sheet("Orders"), nullptr);
    ASSERT_TRUE(book.addSheet("Orders"));
    EXPECT_EQ(book.addSheet("ORDERS").error().text, "There is already a worksheet \"ORDERS\"");
    Sheet& first = *book.sheet("Sheet1");
    EXPECT_FALSE(book.rename(first, "orders"));
    EXPECT_FALSE(book.rename(first, "a/b"));
    EXPECT_EQ(first.name(), "Sheet1");
    EXPECT_TRUE(book.rename(first, "SHEET1"));
    EXPECT_TRUE(book.rename(first, "Items"));
    EXPECT_EQ(sheetNames(first), std::vector<std::string>{"Items"});
    EXPECT_TRUE(book.addSheet("Sheet1"));
}

TEST(Workbook, RowsBeyondASheetContinueOnTheNextOne) {
    Workbook book;
    Sheet& sheet = *book.sheet("Sheet1");
    ASSERT_TRUE(book.addSheet("sheet1 (2)"));
    ASSERT_TRUE(sheet.putHeader({0, 0}, "Head"));
    ASSERT_TRUE(sheet.putNumber({65'535, 0}, 1));
    EXPECT_EQ(sheetNames(sheet).size(), 1u);
    // The second and every further sheet but the last hold 65,534 rows between header and note.
    ASSERT_TRUE(sheet.putNumber({65'535 + 65'535 - 1, 0}, 2));
    EXPECT_EQ(sheetNames(sheet), (std::vector<std::string>{"Sheet1", "Sheet1 (3)"}));
    EXPECT_EQ(sheet.images().back().extent.endRow, 65'536u);
    ASSERT_TRUE(sheet.putNumber({65'535 + 65'535, 0}, 3));
    EXPECT_EQ(sheetNames(sheet), (std::vector<std::string>{"Sheet1", "Sheet1 (3)", "Sheet1 (4)"}));
    EXPECT_EQ(sheet.images().back().extent.endRow, 3u);
    EXPECT_FALSE(book.addSheet("Sheet1 (4)"));
    EXPECT_FALSE(book.rename(sheet, "Other"));

    while (sheet.putNumber({static_cast<std::int64_t>(sheetNames(sheet).size()) * 65'536, 0}, 1)) {
    }
    EXPECT_EQ(sheetNames(sheet).size(), 999u) << "a thousand sheets are the limit";
    const testing::TempFolder folder;
    EXPECT_TRUE(book.save(folder.file("limit.xls")));
}

TEST(Workbook, ARowThatTurnsOutToHaveNoPlaceLeavesTheRowsBeforeItFinal) {
    Workbook book;
    Sheet& sheet = *book.sheet("Sheet1");
    ASSERT_TRUE(sheet.putHeader({0, 0}, "Head"));
    ASSERT_TRUE(sheet.putNumber({7, 0}, 1));
    // A thousand sheets would hold it without their headers and notes.
    EXPECT_FALSE(sheet.putNumber({1000 * 65'536 - 1, 0}, 2));
    EXPECT_FALSE(sheet.putNumber({7, 0}, 3));
    const testing::TempFolder folder;
    EXPECT_TRUE(book.save(folder.file("x.xls")));
}

TEST(Workbook, CellsOfARowComeInAnyOrderAndCanBeReplaced) {
    const testing::TempFolder folder;
    auto save = [&folder](bool backwards) {
        Workbook book;
        Sheet& sheet = *book.sheet("Sheet1");
        if (backwards) {
            EXPECT_TRUE(sheet.putNumber({0, 2}, 3));
            EXPECT_TRUE(sheet.putNumber({0, 1}, 17));
            EXPECT_TRUE(sheet.putNumber({0, 3}, 17));
            EXPECT_TRUE(sheet.putText({0, 3}, ""));
        }
        EXPECT_TRUE(sheet.putText({0, 0}, "a"));
        EXPECT_TRUE(sheet.putNumber({0, 1}, 2));
        EXPECT_TRUE(sheet.putNumber({0, 2}, 3));
        EXPECT_TRUE(sheet.setColumnWidth(1, 10));
        EXPECT_TRUE(sheet.setColumnWidth(3, 10));
        EXPECT_TRUE(book.save(folder.file("x.xls")));
        return contentOf(folder.file("x.xls"));
    };
    EXPECT_EQ(save(true), save(false));
}

TEST(Workbook, MemoryMakesNoDifferenceToTheFile) {
    const testing::TempFolder folder;
    auto save = [&folder](std::size_t memory, const std::string& name) {
        Workbook book(memory);
        Sheet& more = **book.addSheet("More");
        for (int row = 0; row < 30'000; ++row) {
            EXPECT_TRUE(book.sheet("Sheet1")->putText({row, 0}, "value " + std::to_string(row)));
            EXPECT_TRUE(more.putText({row, 0}, std::string(40, 'm') + std::to_string(row)));
            EXPECT_TRUE(more.putNumber({row, 1}, row));
        }
        EXPECT_TRUE(book.save(folder.file(name)));
        std::string first = contentOf(folder.file(name));
        EXPECT_TRUE(book.save(folder.file(name)));
        EXPECT_EQ(contentOf(folder.file(name)), first);
        EXPECT_TRUE(more.putText({30'000, 0}, "after the save"));
        EXPECT_TRUE(book.save(folder.file(name)));
        return first;
    };
    const std::string inMemory = save(SpoolStore::kDefaultMemoryBytes, "memory.xls");
    EXPECT_GT(inMemory.size(), 2'000'000u);
    EXPECT_TRUE(save(0, "spooled.xls") == inMemory);
    EXPECT_TRUE(save(300'000, "both.xls") == inMemory);
    EXPECT_EQ(filesIn(folder.path()), 3u);
}

TEST(Workbook, RepeatedTextsAreStoredOnce) {
    const testing::TempFolder folder;
    Workbook book;
    for (int row = 0; row < 20'000; ++row) {
        EXPECT_TRUE(book.sheet("Sheet1")->putText({row, 0}, "yes"));
        EXPECT_TRUE(book.sheet("Sheet1")->putText({row, 1}, std::string(3000, 'l')));
    }
    EXPECT_TRUE(book.save(folder.file("x.xls")));
    EXPECT_LT(std::filesystem::file_size(folder.file("x.xls")), 20'000u * 2 * 14 + 20'000);
}

TEST(WorkbookSave, ReplacesAFileAsAWholeAndKeepsItsPermissionsAndLinks) {
    const testing::TempFolder folder;
    const std::string path = folder.file("old.xls");
    std::ofstream(path) << "old";
    ::chmod(path.c_str(), 0640);
    std::filesystem::create_symlink("old.xls", folder.path() / "link.xls");
    const Workbook book;
    ASSERT_TRUE(book.save(folder.file("link.xls")));
    EXPECT_TRUE(std::filesystem::is_symlink(folder.path() / "link.xls"));
    EXPECT_EQ(contentOf(path).substr(0, 4), "\xD0\xCF\x11\xE0");
    EXPECT_EQ(static_cast<int>(std::filesystem::status(path).permissions()), 0640);
    EXPECT_EQ(filesIn(folder.path()), 2u);
}

TEST(WorkbookSave, SaysWhereNothingCanBeWritten) {
    const testing::TempFolder folder;
    const Workbook book;
    const std::string path = folder.path().string();
    EXPECT_EQ(book.save(path).error().text, "Unable to write \"" + path + "\": Is a directory");
    EXPECT_EQ(book.save(path + "/none/x.xls").error().text,
              "Unable to write \"" + path + "/none/x.xls\": No such file or directory");
    EXPECT_EQ(book.save("/dev/null").error().text, "Unable to write \"/dev/null\": it is not a file");
    EXPECT_FALSE(book.save(""));
    EXPECT_FALSE(book.save(path + "/" + std::string(300, 'n') + ".xls"));
    EXPECT_EQ(filesIn(folder.path()), 0u);
}

/// Within its life no file of this process grows beyond so many bytes.
class FileSizeLimit {
  public:
    explicit FileSizeLimit(rlim_t bytes) : m_handler(std::signal(SIGXFSZ, SIG_IGN)) {
        ::getrlimit(RLIMIT_FSIZE, &m_before);
        rlimit limit = m_before;
        limit.rlim_cur = bytes;
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        ::setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

  private:
    void (*m_handler)(int);
    rlimit m_before{};
};

TEST(WorkbookSave, LeavesNothingWhenTheFileCannotGrow) {
    const testing::TempFolder folder;
    const std::string path = folder.file("old.xls");
    std::ofstream(path) << "old";
    Workbook book;
    for (int row = 0; row < 3000; ++row)
        ASSERT_TRUE(book.sheet("Sheet1")->putText({row, 0}, "a text of row " + std::to_string(row)));
    ASSERT_TRUE(book.save(folder.file("whole.xls")));
    const auto whole = std::filesystem::file_size(folder.file("whole.xls"));
    std::filesystem::remove(folder.file("whole.xls"));
    // Anywhere: at the start, in the middle, in what is written only at the end.
    for (rlim_t limit : {rlim_t{0}, rlim_t{100}, rlim_t{511}, rlim_t{4096}, rlim_t{whole / 2}, rlim_t{whole - 600},
                         rlim_t{whole - 1}}) {
        {
            const FileSizeLimit full(limit);
            EXPECT_EQ(book.save(path).error().text, "Unable to write \"" + path + "\": File too large") << limit;
        }
        EXPECT_EQ(contentOf(path), "old") << limit;
        EXPECT_EQ(filesIn(folder.path()), 1u) << limit;
    }
    const FileSizeLimit enough(whole);
    EXPECT_TRUE(book.save(path));
}

TEST(WorkbookSave, FailsWhenTheRowsCouldNotBeKept) {
    const testing::TempFolder folder;
    Workbook book(0);
    Sheet& sheet = *book.sheet("Sheet1");
    Status status;
    {
        const FileSizeLimit full(600'000);
        for (int row = 0; status && row < 60'000; ++row)
            status = sheet.putText({row, 0}, std::string(100, 'l') + std::to_string(row));
    }
    ASSERT_FALSE(status);
    EXPECT_EQ(status.error().text, "Unable to keep the worksheet in a temporary file: File too large");
    EXPECT_EQ(book.save(folder.file("x.xls")).error().text, status.error().text);
    EXPECT_EQ(filesIn(folder.path()), 0u);
}

} // namespace
} // namespace tavix::worksheet
