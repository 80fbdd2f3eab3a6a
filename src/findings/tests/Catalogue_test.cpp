#include "base/tests/SourceFolder.h"
#include "expression/Program.h"
#include "findings/Catalogue.h"
#include "findings/FieldFindings.h"
#include "findings/tests/Columns.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <set>
#include <string>

namespace tavix::findings {
namespace {

const std::string kPage = tavix::testing::sourceFile("docs/findings.md");
constexpr const char* kHeading = "## The catalogue\n";

/// A cell of a table in Markdown.
std::string cell(std::string_view text) {
    std::string escaped;
    for (const char c : text) {
        if (c == '|')
            escaped += '\\';
        escaped += c;
    }
    return escaped;
}

std::string expectedTable() {
    std::string text = std::string(kHeading) +
                       "| code | likelihood | raised when | may mean | do | watched by |\n|---|---|---|---|---|---|\n";
    for (const CatalogueEntry& entry : catalogue())
        text += fmt::format("| `{}` {} | {} | {} | {} | {} | {} |\n", entry.code, cell(entry.title),
                            cell(entry.likelihood), cell(entry.when), cell(entry.meaning), cell(entry.advice),
                            entry.watch.empty() ? "a rule, from its condition" : cell(entry.watch));
    return text;
}

/// With TAVIX_WRITE_DOCS in the environment the table is written anew.
TEST(Catalogue, TheDocumentationListsTheFindingsAsTheyAre) {
    std::ifstream file(kPage);
    std::string text{std::istreambuf_iterator<char>(file), {}};
    const auto begin = std::min(text.find(kHeading), text.size());
    if (std::getenv("TAVIX_WRITE_DOCS"))
        std::ofstream(kPage) << text.substr(0, begin) << expectedTable();
    else
        EXPECT_EQ(text.substr(begin), expectedTable())
            << "docs/findings.md is out of date; run this test with TAVIX_WRITE_DOCS=1";
}

TEST(Catalogue, SaysEverythingAboutEachOfAtLeastFortyFindings) {
    EXPECT_GE(catalogue().size(), 40U);
    std::set<std::string_view> codes;
    for (const CatalogueEntry& entry : catalogue()) {
        EXPECT_TRUE(codes.insert(entry.code).second) << entry.code;
        EXPECT_EQ(entry.code.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789-"), std::string_view::npos)
            << entry.code;
        EXPECT_EQ(findEntry(entry.code), &entry);
        for (const std::string_view sentence : {entry.meaning, entry.advice})
            EXPECT_TRUE(sentence.size() > 10 && sentence.ends_with('.')) << entry.code;
        EXPECT_NE(likelihoodWord(Likelihood::Possible), "");
        EXPECT_TRUE(entry.likelihood.starts_with("definite") || entry.likelihood.starts_with("likely") ||
                    entry.likelihood.starts_with("possible"))
            << entry.code;
        EXPECT_FALSE(entry.title.empty() || entry.when.empty()) << entry.code;
    }
    EXPECT_EQ(findEntry("of-a-later-version"), nullptr);
}

TEST(Catalogue, TheRuleIsViolatedByTheValuesOfTheFindingAlone) {
    const std::string rule = ruleFor("`Value` in ('it\\'s `Value`', 'b')", "a `b`");
    EXPECT_EQ(rule, "not ifnull(`a ``b``` in ('it\\'s `Value`', 'b'), false)");
    const expression::Field fields[] = {{"a `b`", expression::Type::Text}};
    const expression::Compiled compiled = expression::compile(rule, fields, expression::Wanted::Condition, 0);
    ASSERT_TRUE(compiled.ok()) << expression::describe(compiled.error);
    expression::RowEvaluator evaluator(*compiled.program);
    const auto passes = [&](const expression::Value& value) {
        const expression::Value row[] = {value};
        const expression::Value result = evaluator.evaluate(row);
        return !result.isNull() && result.boolean;
    };
    EXPECT_FALSE(passes(expression::Value::ofText("it's `Value`")));
    EXPECT_FALSE(passes(expression::Value::ofText("b")));
    EXPECT_TRUE(passes(expression::Value::ofText("c")));
    EXPECT_TRUE(passes({})) << "null is not among the values of the finding";
}

} // namespace
} // namespace tavix::findings
