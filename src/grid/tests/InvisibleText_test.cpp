#include "grid/InvisibleText.h"

#include <gtest/gtest.h>

#include <vector>

namespace tavix {
namespace {

using namespace std::string_view_literals;

TEST(InvisibleText, EveryCharacterLeavesAMark) {
    struct Case {
        std::string_view text;
        std::string_view shown;
    };
    const std::vector<Case> cases = {
        {"", ""},
        {"plain text", "plain text"},
        {" a  b ", "·a  b·"},
        {"   ", "···"},
        {"tab\there", "tab→here"},
        {"line\r\nend", "line␍␊end"},
        {"\0\x1B\x7F"sv, "␀␛␡"},
        {"a\xC2\xA0"
         "b",
         "a⍽b"},
        {"\xC2\xA0 x", "⍽ x"},
        {"\xEF\xBB\xBFid", "‹U+FEFF›id"},
        {"soft\xC2\xADhyphen", "soft‹U+00AD›hyphen"},
        {"zero\xE2\x80\x8Bwidth", "zero‹U+200B›width"},
        {"\xE2\x80\xAE"
         "evil",
         "‹U+202E›evil"},
        {"C1\xC2\x85 thin\xE2\x80\x89 ideographic\xE3\x80\x80 line\xE2\x80\xA8", //
         "C1‹U+0085› thin‹U+2009› ideographic‹U+3000› line‹U+2028›"},
        {"filler\xE3\x85\xA4 braille\xE2\xA0\x80 tag\xF3\xA0\x81\x81", "filler‹U+3164› braille‹U+2800› tag‹U+E0041›"},
        {"Köln 東京 \xF0\x9F\x98\x80", "Köln 東京 \xF0\x9F\x98\x80"},
        {"\xD8\x80", "\xD8\x80"}, // the Arabic number sign is a format character with a shape
        {"bad\xFF\xC3", "bad\xEF\xBF\xBD\xEF\xBF\xBD"},
    };
    for (const Case& each : cases)
        EXPECT_EQ(each.shown, showInvisible(each.text)) << each.text;
}

TEST(InvisibleText, ACutTextEndsNeitherInABlankNorInHalfACharacter) {
    EXPECT_EQ("ab ", showInvisible("ab cd", 3));
    EXPECT_EQ("ab·", showInvisible("ab   ", 3));
    EXPECT_EQ("Kö", showInvisible("Köln", 2));
    EXPECT_EQ("", showInvisible("Köln", 0));
}

} // namespace
} // namespace tavix
