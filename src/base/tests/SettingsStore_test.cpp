#include "base/SettingsStore.h"
#include "base/tests/TempFolder.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

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

} // namespace
} // namespace tavix
