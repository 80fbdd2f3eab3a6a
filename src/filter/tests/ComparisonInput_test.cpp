#include "filter/ComparisonInput.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tavix {
namespace {

using ::testing::ElementsAre;
using Enabled = ComparisonInput::Enabled;

constexpr int kValueField = 0;
constexpr int kCountField = 1;

int indexOf(FilterOperation operation) {
    return static_cast<int>(operation);
}

TEST(ComparisonInput, FieldsAreNamedAfterTheDistribution) {
    EXPECT_THAT(ComparisonInput::Fields(DistributionKind::Frequency),
                ElementsAre("Frequency value", "Frequency count"));
    EXPECT_THAT(ComparisonInput::Fields(DistributionKind::Pattern), ElementsAre("Pattern value", "Pattern count"));
}

TEST(ComparisonInput, OptionsFollowTheOperation) {
    ComparisonInput input;
    EXPECT_EQ(input.Operations().size(), 6u);
    // Single, multiple, value, value list, case, wildcards.
    EXPECT_EQ(input.Controls(), (Enabled{true, true, true, false, true, true}));
    input.ChooseMode(ValueMode::Multiple);
    EXPECT_EQ(input.Controls(), (Enabled{true, true, false, true, true, true}));
    input.ChooseMode(ValueMode::Single);
    input.ChooseField(0);
    ASSERT_EQ(input.Operations().size(), 19u);
    EXPECT_EQ(input.Operations()[18], "has control characters");

    for (int operation = 0; operation < 19; ++operation) {
        SCOPED_TRACE(operation);
        input.ChooseOperation(0);
        input.ChooseMode(ValueMode::Single);
        input.CheckCaseInsensitive(true);
        input.CheckWildcard(true);
        ASSERT_TRUE(input.CaseInsensitive() && input.Wildcard());
        input.ChooseOperation(operation);
        const bool equality = operation == 0 || operation == 5;
        const bool hasValue = operation < 10;
        EXPECT_EQ(input.Controls(), (Enabled{hasValue, equality, hasValue, false, hasValue, equality}));
        EXPECT_EQ(input.CaseInsensitive(), hasValue);
        EXPECT_EQ(input.Wildcard(), equality);

        input.ChooseOperation(5);
        input.ChooseMode(ValueMode::Multiple);
        EXPECT_FALSE(input.Wildcard());
        EXPECT_EQ(input.Controls(), (Enabled{true, true, false, true, true, false}));
        input.ChooseOperation(operation);
        // The mode is forced where there can only be one value, and waits where there is none.
        EXPECT_EQ(input.Mode(), hasValue && !equality ? ValueMode::Single : ValueMode::Multiple);
        input.CheckWildcard(true);
        EXPECT_FALSE(input.Wildcard());
    }
}

TEST(ComparisonInput, CountsKnowNeitherCaseNorWildcards) {
    ComparisonInput input;
    input.ChooseField(kValueField);
    input.ChooseOperation(indexOf(FilterOperation::NotEqualTo));
    input.CheckCaseInsensitive(true);
    input.CheckWildcard(true);
    input.ChooseField(kCountField);
    EXPECT_EQ(input.Operation(), 5);
    EXPECT_EQ(input.Operations().size(), 6u);
    EXPECT_FALSE(input.CaseInsensitive() || input.Wildcard());
    EXPECT_EQ(input.Controls(), (Enabled{true, true, true, false, false, false}));
    input.ChooseOperation(-1);
    EXPECT_EQ(input.Controls(), (Enabled{true, true, true, false, false, false}));

    // An operation that the new list does not have is no longer chosen.
    input.ChooseField(kValueField);
    input.ChooseOperation(indexOf(FilterOperation::Contains));
    input.ChooseField(kCountField);
    EXPECT_EQ(input.Operation(), -1);
    EXPECT_EQ(input.FindMissing(), ComparisonInput::Missing::Operation);
}

} // namespace
} // namespace tavix
