#include "base/HeldRepositories.h"
#include "base/tests/TempFolder.h"
#include "filter/FilterFile.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

namespace tavix {
namespace {

std::string written(const std::string& text) {
    return filterFileBytes(text);
}

std::string readBack(const std::string& bytes) {
    std::istringstream file(bytes);
    const LoadedFilter loaded = readFilter(file);
    if (const auto* problem = std::get_if<FilterFileProblem>(&loaded))
        return "error: " + problem->text;
    return std::get<std::string>(loaded);
}

TEST(FilterFile, IsALengthAndSoManyBytes) {
    EXPECT_EQ(written(""), std::string("\0\0", 2));
    EXPECT_EQ(written("aü"), std::string("\x03\0aü", 5));
    EXPECT_EQ(written(std::string(0x0102, 'x')), "\x02\x01" + std::string(0x0102, 'x'));
    for (const std::string& text : {std::string(), std::string("a\r\nb\0c€", 9), std::string(65535, 'x')})
        EXPECT_EQ(readBack(written(text)), text);
}

TEST(FilterFile, ATextOf64KiBIsCutByItsLength) {
    EXPECT_EQ(written(std::string(65536, 'x')), std::string("\0\0", 2));
    EXPECT_EQ(written(std::string(65536, 'x') + "yz"), std::string("\x02\0xx", 4));
    EXPECT_EQ(written(std::string(2 * 65536 - 1, 'x')), "\xFF\xFF" + std::string(65535, 'x'));
}

TEST(FilterFile, WhatIsTooShortIsRefusedAndTheRestIgnored) {
    EXPECT_EQ(readBack(""), "error: Invalid filter file");
    EXPECT_EQ(readBack("\x01"), "error: Invalid filter file");
    EXPECT_EQ(readBack(std::string("\x01\0", 2)), "error: Invalid or corrupt filter file");
    EXPECT_EQ(readBack("\xFF\xFF" + std::string(65534, 'x')), "error: Invalid or corrupt filter file");
    EXPECT_EQ(readBack(std::string("\x01\0ab", 4)), "a");
    EXPECT_EQ(readBack(std::string("\0\0ab", 4)), "");
    EXPECT_EQ(readBack(std::string("\x03\0a\xFF\xC3", 5)), "a\uFFFD\uFFFD");
}

TEST(FilterFile, OpensFilesOnly) {
    const testing::TempFolder folder;
    const FilterFileProblem cannot{"Unable to open filter file", "File Open Error"};
    for (const std::string& path : {folder.file("missing.flt"), folder.path().string(), std::string()})
        EXPECT_EQ(loadFilter(path), LoadedFilter(cannot)) << path;
    for (const std::string& path : {folder.file("no/such/folder.flt"), folder.path().string(), std::string()})
        EXPECT_EQ(saveFilter(path, "x"), cannot) << path;
    EXPECT_FALSE(saveFilter(folder.file("a b.flt"), "x"));
    EXPECT_EQ(loadFilter(folder.file("a b.flt")), LoadedFilter("x"));
}

// A repository in use is named as the reason, under the same caption.
TEST(FilterFile, DoesNotTouchARepositoryInUse) {
    const testing::TempFolder folder;
    const std::string path = folder.file("r.tavix");
    std::ofstream(path) << "repository";
    const HeldRepository held(path);
    const LoadedFilter loaded = loadFilter(path);
    const auto* problem = std::get_if<FilterFileProblem>(&loaded);
    ASSERT_TRUE(problem);
    EXPECT_NE(problem->text.find("belongs to the repository"), std::string::npos) << problem->text;
    EXPECT_EQ(problem->caption, "File Open Error");
    EXPECT_EQ(saveFilter(path, "x"), *problem);
}

TEST(FilterFile, AFullDiskIsReported) {
    if (!std::filesystem::exists("/dev/full"))
        GTEST_SKIP() << "this system has no /dev/full";
    for (const std::string& text : {std::string(), std::string(60000, 'x')})
        EXPECT_EQ(saveFilter("/dev/full", text), (FilterFileProblem{"Unable to write filter file", "File Error"}));
}

TEST(FilterFile, KindsAreThoseOfAFileDialog) {
    EXPECT_EQ(filterFileKinds(), (std::vector<std::string>{"Filter Files (*.flt)", "All Files (*)"}));
}

} // namespace
} // namespace tavix
