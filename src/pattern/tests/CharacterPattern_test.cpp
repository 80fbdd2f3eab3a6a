#include "pattern/CharacterPattern.h"
#include "pattern/tests/PatternOf.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace tavix::pattern {
namespace {

using testing::patternOf;

TEST(CharacterPattern, FollowsTheGeneralCategories) {
    EXPECT_EQ(patternOf("Jan-2021, 12:30"), "Aaa-9999, 99:99");
    EXPECT_EQ(patternOf(""), "");
    EXPECT_EQ(patternOf("Ärger ß"), "Aaaaa a");
    EXPECT_EQ(patternOf("\u01C5"), "A") << "title case";
    EXPECT_EQ(patternOf("\u02B0\u4E2D"), "aa") << "modifier and other letters";
    EXPECT_EQ(patternOf("\u0664\U0001D7D8"), "99") << "digits of other scripts";
    EXPECT_EQ(patternOf("\u00BD\u2163\u20AC"), "\u00BD\u2163\u20AC") << "other numbers and signs stay";
    EXPECT_EQ(patternOf(std::string("a\0b\t", 4)), std::string("a\0a\t", 4));
    EXPECT_EQ(patternOf("x\xFFy\xE4"), "a\xFF"
                                       "a\xE4")
        << "bytes that are no text stay";
}

TEST(CharacterPattern, AppendsToWhatIsThere) {
    std::string buffer = "kept ";
    appendCharacterPattern(buffer, "Öl1");
    EXPECT_EQ(buffer, "kept Aa9");
}

TEST(CharacterPattern, IsThatOfEveryCharacterAtAnyLength) {
    std::mt19937 random(3);
    std::vector<bool> lengths(60);
    for (int i = 0; i < 20'000; ++i) {
        std::string text;
        std::string pattern;
        ByteMask kinds = 0;
        const bool isAscii = i % 3 > 0;
        for (std::size_t n = random() % lengths.size(); n > 0; --n) {
            const std::string character =
                isAscii ? std::string(1, static_cast<char>(random() % 128))
                        : std::string(std::string_view("\u00E4\u00C4\u0664z9-.").substr(random() % 5 * 2).substr(0, 2));
            text += character;
            pattern += patternOf(character);
            kinds |= byteMask(character);
        }
        lengths[text.size() % lengths.size()] = true;
        ByteMask found = 0;
        std::string buffer(text.size(), '#');
        buffer.resize(static_cast<std::size_t>(putCharacterPattern(buffer.data(), text, found) - buffer.data()));
        EXPECT_EQ(buffer, pattern) << text;
        EXPECT_EQ(found, kinds) << text;
    }
    EXPECT_EQ(std::count(lengths.begin(), lengths.end(), false), 0);
}

TEST(ShortPattern, CountsRunsOfFourOrMore) {
    EXPECT_EQ(shortPattern("999"), "999");
    EXPECT_EQ(shortPattern("9999"), "9{4}");
    EXPECT_EQ(shortPattern("Aaaaaa 99999-9999"), "Aa{5} 9{5}-9{4}");
    EXPECT_EQ(shortPattern("\u20AC\u20AC\u20AC\u20AC\u20AC"), "\u20AC{5}");
    EXPECT_EQ(shortPattern(""), "");
    EXPECT_EQ(shortPattern(std::string(12345, 'a')), "a{12345}");
}

TEST(ShortPattern, KeepsBracesOfTheTextApart) {
    EXPECT_EQ(shortPattern("9{9}"), "9{{1}9}");
    EXPECT_EQ(shortPattern("{{{{{"), "{{5}");
    EXPECT_NE(shortPattern("9{9}"), shortPattern("999999999"));
}

} // namespace
} // namespace tavix::pattern
