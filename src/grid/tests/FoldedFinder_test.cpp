#include "base/Characters.h"
#include "grid/FoldCase.h"
#include "grid/FoldedFinder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace tavix {
namespace {

TEST(FoldedFinder, FindsATextAsItStandsAndInOtherCase) {
    for (const std::string text : {"Straße", "\uFB01nde", "\u017Fein", "ALPHA", "Übung", "\u0130zmir", "\u212Bngström",
                                   "ΣΊΣΥΦΟΣ", "\u1E9E", "日本語", "\u01F0"}) {
        EXPECT_TRUE(FoldedFinder(text).isIn(text)) << text;
        EXPECT_TRUE(FoldedFinder(text).isIn("x" + text + "y")) << text;
        EXPECT_TRUE(FoldedFinder(foldCase(text)).isIn(text)) << text;
        EXPECT_TRUE(FoldedFinder(text).isIn(foldCase(text))) << text;
    }
    for (const std::string wanted : {"strasse", "STRASSE", "Straße", "STRAẞE", "stra\u017F\u017Fe"})
        for (const std::string text : {"strasse 1", "Lange Straße", "HAUPTSTRASSE", "STRAẞE", "\u017Ftrasse"})
            EXPECT_TRUE(FoldedFinder(wanted).isIn(text)) << wanted << " in " << text;
    EXPECT_TRUE(FoldedFinder("kelvin").isIn("\u212Aelvin"));
    EXPECT_TRUE(FoldedFinder("OFFICE").isIn("o\uFB03ce"));
    EXPECT_TRUE(FoldedFinder("").isIn(""));
}

TEST(FoldedFinder, FindsNothingElse) {
    EXPECT_FALSE(FoldedFinder("strasse").isIn("Strase"));
    EXPECT_FALSE(FoldedFinder("Straße").isIn("Strase"));
    EXPECT_FALSE(FoldedFinder("uber").isIn("über"));
    EXPECT_FALSE(FoldedFinder("über").isIn("uber"));
    EXPECT_FALSE(FoldedFinder("x").isIn(""));
    EXPECT_FALSE(FoldedFinder("ab").isIn("a"));
    EXPECT_FALSE(FoldedFinder("s").isIn("\xC3"));
}

TEST(FoldedFinder, KnowsEveryCharacterThatFoldsToAscii) {
    for (std::int32_t character = 0x80; character <= 0x10FFFF; ++character) {
        std::string text;
        appendCharacter(text, character);
        const std::string folded = foldCase(text);
        const bool expected = std::any_of(folded.begin(), folded.end(), [](char c) { return isAscii(c); });
        ASSERT_EQ(foldsToAscii(character), expected) << character;
    }
}

} // namespace
} // namespace tavix
