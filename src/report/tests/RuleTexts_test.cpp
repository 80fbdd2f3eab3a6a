// The texts that suggested rules are made of: expressions, YAML, and conditions in one spelling.
#include "report/ExpressionText.h"
#include "report/KnownRules.h"
#include "report/YamlText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tavix {
namespace {

using namespace std::string_literals;
using ::testing::ElementsAre;

TEST(ExpressionText, QuotesFieldsTextsAndCharacters) {
    EXPECT_EQ("`a``b`", fieldText("a`b"));
    EXPECT_EQ(R"('O\'Brien')", literalText("O'Brien"));
    EXPECT_EQ(R"('C:\temp')", literalText(R"(C:\temp)"));
    EXPECT_EQ(R"('a\\'b')", literalText(R"(a\'b)")) << "a backslash before a quote";
    EXPECT_EQ(R"(concat('C:', char(92), char(92)))", literalText(R"(C:\\)"));
    EXPECT_EQ("''", literalText(""));
    EXPECT_EQ("\\.", regularText("."));
    EXPECT_EQ("[\\x5C]", regularText("\\"));
    EXPECT_EQ("é", regularText("é"));
}

TEST(YamlText, TakesThePlainestFormThatKeepsTheText) {
    EXPECT_EQ("Sample tables", yamlScalar("Sample tables"));
    EXPECT_EQ("'a: b'", yamlScalar("a: b"));
    EXPECT_EQ("'# no comment'", yamlScalar("# no comment"));
    EXPECT_EQ("\"it's\"", yamlScalar("it's"));
    EXPECT_EQ(R"('it''s "\d"')", yamlScalar(R"(it's "\d")"));
    EXPECT_EQ("'a '", yamlScalar("a "));
    EXPECT_EQ("'é€😀'", yamlScalar("é€😀"));
    EXPECT_EQ(R"("a\nb\t\x01\\\"")", yamlScalar("a\nb\t\x01\\\""));
    EXPECT_EQ(R"("\x85\u2028\uFEFF")", yamlScalar("\xC2\x85\u2028\uFEFF"));
    for (const char* word : {"true", "No", "NULL", "y", "12", "1e5", "~", "", "-", "- a", "{a", "2026-11-21"})
        EXPECT_EQ("'"s + word + "'", yamlScalar(word)) << "another kind of value without quotes";
}

TEST(YamlText, ACommentIsOneLine) {
    EXPECT_EQ(R"(a\nb # 'c' \u2028\x??)", yamlComment("a\nb # 'c' \u2028\xFF"));
    EXPECT_TRUE(isYamlText("a\nb"));
    EXPECT_FALSE(isYamlText("a\xFF"));
    EXPECT_FALSE(isYamlText("a\0b"s));
}

TEST(KnownRules, ConditionsAreComparedInOneSpelling) {
    EXPECT_EQ(conjunctsOf("tonumber(`a`) >= 1 AND\n `a`<=2"), conjunctsOf("`a` between 1 and 2"));
    EXPECT_EQ(conjunctsOf("`a` == \"x\""), conjunctsOf("`a` = 'x'"));
    EXPECT_EQ(conjunctsOf("ISNULL(`a`) or todate(`a`) > '2020-01-01'"), conjunctsOf("isnull(`a`) or `a`>'2020-01-01'"));
    EXPECT_NE(conjunctsOf("`a` = 'X'"), conjunctsOf("`a` = 'x'"));
    EXPECT_NE(conjunctsOf("`A` = 'x'"), conjunctsOf("`a` = 'x'"));
    EXPECT_THAT(conjunctsOf("`a` in ('x and y', 'z') and not isblank(`b`)"),
                ElementsAre("`a` in ( 'x and y' , 'z' ) ", "not isblank ( `b` ) "));
    EXPECT_THAT(conjunctsOf("(`a` = 1 and `b` = 2) and `c` between (1 and 2) and 3"),
                ElementsAre("( `a` = 1 and `b` = 2 ) ", "`c` >= ( 1 and 2 ) ", "`c` <= 3 "));
    // Parts of a choice hold only together.
    EXPECT_EQ(1U, conjunctsOf("`a` = 1 and `b` = 2 or `c` = 3").size());
    EXPECT_EQ(1U, conjunctsOf("`a` not between 1 and 2").size());
    // Garbage ends somewhere.
    for (const char* garbage : {"", "'", "`", "between", "and and", "a between", "((", "))) and", "'a\\'"})
        EXPECT_LE(conjunctsOf(garbage).size(), 3U) << garbage;
}

} // namespace
} // namespace tavix
