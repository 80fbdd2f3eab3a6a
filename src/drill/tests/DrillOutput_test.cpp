#include "base/tests/ScriptedMessages.h"
#include "base/tests/TempFolder.h"
#include "drill/DrillOutput.h"
#include "support/ReadWorksheet.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <sstream>

namespace tavix {
namespace {

using Answer = Messages::Answer;

std::string contents(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

void put(const std::string& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

CDrillThruDataSrc sample() {
    DrillRows rows({{"id", kvbType::Integer}, {"pri\"ce", kvbType::Real}, {"name", kvbType::Text}});
    const std::vector<std::vector<KvbString>> table = {
        {"10", "1.50", "b, c"}, {"9", KvbString(), "say \"hi\""}, {"007", "n/a", "M\u00FCller"}, {KvbString(), "", ""}};
    for (const auto& line : table) {
        for (const KvbString& value : line)
            rows.add(value);
        rows.endRow();
    }
    CDrillThruDataSrc source;
    source.SetRows(std::move(rows));
    return source;
}

class DrillOutput : public ::testing::Test {
  protected:
    testing::TempFolder m_folder;
    testing::ScriptedMessages m_messages;
    CDrillThruDataSrc m_source = sample();
};

TEST_F(DrillOutput, LinesInTheOrderOfTheGrid) {
    const std::string path = m_folder.file("rows.csv");
    ASSERT_TRUE(saveDrillRows(m_source, path, "t", m_messages));
    EXPECT_EQ(contents(path), "\"id\",\"pri\"ce\",\"name\"\n"
                              "10,1.50,\"b, c\"\n"
                              "9,,\"say \"hi\"\"\n"
                              "007,n/a,\"M\u00FCller\"\n"
                              ",,\"\"\n");
    ASSERT_TRUE(m_source.Sort(0, false));
    ASSERT_TRUE(saveDrillRows(m_source, m_folder.file("rows.txt"), "t", m_messages));
    EXPECT_EQ(contents(m_folder.file("rows.txt")), "\"id\",\"pri\"ce\",\"name\"\n"
                                                   "007,n/a,\"M\u00FCller\"\n"
                                                   "9,,\"say \"hi\"\"\n"
                                                   "10,1.50,\"b, c\"\n"
                                                   ",,\"\"\n");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(m_folder.path()), {}), 2);
}

TEST_F(DrillOutput, AFileIsReplacedOnlyWhenTheUserAgrees) {
    for (const std::string name : {"rows.txt", "rows.XLS"}) {
        const std::string path = m_folder.file(name);
        const std::string question = name == "rows.txt" ? path + " already exists.\nDo you want to replace it?"
                                                        : "Worksheet " + path + " already exists. Overwrite it?";
        put(path, "kept");
        m_messages.expectAsk(question, "Overwrite", Answer::No);
        EXPECT_FALSE(saveDrillRows(m_source, path, "t", m_messages));
        EXPECT_EQ(contents(path), "kept");
        m_messages.expectAsk(question, "Overwrite", Answer::Yes);
        EXPECT_TRUE(saveDrillRows(m_source, path, "t", m_messages));
        EXPECT_NE(contents(path), "kept");
    }
}

TEST_F(DrillOutput, WhatCannotBeWrittenIsSaid) {
    const std::string nowhere = m_folder.file("missing/rows.txt");
    m_messages.expectWarn("Unable to open or create file " + nowhere, "File Error");
    EXPECT_FALSE(saveDrillRows(m_source, nowhere, "t", m_messages));
    for (const std::string& path : {m_folder.file(std::string(300, 'n')), "/" + std::string(5000, 'd')}) {
        m_messages.expectWarn("Path too long: " + path, "File Error");
        EXPECT_FALSE(saveDrillRows(m_source, path, "t", m_messages));
    }
    // A folder cannot be replaced by a file; no temporary file is left.
    const std::string folder = m_folder.file("folder.txt");
    std::filesystem::create_directory(folder);
    put(folder + "/inside", "kept");
    m_messages.expectAsk(folder + " already exists.\nDo you want to replace it?", "Overwrite", Answer::Yes);
    m_messages.expectWarn("Unable to open or create file " + folder, "File Error");
    EXPECT_FALSE(saveDrillRows(m_source, folder, "t", m_messages));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(m_folder.path()), {}), 1);
}

TEST_F(DrillOutput, OtherFilesOfTheFolderStayAsTheyAre) {
    const std::string path = m_folder.file("rows.csv");
    const std::string secret = m_folder.file("secret.txt");
    put(path + ".part", "mine");
    ASSERT_TRUE(saveDrillRows(m_source, path, "t", m_messages));
    EXPECT_EQ(contents(path + ".part"), "mine");
    put(secret, "secret");
    std::filesystem::create_symlink("secret.txt", m_folder.file("more.csv.part"));
    ASSERT_TRUE(saveDrillRows(m_source, m_folder.file("more.csv"), "t", m_messages));
    EXPECT_EQ(contents(secret), "secret");
    EXPECT_TRUE(std::filesystem::is_symlink(m_folder.file("more.csv.part")));
}

