#include "base/tests/TempFolder.h"
#include "source/FileSetReader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

namespace tavix::source {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

std::string write(const std::string& path, std::string_view content) {
    std::ofstream(path, std::ios::binary) << content;
    return path;
}

std::string firstCells(FileSetReader& reader) {
    std::string cells;
    RowBlock block;
    for (;;) {
        const auto more = reader.read(block);
        if (!more)
            return cells + " " + more.error().text;
        if (!*more)
            return cells;
        for (std::size_t r = 0; r < block.rows; ++r)
            cells.append(block.columns[0][r].data, block.columns[0][r].size);
    }
}

TEST(FileSetReader, ReadsEqualFilesOneAfterTheOther) {
    testing::TempFolder folder;
    const std::string a = write(folder.file("a"), "x,y\n1,2\n2\n");
    const std::string c = write(folder.file("c"), "x;y\r\n3;\"4;\"\r\n4\r\n\r\n5;6;7\r\n");
    const std::string d = write(folder.file("d"), "x,y\n");
    auto reader = FileSetReader::open({a, c, d}, {});
    ASSERT_TRUE(reader.ok());
    ASSERT_TRUE((*reader)->checkColumns().ok());
    EXPECT_EQ(firstCells(**reader), "12345");
    EXPECT_THAT((*reader)->rowsOfFiles(), ElementsAre(2, 3, 0));
    EXPECT_EQ((*reader)->position(), (*reader)->total());
    EXPECT_EQ((*reader)->damagedRowCount(), 3);
    ASSERT_EQ((*reader)->damagedRows().size(), 3U);
    EXPECT_EQ((*reader)->damagedRows()[0].file, 0U);
    EXPECT_EQ((*reader)->damagedRows()[2].file, 1U);
    EXPECT_EQ((*reader)->damagedRows()[2].line, 5);
}

TEST(FileSetReader, NamesTheFileThatHasOtherColumns) {
    testing::TempFolder folder;
    const std::string a = write(folder.file("a"), "x,y\n1,2\n");
    const std::string b = write(folder.file("b"), "x,z\n1,2\n");
    const std::string c = write(folder.file("c"), "x,y,z\n1,2,3\n");
    for (const std::string& other : {b, c}) {
        auto reader = FileSetReader::open({a, other}, {});
        const Status status = (*reader)->checkColumns();
        ASSERT_FALSE(status.ok());
        EXPECT_THAT(status.error().text, HasSubstr(other));
        EXPECT_THAT(firstCells(**reader), HasSubstr("1 " + status.error().text));
    }
    EXPECT_TRUE((*FileSetReader::open({a, c}, {std::nullopt, false}))->checkColumns().error().text.find("2 and") !=
                std::string::npos);
    EXPECT_FALSE((*FileSetReader::open({a, folder.file("none")}, {}))->checkColumns().ok());
}

} // namespace
} // namespace tavix::source
