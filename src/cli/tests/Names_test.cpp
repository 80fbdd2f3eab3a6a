#include "cli/CommandError.h"
#include "cli/Names.h"
#include "cli/ProfileCommand.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tavix::cli {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

std::string failureOf(std::string_view wanted, const std::vector<std::string>& names) {
    try {
        (void)pickByName("job", wanted, names);
    } catch (const CommandError& error) {
        EXPECT_EQ(error.code(), ExitCode::Usage);
        return error.what();
    }
    return "found";
}

TEST(Names, MatchExactlyAndElseListWhatThereIs) {
    const std::vector<std::string> names{"sales", "Sales", "stock", "stock"};
    EXPECT_EQ(pickByName("job", "Sales", names), 1U);
    EXPECT_EQ(failureOf("SALES", names),
              "there is no job \"SALES\"; known: \"sales\", \"Sales\", \"stock\", \"stock\"");
    EXPECT_EQ(failureOf("stock", names), "\"stock\" is the name of 2 jobs");
    EXPECT_EQ(failureOf("a", {}), "there is no job \"a\", nor any other job");
    EXPECT_THAT(failureOf("a", std::vector<std::string>(12, "b")), HasSubstr(" and 2 more"));
}

TEST(Names, FieldAddressIsReadWithEveryTableTheLongestFirst) {
    const std::vector<std::string> tables{"a", "a.b", "b", "", "say \"a\"", "\"open"};
    EXPECT_THAT(readFieldAddress("a.c", tables), ElementsAre(FieldAddress{"a", "c"}));
    EXPECT_THAT(readFieldAddress("a.b.c", tables), ElementsAre(FieldAddress{"a.b", "c"}, FieldAddress{"a", "b.c"}));
    EXPECT_THAT(readFieldAddress("a..c", tables), ElementsAre(FieldAddress{"a", ".c"}));
    EXPECT_THAT(readFieldAddress(R"("a.b"."c.d")", tables), ElementsAre(FieldAddress{"a.b", "c.d"}));
    EXPECT_THAT(readFieldAddress(R"("say ""a"""."x")", tables), ElementsAre(FieldAddress{"say \"a\"", "x"}));
    EXPECT_THAT(readFieldAddress(R"(b."f.g")", tables), ElementsAre(FieldAddress{"b", "f.g"}));
    EXPECT_THAT(readFieldAddress("\"open.x", tables), ElementsAre(FieldAddress{"\"open", "x"}));
    for (const char* nothing : {"nodot", "a", "a.", "", "\"a\"", "\"a\".", "A.c", "\"\"\""})
        EXPECT_THAT(readFieldAddress(nothing, tables), IsEmpty()) << nothing;
}

TEST(Delimiter, IsOneCharacterOrItsName) {
    EXPECT_EQ(parseDelimiter(";"), ';');
    EXPECT_EQ(parseDelimiter("tab"), '\t');
    EXPECT_EQ(parseDelimiter("\\t"), '\t');
    EXPECT_EQ(parseDelimiter("pipe"), '|');
    for (const char* wrong : {"", "ab", "\"", "\n", "\r", "é"})
        EXPECT_EQ(parseDelimiter(wrong), std::nullopt) << wrong;
}

} // namespace
} // namespace tavix::cli