TEST_F(DrillOutput, AReplacedFileKeepsItsModeAndItsLinks) {
    for (const std::string name : {"rows.csv", "rows.xls"}) {
        const std::string path = m_folder.file(name);
        const std::string link = m_folder.file("link-" + name);
        put(path, "old");
        std::filesystem::permissions(path, std::filesystem::perms(0600));
        std::filesystem::create_symlink(name, link);
        m_messages.expectAsk(name == "rows.csv" ? link + " already exists.\nDo you want to replace it?"
                                                : "Worksheet " + link + " already exists. Overwrite it?",
                             "Overwrite", Answer::Yes);
        ASSERT_TRUE(saveDrillRows(m_source, link, "t", m_messages));
        EXPECT_TRUE(std::filesystem::is_symlink(link));
        EXPECT_NE(contents(path), "old");
        EXPECT_EQ(static_cast<int>(std::filesystem::status(path).permissions()), 0600);
    }
}

TEST_F(DrillOutput, APipeIsWrittenThroughAndALongNameTaken) {
    const std::string pipe = m_folder.file("pipe.txt");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const std::string question = pipe + " already exists.\nDo you want to replace it?";
    m_messages.expectAsk(question, "Overwrite", Answer::Yes);
    m_messages.expectWarn("Unable to open or create file " + pipe, "File Error");
    EXPECT_FALSE(saveDrillRows(m_source, pipe, "t", m_messages));
    const int reader = ::open(pipe.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    m_messages.expectAsk(question, "Overwrite", Answer::Yes);
    EXPECT_TRUE(saveDrillRows(m_source, pipe, "t", m_messages));
    std::string first(4, '\0');
    EXPECT_EQ(::read(reader, first.data(), first.size()), 4);
    EXPECT_EQ(first, "\"id\"");
    ::close(reader);
    for (const char* ending : {".csv", ".xls"})
        EXPECT_TRUE(saveDrillRows(m_source, m_folder.file(std::string(251, 'n') + ending), "t", m_messages));
}

TEST_F(DrillOutput, AWorksheetHasNumbersInNumericColumns) {
    const std::string path = m_folder.file("rows.xls");
    ASSERT_TRUE(saveDrillRows(m_source, path, "na/me", m_messages));
    EXPECT_EQ(testing::readWorksheet(path), "#na_me 4\n"
                                            "Tid|Tpri\"ce|Tname\n"
                                            "N10.0|N1.5|Tb, c\n"
                                            "N9.0| |Tsay \"hi\"\n"
                                            "N7.0|Tn/a|TM\u00FCller\n");
}

TEST_F(DrillOutput, MoreRowsThanASheetHoldsGoOnBehindIt) {
    DrillRows rows({{"n", kvbType::Integer}});
    for (int row = 0; row < 70'000; ++row) {
        rows.add(KvbString(std::to_string(row)));
        rows.endRow();
    }
    m_source.SetRows(std::move(rows));
    const std::string path = m_folder.file("many.xls");
    ASSERT_TRUE(saveDrillRows(m_source, path, "n", m_messages));
    EXPECT_THAT(testing::readWorksheet(path), ::testing::AllOf(::testing::HasSubstr("#n 65536\nTn\nN0.0\n"),
                                                               ::testing::HasSubstr("#n (2) 4467\nTn\nN65534.0\n")));
}

TEST_F(DrillOutput, AWorksheetThatCannotHoldTheRowsIsSaid) {
    DrillRows wide(std::vector<DrillColumn>(300, {"c", kvbType::Text}));
    m_source.SetRows(std::move(wide));
    m_messages.expectWarn(
        "Unable to create new Microsoft Excel workbook\n\nColumn 257 does not fit into the worksheet \"t\", "
        "which has 256",
        "Export Error");
    EXPECT_FALSE(saveDrillRows(m_source, m_folder.file("wide.xls"), "t", m_messages));
    EXPECT_FALSE(std::filesystem::exists(m_folder.file("wide.xls")));
}

TEST(DrillFileName, IsOneThatEveryFileSystemTakes) {
    EXPECT_EQ(drillFileName("order id"), "order id");
    EXPECT_EQ(drillFileName("a/b:c\n"), "a_b_c_");
    EXPECT_EQ(drillFileName(""), "drill through");
    EXPECT_EQ(drillFileName("../x"), "drill through.._x");
    std::string umlauts;
    for (int i = 0; i < 150; ++i)
        umlauts += "\u00FC";
    EXPECT_EQ(drillFileName("x" + umlauts).size(), 199U);
}

} // namespace
} // namespace tavix
