#include "access/tests/DrilledRuns.h"
#include "base/GenException.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <string>
#include <vector>

/// Drilling through to tables that are made of several files.
namespace tavix {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class PrViewerDrillFiles : public testing::DrilledRuns {};

TEST_F(PrViewerDrillFiles, RunsThatNoteTheLastFileAloneFindTheOthersForms) {
    const std::vector<std::string> files{m_folder.file("1.csv"), m_folder.file("2.csv"), m_folder.file("3.csv")};
    const auto put = [&](std::size_t file, std::string_view text) {
        std::ofstream(files[file], std::ios::binary) << text;
    };
    put(0, "id;city\n1;\"Köln\"\n2;Bern\n");
    put(1, "id,city\n3,K\xF6ln\n4,\n");
    put(2, "id\tcity\n5\tKöln\n6\t\"a\"\"b\"\n");
    // The first files are older than the last.
    std::filesystem::last_write_time(files[0], std::filesystem::file_time_type::clock::now() - std::chrono::hours(1));
    profileFilesAsOnce(files, '\t', "UTF-8");
    EXPECT_THAT(rows("city", "Köln", false, true), ElementsAre("1|Köln", "3|Köln", "5|Köln"));
    EXPECT_THAT(rows("city", "Bern"), ElementsAre("2"));
    EXPECT_THAT(rows("city", "none"), IsEmpty());
    EXPECT_THAT(rows("city", "a\"b"), ElementsAre("6"));
    EXPECT_THAT(rows("city", KvbString()), ElementsAre("4"));
    EXPECT_THAT(rows("city", "Aaaa", true), ElementsAre("1", "2", "3", "5"));
    EXPECT_TRUE(open("city", "Köln")->getWarning().isNull());
    EXPECT_THAT(m_sink.texts, ElementsAre("Reading *.csv"));

    const std::string pattern = "\"" + m_folder.file("*.csv") + "\"";
    std::filesystem::last_write_time(files[1], std::filesystem::file_time_type::clock::now() + std::chrono::hours(1));
    EXPECT_EQ(open("city", "Köln")->getWarning().str(),
              pattern + " was written anew since the run; its size is the same.");
    put(1, "id,city\n3,K\xF6ln\n");
    EXPECT_EQ(open("city", "Köln")->getWarning().str(),
              pattern + " changed since the run: it had 68 bytes and has 65 now.");
    put(1, "id,town\n3,K\xF6ln\n");
    EXPECT_FALSE(open("city", "Köln"));
    EXPECT_THAT(error(), HasSubstr("the files of a table have the same columns"));
    std::filesystem::remove(files[1]);
    EXPECT_FALSE(open("city", "Köln"));
    EXPECT_EQ(error(), "\"" + files[1] + "\" cannot be opened: No such file or directory");

    // What the job states holds for files too that look otherwise.
    put(0, "id,city\n1,K\xC3\xB6ln\n");
    put(1, "id,city\n2,\x80;\n");
    put(2, "id,city\n3,K\xC3\xB6ln\n");
    profileFilesAsOnce(files, ',', "windows-1252");
    EXPECT_THAT(rows("city", "KÃ¶ln"), ElementsAre("1", "3"));
    EXPECT_THAT(rows("city", "€;"), ElementsAre("2"));
}

std::string encoded(const std::string& text, int encoding) {
    std::string out;
    if (encoding == 1)
        out = "\xFF\xFE";
    for (const char c : text) {
        if (encoding == 2 && c == '~')
            out += '\xE4'; // "ä" in windows-1252
        else if (encoding != 1 && c == '~')
            out += "ä";
        else if (c == '~')
            out += std::string("\xE4\0", 2);
        else
            out += encoding == 1 ? std::string{c, '\0'} : std::string(1, c);
    }
    return out;
}

// Without a header nothing shows that a file is read with another file's delimiter or encoding.
TEST_F(PrViewerDrillFiles, FilesWithoutAHeaderAreReadInTheFormOfEach) {
    m_sink.allowed = 1'000'000;
    std::mt19937 random(7);
    const auto pick = [&](unsigned most) { return static_cast<std::size_t>(random() % most); };
    constexpr std::string_view kWords[] = {"a", "b;c", "d,e", "~", "x~y", "f\tg", "1", "h|i"};
    int tables = 0;
    for (int round = 0; round < 60; ++round) {
        std::vector<std::string> files;
        for (std::size_t file = 0, count = 2 + pick(3); file < count; ++file) {
            const char delimiter = ",;\t|"[pick(4)];
            std::string text;
            for (std::size_t row = 0, rows = 3 + pick(5); row < rows; ++row)
                text += std::to_string(row) + delimiter + '"' + std::string(kWords[pick(8)]) + '"' + delimiter + "z\n";
            files.push_back(m_folder.file(std::to_string(round) + "." + std::to_string(file) + ".csv"));
            std::ofstream(files.back(), std::ios::binary) << encoded(text, static_cast<int>(pick(3)));
        }
        std::map<std::string, int> expected;
        {
            auto reader = source::FileSetReader::open(files, {std::nullopt, false});
            if (!reader || !(*reader)->checkColumns())
                continue; // found to have other columns: no run has read it
            source::RowBlock block;
            while (*(*reader)->read(block))
                for (std::size_t row = 0; row < block.rows; ++row) {
                    const source::Cell& cell = block.columns[1][row];
                    ++expected[std::string(cell.data, cell.size)];
                }
        }
        m_repository = m_folder.file(std::to_string(round) + ".tavix");
        profileFiles(files, false);
        ++tables;
        for (const auto& [value, count] : expected)
            EXPECT_EQ(rows("Column2", value).size(), static_cast<std::size_t>(count)) << round << " " << value;
    }
    EXPECT_GT(tables, 50);
}

// The first of two files is searched through before the second is looked at.
TEST_F(PrViewerDrillFiles, OfSeveralFilesOneIsReadAfterTheOther) {
    const std::vector<std::string> files{m_folder.file("1.csv"), m_folder.file("2.csv")};
    std::string text = "id,city\n";
    while (text.size() < 20'000'000)
        text += "1,Bern\n";
    for (const std::string& file : files)
        std::ofstream(file, std::ios::binary) << text << "2,Ulm\n";
    profileFiles(files);
    EXPECT_THAT(rows("city", "Ulm"), ElementsAre("2", "2"));
    const int calls = m_sink.calls;
    EXPECT_GE(calls, 5) << "told of its progress within a file";
    m_sink.allowed = calls + 2;
    const PrViewerDrillCursorHandle stopped = open("city", "Ulm");
    EXPECT_THROW(stopped->next(), GenException);
    EXPECT_FALSE(stopped->isComplete());

    m_sink.allowed = 1'000'000;
    for (const bool isGone : {false, true}) {
        const PrViewerDrillCursorHandle cursor = open("city", "Ulm");
        ASSERT_TRUE(cursor->next());
        if (isGone)
            std::filesystem::remove(files[1]);
        else
            std::filesystem::resize_file(files[1], 10'000'000);
        const std::string expected = "\"" + files[1] + (isGone ? "\" cannot be opened: No such file or directory" : "");
        try {
            EXPECT_FALSE(cursor->next());
            EXPECT_FALSE(isGone) << "nothing was thrown";
            EXPECT_TRUE(cursor->isComplete()) << "the file was not open yet when it was cut";
        } catch (const GenException& failure) {
            EXPECT_EQ(failure.getText(), KvbString(expected));
        }
    }
}

} // namespace
} // namespace tavix
