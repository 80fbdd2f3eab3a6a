#include "filter/FilterSummary.h"
#include "filter/tests/Conditions.h"

#include <gtest/gtest.h>

namespace tavix {
namespace {

using namespace tavix::testing;
using Operation = FilterOperation;

std::string codeOf(const CCondition& condition) {
    const std::string text = BuildExpression({condition}, FilterAction::RemoveFailing);
    const std::string rest = " then\r\n   return true\r\nelse\r\n   return false\r\n";
    EXPECT_TRUE(text.starts_with("if ") && text.ends_with(rest)) << text;
    return text.size() < rest.size() + 3 ? text : text.substr(3, text.size() - rest.size() - 3);
}

TEST(FilterText, EveryComparisonInCodeAndInWords) {
    struct Case {
        CCondition condition;
        std::string code;
        std::string words;
    };
    const std::vector<Case> cases = {
        {onValue(Operation::EqualTo, {"a"}), "`Value` == 'a'", R"(Value equal to "a")"},
        {onValue(Operation::EqualTo, {""}), "`Value` == ''", R"(Value equal to "")"},
        {anyCase(onValue(Operation::EqualTo, {"aBc"})), "lower(`Value`) == 'abc'",
         R"(Value equal to "aBc" (case insensitive))"},
        {onValue(Operation::NotEqualTo, {"O'Brien"}), R"(`Value` != 'O\'Brien')", R"(Value not equal to "O'Brien")"},
        {onValue(Operation::EqualTo, {R"(a\b'')"}), R"(`Value` == 'a\b\'\'')", R"(Value equal to "a\b''")"},
        {onValue(Operation::EqualTo, {"a", "b"}), "inlist(`Value`,'a','b')",
         "(Value equal to \"a\" OR\r\nValue equal to \"b\")"},
        {anyCase(onValue(Operation::NotEqualTo, {"A'", "ÄΣ", "c"})), R"(not inlist(lower(`Value`),'a\'','äσ','c'))",
         "(Value not equal to \"A'\" (case insensitive) AND\r\nValue not equal to \"ÄΣ\" (case insensitive) AND\r\n"
         "Value not equal to \"c\" (case insensitive))"},
        {wild(onValue(Operation::EqualTo, {"a*'?"})), R"(match_string(`Value`,'a*\'?'))", R"(Value like "a*'?")"},
        {anyCase(wild(onValue(Operation::NotEqualTo, {"A*"}))), "not match_string(lower(`Value`),'a*')",
         R"(Value not like "A*" (case insensitive))"},
        {wild(onValue(Operation::EqualTo, {"a*", "b"})), "inlist(`Value`,'a*','b')",
         "(Value like \"a*\" OR\r\nValue like \"b\")"},
        {onValue(Operation::EqualTo), "inlist(`Value`,)", ""},
        {onValue(Operation::GreaterThan, {"m"}), "`Value` > 'm'", R"(Value greater than "m")"},
        {anyCase(onValue(Operation::GreaterThanOrEqualTo, {"M"})), "lower(`Value`) >= 'm'",
         R"(Value greater than or equal to "M" (case insensitive))"},
        {onValue(Operation::LessThan, {"m", "n"}), "`Value` < 'm'", R"(Value less than "m")"},
        {onValue(Operation::LessThanOrEqualTo), "`Value` <= ''", R"(Value less than or equal to "")"},
        {onValue(Operation::Contains, {"x'y"}), R"(instr(`Value`,'x\'y') != 0)", R"(Value contains "x'y")"},
        {anyCase(onValue(Operation::DoesNotContain, {"XY"})), "instr(lower(`Value`),'xy') == 0",
         R"(Value does not contain "XY" (case insensitive))"},
        {onValue(Operation::BeginsWith, {"abc"}), "compare(left(`Value`,3),'abc',false) == 0",
         R"(Value begins with "abc")"},
        {anyCase(onValue(Operation::BeginsWith, {"ABc"})), "compare(left(`Value`,3),'ABc',true) == 0",
         R"(Value begins with "ABc" (case insensitive))"},
        {onValue(Operation::EndsWith, {"é'€😀"}), R"(compare(right(`Value`,4),'é\'€😀',false) == 0)",
         R"(Value ends with "é'€😀")"},
        {onValue(Operation::EndsWith), "compare(right(`Value`,0),'',false) == 0", R"(Value ends with "")"},
        {onValue(Operation::IsUppercase), "upper(`Value`) == `Value`", "Value is uppercase"},
        {onValue(Operation::IsNotUppercase), "upper(`Value`) != `Value`", "Value is not uppercase"},
        {onValue(Operation::IsLowercase), "lower(`Value`) == `Value`", "Value is lowercase"},
        {onValue(Operation::IsNotLowercase), "lower(`Value`) != `Value`", "Value is not lowercase"},
        {onValue(Operation::IsNumeric), "isnumber(`Value`)", "Value is numeric"},
        {onValue(Operation::IsNotNumeric), "not isnumber(`Value`)", "Value is not numeric"},
        {onValue(Operation::IsNull), "isnull(`Value`)", "Value is null"},
        {onValue(Operation::IsNotNull), "not isnull(`Value`)", "Value is not null"},
        {onValue(Operation::HasControlCharacters), "has_control_chars(`Value`)", "Value has control characters"},
        {onCount(Operation::GreaterThan, {"10"}), "`Count` > 10", "Count greater than 10"},
        {onCount(Operation::EqualTo, {"ten"}), "`Count` == ten", "Count equal to ten"},
        {onCount(Operation::NotEqualTo, {"1", "2"}), "not inlist(`Count`,1,2)",
         "(Count not equal to 1 AND\r\nCount not equal to 2)"},
        {onCount(Operation::EqualTo, {"", "2"}), "inlist(`Count`,,2)", "(Count equal to  OR\r\nCount equal to 2)"},
        {anyCase(wild(onCount(Operation::EqualTo, {"5*"}))), "`Count` == 5*", "Count like 5*"},
        {onCount(Operation::Contains, {"5"}), "instr(`Count`,'5') != 0", "Count contains 5"},
        {anyCase(onCount(Operation::DoesNotContain, {"E5"})), "instr(lower(`Count`),'e5') == 0",
         "Count does not contain E5"},
        {onValue(static_cast<Operation>(19), {"x"}), "`Value` unknown operation 19", "Value unknown operation 19"},
        {onValue(static_cast<Operation>(-1), {"x"}), "`Value` unknown operation -1",
         R"(Value unknown operation -1 "x")"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(codeOf(c.condition), c.code);
        EXPECT_EQ(BuildPlainText({c.condition}), c.words);
    }
}

TEST(FilterText, ALongListReadsAsWrittenDown) {
    EXPECT_EQ(BuildExpression(longList(), FilterAction::RemoveFailing), expectedText("long_list.keep.code"));
    EXPECT_EQ(BuildExpression(longList(), FilterAction::RemovePassing), expectedText("long_list.remove.code"));
    EXPECT_EQ(BuildPlainText(longList()), expectedText("long_list.words"));
}

TEST(FilterText, AListWithAFaultIsShownInWordsOnly) {
    const CCondition a = onCount(Operation::LessThan, {"3"});
    CCondition closing = a;
    closing.rightParen = true;
    struct Case {
        ConditionList list;
        std::string code;
        std::string words;
    };
    const std::vector<Case> cases = {
        {{}, "", ""},
        {{kOpen}, "Condition list contains an extra left parenthesis", "("},
        {{closing}, "Condition list contains an extra right parenthesis", "Count less than 3)"},
        {{kOpen, a, kAnd}, "Condition list contains an extra left parenthesis", "(Count less than 3 AND\r\n"},
        {{kClose, a, kAnd}, "Condition list contains an extra right parenthesis", ")Count less than 3 AND\r\n"},
        {{a, kOr}, "Condition list cannot end with AND or OR", "Count less than 3 OR\r\n"},
    };
    for (const Case& c : cases) {
        for (const FilterAction action : {FilterAction::RemoveFailing, FilterAction::RemovePassing})
            EXPECT_EQ(BuildExpression(c.list, action),
                      c.code.empty() ? "" : "Cannot display expression:\r\n\r\n" + c.code);
        EXPECT_EQ(BuildPlainText(c.list), c.words);
    }
    // A parenthesis entry that says neither closes, though it does not count.
    EXPECT_EQ(codeOf(parenthesis(false, false)), ")");
    EXPECT_EQ(codeOf(parenthesis(true, true)), "(");
}

TEST(FilterText, UnknownKindsOfEntriesNeverVanish) {
    CCondition odd;
    odd.conditionType = static_cast<ConditionType>(7);
    EXPECT_EQ(codeOf(odd), " unknown condition type 7 ");
    EXPECT_EQ(BuildPlainText({joined(static_cast<Connector>(2)), odd}),
              " UNKNOWN CONNECTOR 2\r\n unknown condition type 7 ");
}

TEST(FilterText, TheSummaryIsOneLineThatSaysWhatStays) {
    EXPECT_EQ(FilterSummary(""), "");
    EXPECT_EQ(FilterSummary(expectedText("long_list.block") + expectedText("long_list.remove.code")),
              "not (((Value equal to \"abc\" (case insensitive) OR Value equal to \"d e\" (case insensitive)) AND "
              "Count greater than or equal to 10) OR ((Value is null) OR Value not like \"O'*\"))");
    EXPECT_EQ(FilterSummary("  if `Count` > 1\n\n then return  true "), "if `Count` > 1 then return true");
}

} // namespace
} // namespace tavix
