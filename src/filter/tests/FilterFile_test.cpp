#include "base/tests/TempFolder.h"
#include "filter/FilterFile.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

namespace tavix {
namespace {

std::string written(const std::string& text) {
    return filterFileBytes(text);
}

std::string readBack(const std::string& bytes) {
    std::istringstream file(bytes);
    const auto text = readFilter(file);
    return text ? *text : "error: " + text.error().text;
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
    const std::string cannot = "Unable to open filter file";
    for (const std::string& path : {folder.file("missing.flt"), folder.path().string(), std::string()})
        EXPECT_EQ(openFilterToRead(path).error().text, cannot);
    for (const std::string& path : {folder.file("no/such/folder.flt"), folder.path().string(), std::string()})
        EXPECT_EQ(openFilterToWrite(path).error().text, cannot);
    {
        auto file = openFilterToWrite(folder.file("a b.flt"));
        ASSERT_TRUE(file);
        ASSERT_TRUE(writeFilter(**file, "x"));
    }
    auto file = openFilterToRead(folder.file("a b.flt"));
    ASSERT_TRUE(file);
    EXPECT_EQ(*readFilter(*file), "x");
}

TEST(FilterFile, AFullDiskIsReported) {
    if (!std::filesystem::exists("/dev/full"))
        GTEST_SKIP() << "this system has no /dev/full";
    for (const std::string& text : {std::string(), std::string(60000, 'x')}) {
        auto file = openFilterToWrite("/dev/full");
        ASSERT_TRUE(file);
        EXPECT_EQ(writeFilter(**file, text).error().text, "Unable to write filter file");
    }
}

} // namespace
} // namespace tavix
