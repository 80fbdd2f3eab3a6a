#include "expression/RowEvaluator.h"
#include "findings/FieldFindings.h"
#include "findings/ValueDetectors.h"
#include "findings/ValueLists.h"
#include "findings/tests/Columns.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace tavix::findings {
namespace {

/// Values at the edges of the tests: each with its neighbours that just fail.
const std::vector<std::string>& edges() {
    static const std::vector<std::string> kEdges = {
        " a",
        "a ",
        "a",
        "\xC2\xA0"
        "a",
        "a\xE3\x80\x80",
        " ",
        "\xC2\xA0",
        "\xC2\x85"
        "a",
        "a  b",
        " a b",
        "a\tb",
        "a\n",
        "\n",
        "\r",
        "\x01",
        "a\x7F",
        "\xC2\x85",
        "\xC2\x9F"
        "x",
        "\xC2\xAD",
        "a\xE2\x80\x8B"
        "b",
        "\xE2\x80\x8E",
        "\xE2\x80\x8F",
        "\xE2\x80\x8C",
        "\xE2\x81\xA0",
        "\xEF\xBB\xBF"
        "id",
        "\xE2\x80\x80",
        "\xE2\x80\x8A"
        "x",
        "\xE2\x80\xAF",
        "\xE2\x81\x9F",
        "\xEF\xBF\xBD",
        "M\xEF\xBF\xBDller",
        "M\xC3\x83\xC2\xBCller",
        "\xC3\x82\xC2\xA0",
        "\xC3\xA2\xE2\x82\xAC\xE2\x84\xA2",
        "\xC3\x83"
        "a",
        "M?ller",
        "Really?",
        "a?b=c",
        "http://a/?b",
        "e\xCC\x81",
        "a\xD0\xB0",
        "\xD0\xB0\xD0\xB1",
        "\xD0\xB0 b",
        "&amp;",
        "&a;",
        "AT&T",
        "<br>",
        "<br/>",
        "<b class=x>y</b>",
        "a < b",
        "&#39;",
        "\\u00e9",
        "\\x41",
        "a\\\"b",
        "C:\\new",
        "\"a\"",
        "\"",
        "'a'",
        "'",
        "'a\"",
        "a;b",
        "a|b",
        "{\"a\": 1}",
        "[1, 2]",
        "[\"x\"]",
        "<a>x</a>",
        "[Rec]",
        "a,",
        ",",
        "a;",
        "#N/A",
        "#REF!",
        "#1",
        "=A1",
        "=1",
        "=(2)",
        "==",
        "1.2E+05",
        "1e+5",
        "12E+05",
        "1.5E+100",
        "+1E+10",
        "'007",
        "'a1",
        "'-1.5",
        "(500)",
        "(1,234.50)",
        "(a)",
        "()",
        "5-",
        "5.5-",
        "5--",
        "12 kg",
        "12kg",
        "5.3mm",
        "-1.5 %",
        "7%",
        "$5",
        "$ 5",
        "\xE2\x82\xAC"
        "5",
        "5 \xE2\x82\xAC",
        "5\xC2\xB0"
        "C",
        "12A",
        "12 A",
        "007",
        "0",
        "00",
        "7",
        "10",
        "xxx",
        "xx",
        "---",
        "III",
        "999",
        "\xC3\xA4\xC3\xA4\xC3\xA4",
        "\xC3\xA4\xC3\xA4",
        "aab",
        "ABC",
        "ABc",
        "\xC3\x84",
        "\xC3\xA4",
        "\xC3\x9F",
        "a@b.de",
        "a@b",
        "a b@c.de",
        "@b.de",
        ".a@b.de",
        "a@.b.de",
        "a@b..de",
        "a@b.d",
        "a@b.d1",
        "a@b@c.de",
        "a@b.de ",
        "a@-b.de",
        "a@b_c.de",
        "(555) 123-4567",
        "(555)123.4567",
        "(555)  123-4567",
        "(555) 123 456",
        "555.123 4567",
        "5551234567",
        "+1 (555) 123-4567",
        "+1 555 1234 ",
        "+1234567",
        "+12345678",
        "+12345678901234567890",
        "+123456789012345678901",
        "+1,555,123,4567",
        "A.B+c@d-e.f.com",
        "+49 170 1234567",
        "+491701234567",
        "(030) 123-4567",
        "123-456-7890",
        "123 456-7890",
        "123-45-6789",
        "923-45-6789",
        "123.456.7890",
        "2001-02-03",
        "http://a.b",
        "www.a.b",
        "www.a",
        "HTTPS://X",
        "ftp://x",
        "example.com",
        "1.2.3.4",
        "256.1.1.1",
        "1.2.3",
        "1:2:3:4:5:6:7:8",
        "::1",
        "2001:0db8:0000:0000:0000:ff00:0042:8329",
        "4111111111111111",
        "4111 1111 1111 1111",
        "4111111111111112",
        "378282246310005",
        "3782 822463 10005",
        "DE89370400440532013000",
        "DE89 3704 0044 0532 0130 00",
        "DE00370400440532013000",
        "GB82WEST12345698765432",
        "AB123456C",
        "AB 12 34 56 C",
        "AB12 34 56C",
        "12 Main Street",
        "12 Main St.",
        "12a North 5th Ave, Apt 3",
        "Main Street",
        "12 Angry Men",
        "1 \xC3\xA9 st",
        "N/A",
        "n/a",
        "unknown",
        "Unknown",
        "uNknown",
        "-",
        "?",
        "null",
        "none",
        "test",
        "it's",
        "back\\slash\\",
        "both\\'",
        "`Value`",
        "",
    };
    return kEdges;
}

std::string randomText(std::mt19937& random) {
    static const std::vector<std::string> kPieces = {"a",
                                                     "b",
                                                     "Z",
                                                     "S",
                                                     "t",
                                                     "0",
                                                     "1",
                                                     "4",
                                                     "9",
                                                     " ",
                                                     ".",
                                                     "-",
                                                     ":",
                                                     "/",
                                                     ",",
                                                     ";",
                                                     "@",
                                                     "\"",
                                                     "'",
                                                     "&",
                                                     "<",
                                                     ">",
                                                     "\\",
                                                     "|",
                                                     "\t",
                                                     "\n",
                                                     "\x02",
                                                     "#",
                                                     "=",
                                                     "(",
                                                     ")",
                                                     "?",
                                                     "$",
                                                     "%",
                                                     "+",
                                                     "{",
                                                     "[",
                                                     "]",
                                                     "_",
                                                     "\xC3\xA9",
                                                     "\xC2\xA0",
                                                     "\xE2\x80\x8B",
                                                     "\xEF\xBF\xBD",
                                                     "\xC3\x83",
                                                     "\xC2\xBC",
                                                     "\xCC\x81",
                                                     "\xD0\xB0",
                                                     "\xE2\x82\xAC",
                                                     "kg",
                                                     "E+",
                                                     "www.",
                                                     "http://",
                                                     "st",
                                                     "\xF0\x9F\x98\x80"};
    std::string text;
    for (std::size_t i = random() % 9; i > 0; --i)
        text += kPieces[random() % kPieces.size()];
    return text;
}

/// Of one value alone.
Hits passedAlone(ValueTest test, const std::string& text) {
    ValueDetectors values;
    values.take(text, byteMask(text), 3, text.size(), isBlank(text));
    return values.passed(test);
}

TEST(ValueTests, TheConditionIsTrueForExactlyTheValuesThatPass) {
    std::vector<std::string> texts = edges();
    std::mt19937 random(18);
    for (int i = 0; i < 4000; ++i)
        texts.push_back(randomText(random));
    std::vector<std::size_t> passed(kValueTestCount);
    for (const ValueTestInfo& info : valueTests()) {
        const testing::Condition condition(info.condition);
        for (const std::string& text : texts) {
            const bool isTrue = condition.isTrue(text);
            passed[static_cast<std::size_t>(info.test)] += isTrue ? 1 : 0;
            EXPECT_EQ(passedAlone(info.test, text), isTrue ? (Hits{1, 3}) : Hits{}) << info.condition << " of " << text;
        }
        EXPECT_GT(passed[static_cast<std::size_t>(info.test)], 1U) << "no value passes " << info.condition;
    }
}

TEST(ValueTests, AnyTextCanBeListedInACondition) {
    std::vector<std::string> texts = edges();
    std::mt19937 random(7);
    for (int i = 0; i < 2000; ++i)
        texts.push_back(randomText(random) + (i % 5 == 0 ? "\\'" : i % 5 == 1 ? "\\" : ""));
    for (const std::string& text : texts) {
        const testing::Condition condition(listCondition("`Value`", {text}));
        EXPECT_TRUE(condition.isTrue(text)) << text;
        EXPECT_FALSE(condition.isTrue(text + "x")) << text;
    }
}

TEST(ValueTests, ListsOfValuesDoNotDependOnTheirOrder) {
    const auto listed = [](std::vector<std::string> texts) {
        TextList list(3, 5);
        for (const std::string& text : texts)
            list.add(text, 1);
        return list.condition();
    };
    EXPECT_EQ(listed({"b", "a"}), "`Value` in ('a', 'b')");
    EXPECT_EQ(listed({"a", "b"}), "`Value` in ('a', 'b')");
    EXPECT_EQ(listed({"a", "b", "c", "d"}), "") << "too many";
    EXPECT_EQ(listed({"a", "longer"}), "") << "one was left out";
}

} // namespace
} // namespace tavix::findings
