#include "access/Layouts.h"
#include "base/tests/SourceFolder.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <string>

namespace tavix {
namespace {

/// The expected lists of docs/cursors.md.
std::string expectedList() {
    std::string text;
    for (const layout::Layout& layout : layout::all()) {
        text += fmt::format("{}## {}\n| Column | Heading |\n|---|---|\n", text.empty() ? "" : "\n", layout.operation);
        for (const layout::Column& column : layout.columns)
            text += fmt::format("| {} | {}{} |\n", column.index, column.name,
                                column.form == layout::Form::Date ? " (date)" : "");
    }
    return text;
}

TEST(Layouts, ColumnsAreNumberedAsTheyFollowEachOther) {
    std::set<std::string_view> operations;
    for (const layout::Layout& layout : layout::all()) {
        EXPECT_TRUE(operations.insert(layout.operation).second) << layout.operation;
        int expected = 0;
        for (const layout::Column& column : layout.columns)
            EXPECT_EQ(column.index, expected++) << layout.operation;
    }
    EXPECT_EQ(layout::of("getFieldListPKR").columns[layout::kFieldListPkrMetrics].name, "Count");
    EXPECT_EQ(layout::of("getGlobalCollFieldList").columns[layout::kCollectionFieldListMetrics].name, "Count");
    EXPECT_EQ(layout::of("getGlobalCollFieldListPKR").columns[layout::kCollectionFieldListPkrMetrics].name, "Count");
    EXPECT_EQ(layout::of("getFieldHistory").columns[layout::kFieldHistoryMetrics].name, "Count");
}

TEST(Layouts, TheDocumentationListsThemAsTheyAre) {
    std::ifstream file(testing::sourceFile("docs/cursors.md"));
    std::string text{std::istreambuf_iterator<char>(file), {}};
    auto begin = text.find("## ");
    ASSERT_NE(begin, std::string::npos);
    EXPECT_EQ(text.substr(begin), expectedList()) << "docs/cursors.md is out of date; the list above is right:\n"
                                                  << expectedList();
}

} // namespace
} // namespace tavix
