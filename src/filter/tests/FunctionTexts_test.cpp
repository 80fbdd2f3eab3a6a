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

} // namespace
} // namespace tavix
