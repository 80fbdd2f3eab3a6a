#include "filter/ExpressionCheck.h"

#include <gtest/gtest.h>

namespace tavix {
namespace {

TEST(ExpressionCheck, TellsWhereAnExpressionIsWrong) {
    for (const char* good : {"", "`Count` > 10", "/*{{BEGIN CONDITIONS\r\n}}END CONDITIONS*/\r\n`Value` == 'a'",
                             "if isnull(`Value`) then\n   return false\nelse\n   return true\n"}) {
        const ExpressionCheck check = CheckFilterText(good);
        EXPECT_FALSE(check.error || check.remark) << good;
    }
    struct Case {
        const char* text;
        int line;
        int column;
    };
    for (const Case& each : {Case{" ", 1, 1}, Case{"`Count` > 10 and\n  nofunction(`Value`)", 2, 3},
                             Case{"'Ä€😀' == `Vlaue`", 1, 10}, Case{"lower(`Value`) == 'a\\'", 1, 19}}) {
        const auto error = CheckFilterText(each.text).error;
        ASSERT_TRUE(error) << each.text;
        EXPECT_EQ(each.line, error->line) << each.text;
        EXPECT_EQ(each.column, error->column) << each.text;
        EXPECT_FALSE(error->message.empty());
    }
}

TEST(ExpressionCheck, CountsLinesFromTheCodeBehindTheConditions) {
    const ExpressionCheck check =
        CheckFilterText("/*{{BEGIN CONDITIONS\r\nVALUES=\"*/\"\r\n}}END CONDITIONS*/\r\n`Count` > 1 and\n wrong(1)");
    ASSERT_TRUE(check.error);
    EXPECT_EQ(check.error->line, 2);
    EXPECT_EQ(check.linesBefore, 3);
}

TEST(ExpressionCheck, RemarksOnTextsThatAreComparedWithNumbers) {
    const ExpressionCheck check = CheckFilterText("`Count` > 1 and\n `Value` > 10");
    EXPECT_FALSE(check.error);
    ASSERT_TRUE(check.remark);
    EXPECT_EQ(check.remark->line, 2);
    EXPECT_EQ(check.remark->column, 10);
}

TEST(ExpressionCheck, SaysInOneLineWhatTheDialogShows) {
    using Kind = ExpressionNotice::Kind;
    EXPECT_EQ(NoticeOn("").text, "An empty expression removes the filter.");
    EXPECT_EQ(NoticeOn("`Count` > 1").text, "No errors.");
    EXPECT_FALSE(NoticeOn("`Count` > 1").fault);
    EXPECT_EQ(NoticeOn("`Count` > 1").kind, Kind::Fine);

    const ExpressionNotice warning = NoticeOn("`Count` > 1 and\n `Value` > 10");
    EXPECT_EQ(warning.kind, Kind::Warning);
    EXPECT_TRUE(warning.text.starts_with("Warning: line 2, column 10: ")) << warning.text;
    ASSERT_TRUE(warning.fault);
    EXPECT_EQ(warning.fault->column, 10);

    // The place counts from the first line of the whole text, since the box shows all of it.
    const ExpressionNotice error =
        NoticeOn("/*{{BEGIN CONDITIONS\r\nVALUES=\"*/\"\r\n}}END CONDITIONS*/\r\n`Count` > 1 and\n wrong(1)");
    EXPECT_EQ(error.kind, Kind::Error);
    ASSERT_TRUE(error.fault);
    EXPECT_EQ(error.fault->line, 5);
    EXPECT_TRUE(error.text.starts_with("Line 5, column 2: ")) << error.text;
}

} // namespace
} // namespace tavix
