#include "base/LoginName.h"
#include "base/NoteText.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace tavix {
namespace {

struct Tidied {
    std::string_view given;
    std::string_view note;
    std::string_view category;
};

TEST(NoteText, IsTidiedBeforeItIsStored) {
    using namespace std::string_view_literals;
    const Tidied cases[] = {
        {"", "", ""},
        {" \t\r\n \xc2\xa0\xe3\x80\x80", "", ""}, // no-break and ideographic space
        {"one", "one", "one"},
        {"\r\n\n  indented\r\nnext\rlast \n\n", "  indented\nnext\nlast", "indented next last"},
        {"a\n\nb", "a\n\nb", "a b"},
        {"tab\there\vsoft\x1b[2J\0end"sv, "tab\there\nsoft[2Jend", "tab here soft [2J end"},
        {"line\xe2\x80\xa8separator", "line\nseparator", "line separator"},
        {"\xff broken \xc3", "\xff broken \xc3", "\xff broken \xc3"},
        {"日本 \xf0\x9f\x99\x82", "日本 \xf0\x9f\x99\x82", "日本 \xf0\x9f\x99\x82"},
    };
    for (const Tidied& c : cases) {
        EXPECT_EQ(tidyNote(c.given), c.note) << c.given;
        EXPECT_EQ(tidyNoteCategory(c.given), c.category) << c.given;
        EXPECT_EQ(tidyNote(tidyNote(c.given)), c.note) << "tidied twice";
    }
}

TEST(NoteText, IsBoundedInCharactersAndMustBeUtf8) {
    std::string wide;
    for (std::size_t i = 0; i < kLongestNote; ++i)
        wide += "日";
    EXPECT_TRUE(checkNote(wide));
    EXPECT_EQ(checkNote(wide + "x").error().text, "The note is too long: 20001 characters, and 20000 is the most.");
    EXPECT_EQ(checkNote("").error().text, "A note needs a text.");
    EXPECT_EQ(checkNote("a\xff").error().text, "The note is not valid UTF-8.");
    EXPECT_TRUE(checkNoteCategory(std::string(kLongestNoteCategory, 'x')));
    EXPECT_EQ(checkNoteCategory(std::string(kLongestNoteCategory + 1, 'x')).error().text,
              "The name of the category is too long: 61 characters, and 60 is the most.");
    EXPECT_EQ(checkNoteCategory("").error().text, "A note category needs a name.");
}

TEST(NoteText, CategoriesAreToldApartWithoutCase) {
    EXPECT_TRUE(isSameNoteCategory("Größe", "GRÖSSE"));
    EXPECT_TRUE(isSameNoteCategory("Frage", "frage"));
    EXPECT_FALSE(isSameNoteCategory("Frage", "Frag"));
    EXPECT_FALSE(isSameNoteCategory("", "x"));
}

TEST(LoginName, IsTheSystemsAndNotTheEnvironments) {
    ASSERT_EQ(setenv("USER", "somebody else", 1), 0);
    ASSERT_EQ(setenv("LOGNAME", "somebody else", 1), 0);
    EXPECT_FALSE(loginName().empty());
    EXPECT_NE(loginName(), "somebody else");
}

} // namespace
} // namespace tavix
