#include "filter/OneLine.h"

#include <gtest/gtest.h>

namespace tavix {
namespace {

TEST(OneLine, MakesABlankOfEachRunOfWhiteSpace) {
    EXPECT_EQ(OneLine(" a \r\n\t b\vc\f"), "a b c");
    EXPECT_EQ(OneLine("a\u00A0\u2003b\xFF"), "a b\xFF");
    EXPECT_EQ(OneLine("plain"), "plain");
    EXPECT_EQ(OneLine(" \n "), "");
}

TEST(OneLine, ShortensByCharacters) {
    EXPECT_EQ(Shortened("äöü", 3), "äöü");
    EXPECT_EQ(Shortened("äöüß", 3), "äöü…");
    EXPECT_EQ(Shortened("", 0), "");
}

} // namespace
} // namespace tavix
