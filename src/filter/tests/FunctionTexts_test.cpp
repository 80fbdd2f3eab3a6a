#include "filter/FunctionTexts.h"

#include <gtest/gtest.h>

namespace tavix {
namespace {

TEST(FunctionTexts, EachLetterHasAWord) {
    const std::string letters = "BDIOoPRSabdiprsx";
    std::string words;
    for (const char letter : letters)
        words += std::string(TypeWord(letter)) + "|";
    EXPECT_EQ(words, "explicit boolean|explicit date|explicit integer|object/array|object/array|explicit pointer|"
                     "explicit real|explicit string|any|boolean|date|integer|pointer|real|string|other|");
}

TEST(FunctionTexts, SignatureAndCall) {
    const struct {
        FilterFunction function;
        std::string signature;
        std::string call;
    } cases[] = {
        {{"left", "si", 's', "The first characters.", 2, 2},
         "string left(string, integer)\r\n\r\nThe first characters.",
         "left(/*string*/, /*integer*/)"},
        {{"inlist", "aa", 'b', "One of them.", 2, 3},
         "boolean inlist(any, any, ...)\r\n\r\nOne of them.",
         "inlist(/*any*/, /*any*/)"},
        {{"now", "", 'D', "", 0, 0}, "explicit date now()\r\n\r\n", "now()"},
        {{"join", "", 'o', "x", 0, 9}, "object/array join(, ...)\r\n\r\nx", "join()"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(FunctionSignatureText(c.function), c.signature);
        EXPECT_EQ(FunctionCallText(c.function), c.call);
    }
}

TEST(FunctionTexts, SearchPutsTheBeginningOfNamesFirst) {
    const std::vector<FilterFunction> functions = {{"concat", "ss", 's', "The texts one after the other.", 1, 9},
                                                   {"isdate", "s", 'b', "Whether the text is a date.", 1, 1},
                                                   {"datediff", "dd", 'i', "Days between them.", 2, 2},
                                                   {"todate", "d", 'd', "The text as a Date.", 1, 1},
                                                   {"day", "d", 'i', "The day of the DATE.", 1, 1}};
    EXPECT_EQ(FindFunctions(functions, " Date "), (std::vector<std::size_t>{2, 1, 3, 4}));
    EXPECT_EQ(FindFunctions(functions, ""), (std::vector<std::size_t>{0, 1, 2, 3, 4}));
    EXPECT_TRUE(FindFunctions(functions, "nothing").empty());
}

} // namespace
} // namespace tavix
