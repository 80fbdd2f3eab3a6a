#include "findings/RunFindings.h"
#include "findings/tests/Columns.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tavix::findings {
namespace {

FieldSummary field(const std::string& table, const std::string& name, char type, const std::string& kind,
                   const std::string& pattern = {}) {
    return {table, "files|" + table, name, type, kind, pattern, {100, 100}, {}, {}};
}

std::vector<std::string> textsOf(const std::vector<FieldSummary>& fields) {
    std::vector<std::string> texts;
    for (const FoundIn& found : findDifferences(fields))
        texts.push_back(fmt::format("{}.{}: {} {}, {}", fields[found.field].table, fields[found.field].name,
                                    likelihoodWord(found.finding.likelihood), found.finding.code,
                                    found.finding.detail));
    return texts;
}

TEST(RunFindings, FieldsOfOneNameDifferInTypeOrPattern) {
    using Texts = std::vector<std::string>;
    EXPECT_EQ(textsOf({field("orders", "customer", 'I', "integer"), field("customers", "Customer", 'S', "")}),
              (Texts{"orders.customer: likely type-differs-elsewhere, integer here, text in customers",
                     "customers.Customer: likely type-differs-elsewhere, text here, integer in orders"}));
    EXPECT_EQ(textsOf({field("a", "id", 'I', "integer"), field("b", "ID", 'S', "")}), Texts{}) << "of different things";
    EXPECT_EQ(textsOf({field("a", "part", 'S', "", "AA-999"), field("b", "part", 'S', "", "AA999")}),
              (Texts{"a.part: possible pattern-differs-elsewhere, \"AA-999\" here, \"AA999\" in b",
                     "b.part: possible pattern-differs-elsewhere, \"AA999\" here, \"AA-999\" in a"}));
    EXPECT_EQ(textsOf({field("a", "price", 'I', "integer"), field("b", "price", 'R', "real")}), Texts{});
    auto filtered = field("dear orders", "customer", 'S', "");
    filtered.source = "files|orders";
    EXPECT_EQ(textsOf({field("orders", "customer", 'I', "integer"), filtered}), Texts{});
    auto small = field("customers", "customer", 'S', "");
    small.shown = {5, 5};
    EXPECT_EQ(textsOf({field("orders", "customer", 'I', "integer"), small}), Texts{});
}

std::vector<std::string> changes(const FieldSummary& now, const EarlierField& before) {
    std::vector<std::string> texts;
    for (const Finding& finding : findChanges(now, before, testing::kNow))
        texts.push_back(fmt::format("{}: {}", finding.code, finding.detail));
    return texts;
}

TEST(RunFindings, AFieldLosesSomethingSinceTheRunBefore) {
    using Texts = std::vector<std::string>;
    constexpr std::int64_t kDay = kTicksPerDay;
    const EarlierField real{'R', 2, {}, testing::kNow - kDay, 100};
    EXPECT_EQ(changes(field("t", "price", 'I', "integer"), real), Texts{"decimals-lost: 2 decimal places before"});
    EXPECT_EQ(changes(field("t", "price", 'R', "real"), real), Texts{});
    EXPECT_EQ(changes(field("t", "price", 'S', ""), real), Texts{"type-changed: real before, text now"});
    const EarlierField whole{'I', {}, {}, testing::kNow - kDay, 100};
    EXPECT_EQ(changes(field("t", "price", 'R', "real"), whole), Texts{});
    auto dates = field("t", "sold", 'D', "date");
    dates.lastDate = *parseDate("2026-11-01");
    const EarlierField same{'D', {}, dates.lastDate, testing::kNow - 14 * kDay, 100};
    EXPECT_EQ(changes(dates, same), Texts{"no-recent-dates: the last one is 2026-11-01 as in the run 14 days before"});
    EXPECT_EQ(changes(dates, {'D', {}, dates.lastDate, testing::kNow - kDay, 100}), Texts{}) << "only a day has passed";
    EXPECT_EQ(changes(dates, {'D', {}, *dates.lastDate - kDay, testing::kNow - 14 * kDay, 100}), Texts{});
    dates.lastDate = *parseDate("2001-11-01");
    EXPECT_EQ(changes(dates, {'D', {}, dates.lastDate, testing::kNow - 14 * kDay, 100}), Texts{}) << "an archive";
}

} // namespace
} // namespace tavix::findings
