#include "base/Ascii.h"

#include <gtest/gtest.h>

namespace tavix {
namespace {

TEST(Ascii, DigitsAndLettersEndWhereTheirNeighboursBegin) {
    for (const char c : {'/', ':', '@', '[', '`', '{', '\0', '\x7F', '\xB5'}) {
        EXPECT_FALSE(isAsciiDigit(c)) << c;
        EXPECT_FALSE(isAsciiLetter(c)) << c;
        EXPECT_EQ(asciiLower(c), c);
        EXPECT_EQ(asciiUpper(c), c);
    }
    for (const char c : {'A', 'Z', 'a', 'z'})
        EXPECT_TRUE(isAsciiLetter(c)) << c;
    EXPECT_TRUE(isAsciiDigit('0') && isAsciiDigit('9'));
}

TEST(Ascii, CaseOfTexts) {
    EXPECT_EQ(asciiLower("AZ az Ä09_"), "az az Ä09_");
    EXPECT_EQ(asciiUpper("AZ az ä09_"), "AZ AZ ä09_");
    EXPECT_TRUE(equalsIgnoringAsciiCase("True", "tRUE"));
    EXPECT_FALSE(equalsIgnoringAsciiCase("true", "tru"));
    EXPECT_FALSE(equalsIgnoringAsciiCase("Ä", "ä"));
    EXPECT_FALSE(equalsIgnoringAsciiCase("[", "{"));
}

} // namespace
} // namespace tavix
