#include "base/tests/SourceFolder.h"
#include "expression/Catalogue.h"
#include "expression/Program.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <string>

namespace tavix::expression {
namespace {

const std::string kPage = testing::sourceFile("docs/expressions.md");
constexpr const char* kHeading = "## Functions\n";

std::string_view word(char letter) {
    switch (letter) {
    case 'a':
        return "any";
    case 'b':
        return "boolean";
    case 'd':
        return "date";
    case 'i':
        return "integer";
    case 'r':
        return "real";
    case 's':
        return "text";
    case 'S':
        return "fixed text";
    default:
        return "";
    }
}

std::string parametersOf(const Function& function) {
    std::string text;
    for (std::size_t i = 0; i < function.parameters.size(); ++i) {
        const bool isOptional = static_cast<int>(i) >= function.minimum;
        const std::string name = fmt::format("{}{}", i > 0 ? ", " : "", word(function.parameters[i]));
        text += isOptional ? "[" + name + "]" : name;
    }
    return text + (static_cast<std::size_t>(function.maximum) > function.parameters.size() ? ", ..." : "");
}

/// The list of functions of docs/expressions.md as it should be.
std::string expectedList() {
    std::string text = std::string(kHeading) + "| Function | Result | |\n|---|---|---|\n";
    for (const Function& function : functions())
        text += fmt::format("| `{}({})` | {} | {} |\n", function.name, parametersOf(function), word(function.result),
                            function.description);
    return text;
}

TEST(Catalogue, EachFunctionCanBeCalledWithTheArgumentsThatItNames) {
    const Field fields[] = {{"a", Type::Text},    {"b", Type::Boolean}, {"d", Type::Date},
                            {"i", Type::Integer}, {"r", Type::Real},    {"s", Type::Text}};
    for (const Function& function : functions()) {
        EXPECT_EQ(findFunction(function.name), &function);
        EXPECT_NE(word(function.result), "") << function.name;
        const int listed = static_cast<int>(function.parameters.size());
        for (const int count :
             {function.minimum, std::max(function.minimum, listed), std::min(function.maximum, listed + 3)}) {
            std::string text = fmt::format("{}(", function.name);
            for (int i = 0; i < count; ++i) {
                const char letter = function.parameters[static_cast<std::size_t>(std::min(i, listed - 1))];
                EXPECT_NE(word(letter), "") << function.name;
                const bool isReading = function.form == Form::Fits || function.form == Form::ReadNumber;
                const std::string fixed = isReading ? "'real decimal-comma'" : "'dd.MM.yyyy'";
                text += (i > 0 ? "," : "") + (letter == 'S' ? fixed : fmt::format("`{}`", letter));
            }
            const Compiled compiled = compile(text + ")", fields, Wanted::Value);
            ASSERT_TRUE(compiled.ok()) << text << describe(compiled.error);
            const Type expected = function.result == 'a' ? Type::Text : compiled.program->type();
            EXPECT_EQ(compiled.program->type(), expected) << text;
        }
    }
}

/// With TAVIX_WRITE_DOCS in the environment the list is written anew.
TEST(Catalogue, TheDocumentationListsTheFunctionsAsTheyAre) {
    std::ifstream file(kPage);
    std::string text{std::istreambuf_iterator<char>(file), {}};
    const auto begin = std::min(text.find(kHeading), text.size());
    if (std::getenv("TAVIX_WRITE_DOCS"))
        std::ofstream(kPage) << text.substr(0, begin) << expectedList();
    else
        EXPECT_EQ(text.substr(begin), expectedList())
            << "docs/expressions.md is out of date; run this test with TAVIX_WRITE_DOCS=1";
}

} // namespace
} // namespace tavix::expression
