#include "cli/DisplayText.h"

#include <gtest/gtest.h>

namespace tavix::cli {
namespace {

TEST(DisplayText, WidthCountsColumnsAndNotBytes) {
    EXPECT_EQ(displayWidth("abc"), 3U);
    EXPECT_EQ(displayWidth("äöü"), 3U);
    EXPECT_EQ(displayWidth("e\u0301"), 1U);
    EXPECT_EQ(displayWidth("日本"), 4U);
    EXPECT_EQ(displayWidth("\xff\xfe"), 2U);
    EXPECT_EQ(displayWidth(""), 0U);
}

TEST(DisplayText, NothingReachesTheTerminalThatSteersIt) {
    EXPECT_EQ(printable("a\nb\tc\r"), "a\\nb\\tc\\r");
    EXPECT_EQ(printable("\x1b[2J"), "\\x1b[2J");
    EXPECT_EQ(printable(std::string_view("\0", 1)), "\\x00");
    EXPECT_EQ(printable("\xc2\x9b"), "\\x9b"); // a control that some terminals obey
    EXPECT_EQ(printable("a\u202Eb"), "a\\u202eb");
    EXPECT_EQ(printable("ok \xff"), "ok \uFFFD");
    EXPECT_EQ(printable("Zürich 日本"), "Zürich 日本");
}

TEST(DisplayText, CutTextFitsAndKeepsWholeCharacters) {
    EXPECT_EQ(cutToWidth("abcdef", 6), "abcdef");
    EXPECT_EQ(cutToWidth("abcdefg", 6), "abcde…");
    EXPECT_EQ(cutToWidth("日本語", 6), "日本語");
    EXPECT_EQ(cutToWidth("日本語", 5), "日本…");
    EXPECT_EQ(cutToWidth("日本語", 4), "日…");
    EXPECT_EQ(cutToWidth("äöüß", 4), "äöüß");
    EXPECT_EQ(cutToWidth("abc", 1), "…");
    EXPECT_EQ(cutToWidth("abc", 0), "");
}

TEST(DisplayText, ProseIsFoldedBetweenWords) {
    using Lines = std::vector<std::string>;
    EXPECT_EQ(foldToWidth("", 5), Lines({""}));
    EXPECT_EQ(foldToWidth("ab cd ef", 5), Lines({"ab cd", "ef"}));
    EXPECT_EQ(foldToWidth("ab cd   ef", 6), Lines({"ab cd", "ef"}));
    EXPECT_EQ(foldToWidth("one\n\ntwo\n", 5), Lines({"one", "", "two", ""}));
    EXPECT_EQ(foldToWidth("a longestword b", 6), Lines({"a", "longes", "tword", "b"}));
    EXPECT_EQ(foldToWidth("日本語 x", 4), Lines({"日本", "語 x"}));
    EXPECT_EQ(foldToWidth("\x1b[2J x", 20), Lines({"\\x1b[2J x"}));
    EXPECT_EQ(foldToWidth("日本", 1), Lines({"日", "本"})) << "a character too wide still comes";
}

} // namespace
} // namespace tavix::cli
