#include "filter/ConditionBlock.h"
#include "filter/ValueFilter.h"
#include "filter/tests/Conditions.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <random>

namespace tavix {
namespace {

using namespace tavix::testing;
using Operation = FilterOperation;

constexpr DistributionKind kFrequency = DistributionKind::Frequency;

/// True, false, or null, as the expression language has it.
using Truth = std::optional<bool>;

/// A condition list asked about one value, straight from its entries.
class Oracle {
  public:
    Oracle(const ConditionList& list, const KvbString& value) : m_list(list), m_value(value) {}

    bool keeps(FilterAction action) {
        if (m_list.empty())
            return true;
        const bool passes = alternatives().value_or(false);
        EXPECT_EQ(m_at, m_list.size());
        return passes == (action == FilterAction::RemoveFailing);
    }

  private:
    [[nodiscard]] bool atConnector(Connector connector) const {
        return m_at < m_list.size() && m_list[m_at].conditionType == ConditionType::Connector &&
               m_list[m_at].connector == connector;
    }
    Truth alternatives() {
        Truth truth = all();
        while (atConnector(Connector::Or)) {
            ++m_at;
            const Truth next = all();
            truth = truth == true || next == true ? Truth(true) : !truth || !next ? std::nullopt : Truth(false);
        }
        return truth;
    }
    Truth all() {
        Truth truth = one();
        while (atConnector(Connector::And)) {
            ++m_at;
            const Truth next = one();
            truth = truth == false || next == false ? Truth(false) : !truth || !next ? std::nullopt : Truth(true);
        }
        return truth;
    }
    Truth one() {
        const CCondition& condition = m_list.at(m_at++);
        if (condition.conditionType == ConditionType::Parenthesis) {
            const Truth truth = alternatives();
            ++m_at;
            return truth;
        }
        if (condition.operation == Operation::IsNull || condition.operation == Operation::IsNotNull)
            return m_value.isNull() == (condition.operation == Operation::IsNull);
        if (m_value.isNull())
            return std::nullopt;
        const auto& values = condition.values;
        const bool found = std::find(values.begin(), values.end(), m_value.view()) != values.end();
        return found == (condition.operation == Operation::EqualTo);
    }

