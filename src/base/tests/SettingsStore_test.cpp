#include "base/SettingsStore.h"
#include "base/tests/TempFolder.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace tavix {
namespace {

TEST(SettingsFile, KeepsValuesBySectionAndKey) {
    const testing::TempFolder folder;
    const std::string path = folder.file("deep/er/settings.ini");
    {
        auto store = openSettingsFile(path);
        ASSERT_TRUE(store);
        EXPECT_EQ((*store)->read("TAVIX", "MaxChartVals"), "");
        ASSERT_TRUE((*store)->write("TAVIX", "MaxChartVals", "12"));
        ASSERT_TRUE((*store)->write("Environment", "WorkingPath", "/tmp/ü x "));
        EXPECT_FALSE((*store)->write("TAVIX", "StatFontName", "two\nlines"));
    }
    auto again = openSettingsFile(path);
    ASSERT_TRUE(again);
    EXPECT_EQ((*again)->read("TAVIX", "MaxChartVals"), "12");
    EXPECT_EQ((*again)->read("tavix", "maxchartvals"), "12");
    EXPECT_EQ((*again)->read("Environment", "WorkingPath"), "/tmp/ü x ");
    EXPECT_EQ((*again)->read("Other", "MaxChartVals"), "");
}

TEST(SettingsFile, RefusesWhatIsNoSettingsFileAndLeavesItAlone) {
    const testing::TempFolder folder;
    EXPECT_FALSE(openSettingsFile(folder.path().string()));
    const std::string path = folder.file("binary");
    const std::string bytes("[TAVIX]\nA=\0B\n", 13);
    std::ofstream(path, std::ios::binary) << bytes;
    EXPECT_FALSE(openSettingsFile(path));
    std::ifstream in(path, std::ios::binary);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}), bytes);
}

TEST(SettingsFile, GarbageLinesDoNotHideTheOthers) {
    const testing::TempFolder folder;
    const std::string path = folder.file("s.ini");
    std::ofstream(path) << "garbage\n[[[\n[TAVIX]\n=x\nMaxFreqVals = 7\n]]\n";
    auto store = openSettingsFile(path);
    ASSERT_TRUE(store);
    EXPECT_EQ((*store)->read("TAVIX", "MaxFreqVals"), "7");
}

TEST(SettingsFile, TwoStoresKeepWhatEitherOfThemWrites) {
    const testing::TempFolder folder;
    const std::string path = folder.file("s.ini");
    auto first = openSettingsFile(path);
    auto second = openSettingsFile(path);
    ASSERT_TRUE(first && second);
    ASSERT_TRUE((*first)->write("TAVIX", "MaxChartVals", "12"));
    ASSERT_TRUE((*second)->write("FRAME", "NavigatorShare", "0.3"));
    ASSERT_TRUE((*second)->write("TAVIX", "MaxFreqVals", "7"));
    ASSERT_TRUE((*first)->write("FRAME", "TableInformation", "1"));
    for (const auto* store : {&*first, &*second}) {
        EXPECT_EQ((*store)->read("TAVIX", "MaxChartVals"), "12");
        EXPECT_EQ((*store)->read("TAVIX", "MaxFreqVals"), "7");
        EXPECT_EQ((*store)->read("FRAME", "NavigatorShare"), "0.3");
        EXPECT_EQ((*store)->read("FRAME", "TableInformation"), "1");
    }
    // The later one of the same value counts.
    ASSERT_TRUE((*second)->write("tavix", "maxchartvals", "13"));
    EXPECT_EQ((*first)->read("TAVIX", "MaxChartVals"), "13");
}

TEST(SettingsFile, ProcessesThatWriteAtOnceLoseNothing) {
    constexpr int kWriters = 3;
    constexpr int kValues = 40;
    const testing::TempFolder folder;
    const std::string path = folder.file("s.ini");
    std::vector<pid_t> children;
    for (int writer = 0; writer < kWriters; ++writer) {
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            auto store = openSettingsFile(path);
            bool done = store.ok();
            for (int value = 0; done && value < kValues; ++value)
                done = (*store)->write("W" + std::to_string(writer), std::to_string(value), "x").ok();
            _exit(done ? 0 : 1);
        }
        children.push_back(child);
    }
    for (const pid_t child : children) {
        int status = 0;
        ASSERT_EQ(child, waitpid(child, &status, 0));
        EXPECT_EQ(0, status);
    }
    auto store = openSettingsFile(path);
    ASSERT_TRUE(store);
    int lost = 0;
    for (int writer = 0; writer < kWriters; ++writer) {
        for (int value = 0; value < kValues; ++value)
            lost += (*store)->read("W" + std::to_string(writer), std::to_string(value)) == "x" ? 0 : 1;
    }
    EXPECT_EQ(0, lost);
}

TEST(SettingsFile, AValueThatCannotBeKeptIsKeptWithTheNext) {
    const testing::TempFolder folder;
    const std::string path = folder.file("s.ini");
    auto store = openSettingsFile(path);
    ASSERT_TRUE(store);
    std::filesystem::create_directory(path);
    EXPECT_FALSE((*store)->write("TAVIX", "MaxChartVals", "12"));
    EXPECT_EQ((*store)->read("TAVIX", "MaxChartVals"), "12");
    std::filesystem::remove(path);
    ASSERT_TRUE((*store)->write("TAVIX", "MaxFreqVals", "7"));
    auto again = openSettingsFile(path);
    ASSERT_TRUE(again);
    EXPECT_EQ((*again)->read("TAVIX", "MaxChartVals"), "12");
    EXPECT_EQ((*again)->read("TAVIX", "MaxFreqVals"), "7");
}

} // namespace
} // namespace tavix
