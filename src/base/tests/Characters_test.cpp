#include "base/Characters.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace tavix {
namespace {

using testing::ElementsAre;
using testing::Pair;

std::vector<std::pair<std::int32_t, std::string>> charactersOf(std::string_view text) {
    std::vector<std::pair<std::int32_t, std::string>> characters;
    forEachCharacter(text, [&](std::int32_t character, std::string_view bytes) {
        characters.emplace_back(character < 0 ? -1 : character, std::string(bytes));
    });
    return characters;
}

TEST(Characters, AreWalkedOneByOne) {
    EXPECT_THAT(charactersOf(""), ElementsAre());
    EXPECT_THAT(charactersOf("aß€😀"),
                ElementsAre(Pair('a', "a"), Pair(0xDF, "ß"), Pair(0x20AC, "€"), Pair(0x1F600, "😀")));
}

TEST(Characters, BytesThatAreNoneCountOneByOne) {
    const struct {
        std::string_view what, text;
        std::size_t characters;
    } cases[] = {
        {"a lead without its end", "a\xC3(", 3}, {"the beginning of four bytes", "\xF0\x9F\x98", 3},
        {"ends without a lead", "\x80\xBFz", 3}, {"longer than needed", "\xC0\xAF\xE0\x80\xAF", 5},
        {"half of a pair", "\xED\xA0\x80", 3},   {"beyond U+10FFFF", "\xF4\x90\x80\x80", 4},
        {"bytes of no use", "\xFE\xFF", 2},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(countCharacters(c.text), c.characters);
        std::string joined;
        for (const auto& [character, bytes] : charactersOf(c.text)) {
            EXPECT_EQ(bytes.size(), 1U);
            EXPECT_EQ(character < 0, !isAscii(bytes.front()));
            joined += bytes;
        }
        EXPECT_EQ(joined, c.text);
    }
}

TEST(Characters, AreFoundByTheirNumber) {
    EXPECT_EQ(offsetOfCharacter("aß€b", 0), 0U);
    EXPECT_EQ(offsetOfCharacter("aß€b", 2), 3U);
    EXPECT_EQ(offsetOfCharacter("aß€b", 3), 6U);
    EXPECT_EQ(offsetOfCharacter("aß€b", 4), 7U);
    EXPECT_EQ(offsetOfCharacter("aß€b", std::numeric_limits<std::size_t>::max()), 7U);
    EXPECT_EQ(offsetOfCharacter("\xE2\x82x", 2), 2U);
}

TEST(Characters, AreWrittenAsTheyWereRead) {
    for (const std::int32_t codePoint : {0, 0x7F, 0x80, 0x7FF, 0x800, 0xFFFD, 0xFFFF, 0x10000, 0x10FFFF}) {
        std::string appended = "x";
        appendCharacter(appended, codePoint);
        std::size_t at = 1;
        EXPECT_EQ(nextCharacter(appended, at), codePoint);
        EXPECT_EQ(at, appended.size());
        char bytes[4];
        EXPECT_EQ(std::string(bytes, putCharacter(bytes, codePoint)), appended.substr(1));
    }
    std::string text = "kept";
    for (const std::int32_t number : {-1, 0xD800, 0xDFFF, 0x110000, std::numeric_limits<std::int32_t>::max()})
        appendCharacter(text, number);
    EXPECT_EQ(text, "kept");
}

TEST(Characters, AsciiIsSeenAtEveryPlace) {
    EXPECT_TRUE(isAscii(std::string_view()));
    for (std::size_t size = 1; size <= 20; ++size) {
        std::string text(size, '\x7F');
        EXPECT_TRUE(isAscii(text));
        for (char& each : text) {
            each = '\x80';
            EXPECT_FALSE(isAscii(text));
            each = 'a';
        }
    }
}

TEST(Characters, ACutTextEndsWithAWholeOne) {
    const struct {
        std::string_view text;
        std::size_t mostBytes;
        std::string_view cut;
    } cases[] = {
        {"abc", 3, "abc"}, {"abc", 2, "ab"}, {"abc", 0, ""},  {"aß", 2, "a"},      {"a€", 3, "a"},      {"€€", 5, "€"},
        {"😀x", 4, "😀"},    {"😀x", 3, ""},    {"a😀x", 4, "a"}, {"ab\xFF", 2, "ab"}, {"\xF0\x9F", 1, ""},
    };
    for (const auto& c : cases)
        EXPECT_EQ(cutToBytes(c.text, c.mostBytes), c.cut) << c.text << " to " << c.mostBytes;
    EXPECT_GE(cutToBytes(std::string(100, '\x80'), 50).size(), 47U) << "garbage does not eat the text";
    EXPECT_EQ(shortened("€€", 6), "€€");
    EXPECT_EQ(shortened("€€", 5), "€…");
}

} // namespace
} // namespace tavix
