#include "filter/Completion.h"

#include <gtest/gtest.h>

namespace tavix {
namespace {

TEST(Completion, FindsTheNameThatIsBeingWritten) {
    const struct {
        const char* written;
        const char* name;
    } cases[] = {{"", ""},       {"lo", "lo"},         {"not LoW", "LoW"},     {"lower(", ""},
                 {"'left", ""},  {"'a' == le", "le"},  {"'it\\'s le", ""},     {"'a\\\\' le", ""},
                 {"`Val", ""},   {"`Value` le", "le"}, {"/* le", ""},          {"/* a */le", "le"},
                 {"/*/ le", ""}, {"12e", ""},          {"x < 10 or ri", "ri"}, {"If", ""},
                 {"ifn", "ifn"}, {"has_c", "has_c"},   {"`a``b` le", "le"},    {"4 / le", "le"},
                 {"\"left", ""}, {"\"it's\" le", "le"}};
    for (const auto& each : cases)
        EXPECT_EQ(each.name, NameBeingWritten(each.written)) << each.written;
}

TEST(Completion, OffersNamesThatAreNotCompleteYet) {
    EXPECT_TRUE(OffersNames("lo", false, 1, "lower"));
    EXPECT_FALSE(OffersNames("l", false, 5, "left")) << "too short";
    EXPECT_FALSE(OffersNames("Ä", false, 5, "Äpfel")) << "one character of two bytes";
    EXPECT_TRUE(OffersNames("l", true, 5, "left")) << "asked for by a key";
    EXPECT_TRUE(OffersNames("", true, 40, "abs"));
    EXPECT_FALSE(OffersNames("xy", true, 0, "")) << "no name begins so";
    EXPECT_FALSE(OffersNames("lower", true, 1, "lower")) << "complete";
    EXPECT_TRUE(OffersNames("is", true, 2, "is")) << "a longer name begins the same";
}

TEST(Completion, OpensACall) {
    EXPECT_EQ(CompletedName("lower", false), "lower(");
    EXPECT_EQ(CompletedName("lower", true), "lower");
}

} // namespace
} // namespace tavix
