#include "filter/ConditionBlock.h"
#include "filter/tests/Conditions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <random>

namespace tavix {
namespace {

using namespace tavix::testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr FilterAction kFails = FilterAction::RemoveFailing;
constexpr FilterAction kPasses = FilterAction::RemovePassing;

const std::string kBegin = "/*{{BEGIN CONDITIONS\r\n";
const std::string kEnd = "}}END CONDITIONS*/\r\n";

std::string record(const std::string& values, const std::string& operation = "0") {
    return withCrLf("OPERATION=" + operation +
                    "\nCONNECTOR=0\nCONDITIONTYPE=0\nLEFTPAREN=0\nRIGHTPAREN=0\nCASEINSENS=1\nWILDCARD=0\n"
                    "FIELDTYPE=4\nFIELDNAME=Value\nVALUES=" +
                    values + "\n");
}

ConditionList parse(const std::string& text) {
    const ParsedFilter parsed = ParseConditionBlock(text, kFails);
    EXPECT_TRUE(parsed.understood) << text;
    return parsed.conditions;
}

std::vector<std::string> valuesOf(const std::string& values) {
    const ConditionList list = parse(kBegin + record(values) + kEnd);
    EXPECT_EQ(list.size(), 1u);
    return list.empty() ? std::vector<std::string>() : list.front().values;
}

TEST(ConditionBlock, IsWrittenLineByLine) {
    EXPECT_EQ(WriteConditionBlock({}), "");
    EXPECT_EQ(WriteConditionBlock(longList()), expectedText("long_list.block"));
    EXPECT_EQ(WriteConditionBlock({anyCase(onValue(FilterOperation::EqualTo, {"abc", "d e"}))}),
              kBegin + record(R"("abc","d e")") + kEnd);
}

TEST(ConditionBlock, ReadsBackWithItsAction) {
    const std::string block = expectedText("long_list.block");
    for (const auto& [file, action] : {std::pair("long_list.keep.code", kFails), {"long_list.remove.code", kPasses}}) {
        const std::string text = block + expectedText(file);
        for (const FilterAction before : {kFails, kPasses}) {
            const ParsedFilter parsed = ParseConditionBlock(text, before);
            EXPECT_TRUE(parsed.understood);
            EXPECT_EQ(parsed.conditions, longList());
            EXPECT_EQ(parsed.action, action);
            EXPECT_TRUE(parsed.text.starts_with("/*{{begin conditions\r\noperation=0\r\n")) << parsed.text;
        }
    }
}

TEST(ConditionBlock, TheActionFollowsTheFirstReturnInAnyCase) {
    const struct {
        std::string code;
        FilterAction before;
        FilterAction after;
    } cases[] = {
        {"if x then RETURN TRUE else return false", kPasses, kFails},
        {"if x then Return False else RETURN true", kFails, kPasses},
        {"return true", kPasses, kPasses},
        {"return false", kFails, kFails},
        {"return  true return false", kPasses, kPasses},
        {"", kPasses, kPasses},
    };
    for (const auto& c : cases)
        EXPECT_EQ(ParseConditionBlock(kBegin + kEnd + c.code, c.before).action, c.after) << c.code;
    // Values are text like any other.
    const std::string values = kBegin + record("\"return false\"") + kEnd + "return true";
    EXPECT_EQ(ParseConditionBlock(values, kFails).action, kPasses);
}

TEST(ConditionBlock, WhatHasNoBlockIsNotUnderstood) {
    EXPECT_TRUE(ParseConditionBlock("", kPasses).understood);
    EXPECT_EQ(ParseConditionBlock("", kPasses).action, kPasses);
    for (const std::string text : {"Return TRUE else return false", "/*{{BEGIN CONDITIONS\nOPERATION=0\n", " ",
                                   "/*{{begin conditions\r\n", "}}END CONDITIONS*/\r\n"}) {
        const ParsedFilter parsed = ParseConditionBlock(text, kPasses);
        EXPECT_FALSE(parsed.understood);
        EXPECT_THAT(parsed.conditions, IsEmpty());
        EXPECT_EQ(parsed.text, text);
        EXPECT_EQ(parsed.action, kPasses);
    }
}

TEST(ConditionBlock, ABlockWithoutEndIsDroppedSilently) {
    for (const std::string& end :
         {std::string(), std::string("}}END CONDITIONS*/"), std::string("}}END CONDITIONS*/\n")}) {
        const ParsedFilter parsed =
            ParseConditionBlock(kBegin + record("\"a\"") + end + "return false return true", kFails);
        EXPECT_TRUE(parsed.understood);
        EXPECT_THAT(parsed.conditions, IsEmpty());
        EXPECT_EQ(parsed.action, kFails);
        EXPECT_EQ(parsed.text, "");
    }
}

TEST(ConditionBlock, ValuesAreTokensWithoutTheirEnds) {
    const struct {
        std::string line;
        std::vector<std::string> values;
    } cases[] = {
        {"", {}},
        {R"("")", {""}},
        {"x", {}},
        {"é", {}},
        {"bc", {""}},
        {"éxü", {"x"}},
        {R"("a",b,"c")", {"a", "c"}},
        {R"("a",bc,"c")", {"a", "", "c"}},
        {R"("d,e","f")", {"d,e", "f"}},
        {R"("a","b",)", {"a", "b"}},
        {R"(,,"a")", {"a"}},
        {R"("open,end)", {"open,en"}},
        {R"("a"b,"c"")", {"a\"", "c\""}},
        {R"("a"","b")", {R"(a"","b)"}},
        {R"( "a" )", {R"("a")"}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(valuesOf(c.line), c.values) << c.line;
    // A double quote inside a value is lost as the end of it.
    const std::vector<std::string> quoted = {"a\"", "b"};
    EXPECT_NE(parse(WriteConditionBlock({onValue(FilterOperation::EqualTo, quoted)})).front().values, quoted);
}

TEST(ConditionBlock, NumbersAreTheLeadingDigits) {
    const struct {
        std::string text;
        std::int32_t number;
    } cases[] = {{"16", 16},  {" 5x", 5},    {"", 0},    {"x5", 0},
                 {"-3", -3},  {"+4", 4},     {"1.9", 1}, {"99999999999999999999", std::numeric_limits<int>::max()},
                 {"0x10", 0}, {"4711", 4711}};
    for (const auto& c : cases)
        EXPECT_EQ(static_cast<std::int32_t>(parse(kBegin + record("", c.text) + kEnd).front().operation), c.number)
            << c.text;
    const std::string flags = withCrLf("OPERATION=0\nCONNECTOR=1\nCONDITIONTYPE=2\nLEFTPAREN=-1\nRIGHTPAREN=yes\n"
                                       "CASEINSENS=2\nWILDCARD= 1\nFIELDTYPE=9\nFIELDNAME= any name \nVALUES=\n");
    const CCondition read = parse(kBegin + flags + kEnd).front();
    EXPECT_TRUE(read.leftParen && read.caseInsensitive && read.wildcard);
    EXPECT_FALSE(read.rightParen);
    EXPECT_EQ(read.conditionType, ConditionType::Parenthesis);
    EXPECT_EQ(static_cast<int>(read.fieldType), 9);
    EXPECT_EQ(read.fieldName, " any name ");
}

TEST(ConditionBlock, AFaultKeepsWhatStandsBeforeIt) {
    const std::string two = record("\"a\"") + record("\"b\"", "5");
    const std::string code = "return false return true";
    // Wherever the text is cut, complete records are kept and the action is found after the block.
    for (std::size_t length = 0; length <= two.size(); ++length) {
        const ParsedFilter parsed = ParseConditionBlock(kBegin + two.substr(0, length) + kEnd + code, kFails);
        const std::size_t whole = length == two.size() ? 2u : length >= record("\"a\"").size() ? 1u : 0u;
        ASSERT_EQ(parsed.conditions.size(), whole) << length;
        ASSERT_EQ(parsed.action, kPasses) << length;
    }
    std::string broken = two;
    broken.replace(broken.rfind("WILDCARD"), 8, "WILDCART");
    EXPECT_THAT(parse(kBegin + broken + kEnd), ElementsAre(anyCase(onValue(FilterOperation::EqualTo, {"a"}))));
}

TEST(ConditionBlock, AKeyBehindItsLineGivesNothingAndReadingGoesOn) {
    // Without the connector's line each later key is only found after the line that is read for it.
    std::string text = record("\"a\"") + record("\"b\"", "5");
    text.erase(text.find("CONNECTOR"), std::string_view("CONNECTOR=0\r\n").size());
    const ConditionList list = parse(kBegin + text + kEnd);
    ASSERT_EQ(list.size(), 1u);
    EXPECT_EQ(list[0].fieldName, "");
    EXPECT_EQ(list[0].fieldType, FieldTypeCode::None);
    EXPECT_FALSE(list[0].caseInsensitive);
    EXPECT_THAT(list[0].values, IsEmpty());

    // A key may be anywhere in its line, and the text before it does not matter.
    EXPECT_EQ(parse(kBegin + "xOPERATION=" + record("\"a\"", "3").substr(10) + kEnd).front().operation,
              FilterOperation::LessThan);
    // An extra line at the beginning moves all keys past their lines.
    const ConditionList shifted = parse(kBegin + "\r\n" + record("\"a\"", "3") + kEnd);
    ASSERT_EQ(shifted.size(), 1u);
    EXPECT_EQ(shifted[0], CCondition());
}

TEST(ConditionBlock, AnyListWithoutQuotesAndLineBreaksSurvives) {
    std::mt19937 random(5);
    const auto below = [&](int bound) { return static_cast<int>(random() % static_cast<unsigned>(bound)); };
    const std::string pieces[] = {"a", ",", "'", "\\", "é", "=", " ", "VALUES=", "OPERATION=", "😀"};
    for (int round = 0; round < 2000; ++round) {
        ConditionList list(static_cast<std::size_t>(below(5)));
        for (CCondition& c : list) {
            c.operation = static_cast<FilterOperation>(below(40) - 10);
            c.connector = static_cast<Connector>(below(3));
            c.conditionType = static_cast<ConditionType>(below(4));
            c.leftParen = below(2) == 1;
            c.rightParen = below(2) == 1;
            c.caseInsensitive = below(2) == 1;
            c.wildcard = below(2) == 1;
            c.fieldType = static_cast<FieldTypeCode>(below(6));
            c.fieldName = pieces[static_cast<std::size_t>(below(10))];
            c.values.resize(static_cast<std::size_t>(below(4)));
            for (std::string& value : c.values)
                for (int length = below(6); length > 0; --length)
                    value += pieces[static_cast<std::size_t>(below(10))];
        }
        ASSERT_EQ(parse(WriteConditionBlock(list)), list) << WriteConditionBlock(list);
    }
}

TEST(ConditionBlock, KeysFarBehindTheirLinesCostNoMore) {
    // Searching each key from each line would take hours.
    std::string text = kBegin;
    for (int line = 0; line < 1'000'000; ++line)
        text += "\r\n";
    text += "OPERATION=CONNECTOR=CONDITIONTYPE=LEFTPAREN=RIGHTPAREN=CASEINSENS=WILDCARD=FIELDTYPE=FIELDNAME=VALUES=";
    EXPECT_EQ(parse(text + kEnd).size(), 100'000u);
}

} // namespace
} // namespace tavix
