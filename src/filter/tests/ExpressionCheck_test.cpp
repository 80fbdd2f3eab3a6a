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

TEST(ExpressionCheck, FindsTheNameThatIsBeingWritten) {
    const struct {
        const char* written;
        const char* name;
    } cases[] = {{"", ""},       {"lo", "lo"},         {"not LoW", "LoW"},     {"lower(", ""},
                 {"'left", ""},  {"'a' == le", "le"},  {"'it\\'s le", ""},     {"'a\\\\' le", ""},
                 {"`Val", ""},   {"`Value` le", "le"}, {"/* le", ""},          {"/* a */le", "le"},
                 {"/*/ le", ""}, {"12e", ""},          {"x < 10 or ri", "ri"}, {"If", ""},
                 {"ifn", "ifn"}, {"has_c", "has_c"},   {"`a``b` le", "le"},    {"4 / le", "le"},
                 {"\"left", ""}, {"\"it's\" le", "le"}};
    for (const auto& each : cases)
        EXPECT_EQ(each.name, NameBeingWritten(each.written)) << each.written;
}

} // namespace
} // namespace tavix