    const ConditionList& m_list;
    const KvbString& m_value;
    std::size_t m_at = 0;
};

bool keeps(const std::string& filterText, const KvbString& value) {
    const ParsedFilter parsed = ParseConditionBlock(filterText, FilterAction::RemoveFailing);
    EXPECT_TRUE(parsed.understood) << filterText;
    return Oracle(parsed.conditions, value).keeps(parsed.action);
}

std::string filterOf(const ConditionList& list, FilterAction action = FilterAction::RemoveFailing) {
    return WriteConditionBlock(list) + BuildExpression(list, action);
}

std::string wordsOf(const Result<std::string>& filter) {
    if (!filter)
        return "error: " + filter.error().text;
    return BuildPlainText(ParseConditionBlock(*filter, FilterAction::RemoveFailing).conditions);
}

TEST(ValueFilter, ReadsAsAUserWouldWriteIt) {
    const KvbString null;
    const std::string first = filterOf({onValue(Operation::Contains, {"x"}), kOr, onCount(Operation::EqualTo, {"1"})});
    const std::string firstWords = "(Value contains \"x\" OR\r\nCount equal to 1) AND\r\n";
    const auto words = [](const std::string& text, const std::vector<KvbString>& values, ValueChoice choice,
                          DistributionKind kind = kFrequency) {
        return wordsOf(FilterByValues(text, kind, values, choice));
    };
    EXPECT_EQ(words("", {"a"}, ValueChoice::Keep), R"(Value equal to "a")");
    EXPECT_EQ(words("", {""}, ValueChoice::Keep), R"(Value equal to "")");
    EXPECT_EQ(words("", {null}, ValueChoice::Keep), "Value is null");
    EXPECT_EQ(words("", {null}, ValueChoice::Exclude), "Value is not null");
    EXPECT_EQ(words("", {"a", null, "b"}, ValueChoice::Keep),
              "(Value equal to \"a\" OR\r\nValue equal to \"b\") OR\r\nValue is null");
    EXPECT_EQ(words("", {"a"}, ValueChoice::Exclude), "Value not equal to \"a\" OR\r\nValue is null");
    EXPECT_EQ(words("", {"A9"}, ValueChoice::Exclude, DistributionKind::Pattern), R"(Value not equal to "A9")");
    EXPECT_EQ(words("", {"a", null}, ValueChoice::Exclude), "Value not equal to \"a\" AND\r\nValue is not null");

    EXPECT_EQ(words(first, {"a"}, ValueChoice::Keep), firstWords + "Value equal to \"a\"");
    EXPECT_EQ(words(first, {"a"}, ValueChoice::Exclude), firstWords + "(Value not equal to \"a\" OR\r\nValue is null)");
    // Conditions that say what goes are added to with OR, which needs no parentheses.
    const std::string removing = filterOf(
        {onValue(Operation::IsNull), kOr, onValue(Operation::EqualTo, {"b"}), kAnd, onCount(Operation::EqualTo, {"1"})},
        FilterAction::RemovePassing);
    const std::string removingWords = "Value is null OR\r\nValue equal to \"b\" AND\r\nCount equal to 1 OR\r\n";
    EXPECT_EQ(words(removing, {"a"}, ValueChoice::Exclude), removingWords + "Value equal to \"a\"");
    EXPECT_EQ(words(removing, {"a"}, ValueChoice::Keep),
              removingWords + "Value not equal to \"a\" OR\r\nValue is null");
    const auto twice = FilterByValues(*FilterByValues(first, kFrequency, {null}, ValueChoice::Exclude), kFrequency,
                                      {"a"}, ValueChoice::Keep);
    EXPECT_EQ(wordsOf(twice), firstWords + "Value is not null AND\r\nValue equal to \"a\"");
}

TEST(ValueFilter, MeansWhatWasChosenWhateverItExtends) {
    std::mt19937 random(11);
    const auto below = [&](std::size_t bound) { return random() % bound; };
    const std::vector<KvbString> rows = {KvbString(), "", "a", "b", "c"};
    const std::vector<ConditionList> lists = {
        {},
        {onValue(Operation::EqualTo, {"a"})},
        {onValue(Operation::NotEqualTo, {"a"})},
        {onValue(Operation::EqualTo, {"a"}), kOr, onValue(Operation::IsNull)},
        {onValue(Operation::NotEqualTo, {"b"}), kAnd, onValue(Operation::NotEqualTo, {"c"})},
        {kOpen, onValue(Operation::EqualTo, {"a", "b"}), kOr, onValue(Operation::IsNull), kClose},
        {kOpen, onValue(Operation::EqualTo, {"a"}), kClose, kOr, kOpen, onValue(Operation::IsNotNull), kAnd,
         onValue(Operation::NotEqualTo, {"c"}), kClose},
    };
    for (int round = 0; round < 1000; ++round) {
        std::string text = filterOf(lists[below(lists.size())],
                                    below(2) == 0 ? FilterAction::RemoveFailing : FilterAction::RemovePassing);
        for (int step = 0; step < 3; ++step) {
            std::vector<KvbString> chosen;
            for (const KvbString& row : rows)
                if (below(3) == 0)
                    chosen.push_back(row);
            if (chosen.empty())
                chosen = {rows[below(rows.size())]};
            const ValueChoice choice = below(2) == 0 ? ValueChoice::Keep : ValueChoice::Exclude;
            const auto next = FilterByValues(text, kFrequency, chosen, choice);
            ASSERT_TRUE(next) << next.error().text << text;
            for (const KvbString& row : rows) {
                const bool isChosen = std::find(chosen.begin(), chosen.end(), row) != chosen.end();
                ASSERT_EQ(keeps(*next, row), keeps(text, row) && isChosen == (choice == ValueChoice::Keep))
                    << row.view() << " by " << *next;
            }
            text = *next;
        }
    }
}

TEST(ValueFilter, AValueThatABlockCannotHoldGivesCodeAlone) {
    for (const std::string value : {"a*/b", "a\r\nb", "}}END CONDITIONS*/\r\n", "return false"}) {
        const auto filter = FilterByValues("", kFrequency, {value}, ValueChoice::Keep);
        ASSERT_TRUE(filter);
        EXPECT_EQ(*filter, "if `Value` == '" + value + "' then\r\n   return true\r\nelse\r\n   return false\r\n");
    }
    EXPECT_TRUE(FilterByValues("", kFrequency, {"a\"", "b"}, ValueChoice::Keep)->starts_with("if "));
    EXPECT_TRUE(FilterByValues("", kFrequency, {"say \"x\"", "O'B,"}, ValueChoice::Keep)->starts_with("/*{{"));
}

TEST(ValueFilter, WhatCannotKeepItsMeaningIsRefused) {
    const std::string cannot = "error: The filter was written as an expression, so values cannot be added to it. "
                               "Edit the expression, or stop filtering first.";
    const std::string good = filterOf({onValue(Operation::EqualTo, {"a"})});
    const std::string block = good.substr(0, good.find("if "));
    for (const std::string& text :
         {std::string("return true"), block, block + "return true", block.substr(0, 40), good + " ",
          filterOf({onValue(Operation::EqualTo, {"a"}), kAnd}), filterOf({onValue(Operation::EqualTo, {"a\"", "b"})}),
          filterOf({kClose, onValue(Operation::IsNull), kOpen})})
        EXPECT_EQ(wordsOf(FilterByValues(text, kFrequency, {"b"}, ValueChoice::Keep)), cannot) << text;
    EXPECT_EQ(wordsOf(FilterByValues("", kFrequency, {}, ValueChoice::Keep)), "error: No value is selected.");
    EXPECT_EQ(wordsOf(FilterByValues("", kFrequency, {"a", "C:\\"}, ValueChoice::Exclude)),
              "error: A value that ends in a backslash cannot be written in a filter.");
}

} // namespace
} // namespace tavix
