#include "report/DistributionComparison.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <map>
#include <random>
#include <string>

namespace tavix {
namespace {

using ::testing::ElementsAre;
using ::testing::SizeIs;

using Counts = std::map<KvbString, std::int64_t, bool (*)(const KvbString&, const KvbString&)>;

bool nullFirst(const KvbString& a, const KvbString& b) {
    return a.isNull() != b.isNull() ? a.isNull() : a.view() < b.view();
}

class ListedTexts final : public CountedTexts {
  public:
    explicit ListedTexts(const Counts& counts) : m_rows(counts.begin(), counts.end()) {
        std::stable_sort(m_rows.begin(), m_rows.end(),
                         [](const auto& a, const auto& b) { return a.second > b.second; });
        for (const auto& row : m_rows)
            m_sum += row.second;
    }
    [[nodiscard]] std::int64_t size() const override { return static_cast<std::int64_t>(m_rows.size()); }
    [[nodiscard]] std::int64_t rows() const override { return m_sum; }
    void walk(const Visitor& visitor) override {
        for (const auto& [text, count] : m_rows)
            if (!visitor(text.view(), text.isNull(), count))
                return;
    }

  private:
    std::vector<std::pair<KvbString, std::int64_t>> m_rows;
    std::int64_t m_sum = 0;
};

DistributionChanges compare(const Counts& before, const Counts& after, const ComparisonLimits& limits) {
    ListedTexts left(before);
    ListedTexts right(after);
    return compareDistributions(left, right, limits);
}

TEST(DistributionComparison, TellsNullFromEmptyAndOrdersBySharesThenCountsThenText) {
    const Counts before({{KvbString(), 4}, {"", 2}, {"a", 2}, {"b", 2}, {"gone", 10}}, &nullFirst);
    const Counts after({{"", 4}, {"a", 1}, {"b", 1}, {"n1", 1}, {"n2", 1}, {"n3", 12}}, &nullFirst);
    const DistributionChanges changes = compare(before, after, {2});
    EXPECT_THAT(changes.appeared.top, ElementsAre(ValueChange{"n3", 0, 12}, ValueChange{"n1", 0, 1}));
    EXPECT_EQ(changes.appeared.texts, 3);
    EXPECT_EQ(changes.appeared.rowsAfter, 14);
    EXPECT_THAT(changes.vanished.top, ElementsAre(ValueChange{"gone", 10, 0}, ValueChange{KvbString(), 4, 0}));
    EXPECT_THAT(changes.moved.top, ElementsAre(ValueChange{"", 2, 4}, ValueChange{"a", 2, 1}));
    EXPECT_EQ(changes.moved.texts, 3);
}

TEST(DistributionComparison, EqualSharesAreNotOrderedByTheirRounding) {
    // As binary fractions 0.2 - 0.1 is more than 0.3 - 0.2.
    const Counts before({{"a", 2}, {"b", 1}, {"c", 7}}, &nullFirst);
    const Counts after({{"a", 3}, {"b", 2}, {"c", 5}}, &nullFirst);
    EXPECT_THAT(compare(before, after, {3}).moved.top,
                ElementsAre(ValueChange{"c", 7, 5}, ValueChange{"a", 2, 3}, ValueChange{"b", 1, 2}));
}

TEST(DistributionComparison, MovedRowsAreCountedOnceAndAddedOnesAreExpected) {
    const auto shares = [](const Counts& before, const Counts& after) {
        const DistributionChanges changes = compare(before, after, {0});
        return std::pair(changes.shareMoved, changes.shareByGrowth);
    };
    const Counts letters({{"a", 50}, {"b", 30}, {"c", 20}}, &nullFirst);
    // 10 rows went from a to d, 5 from b to c.
    EXPECT_EQ(std::pair(0.15, 0.0), shares(letters, Counts({{"a", 40}, {"b", 25}, {"c", 25}, {"d", 10}}, &nullFirst)));
    EXPECT_EQ(std::pair(0.0, 0.0), shares(letters, Counts({{"a", 100}, {"b", 60}, {"c", 40}}, &nullFirst)));
    EXPECT_EQ(std::pair(1.0, 0.0), shares(letters, Counts({}, &nullFirst)));
    EXPECT_EQ(std::pair(0.0, 0.0), shares(Counts({}, &nullFirst), Counts({}, &nullFirst)));
    // A key: each added row has a new text, whether the table grows or shrinks.
    Counts key({}, &nullFirst);
    for (int i = 0; i < 100; ++i)
        key[std::to_string(i)] = 1;
    Counts longer = key;
    for (int i = 100; i < 125; ++i)
        longer[std::to_string(i)] = 1;
    EXPECT_EQ(std::pair(0.2, 0.2), shares(key, longer));
    EXPECT_EQ(std::pair(0.2, 0.2), shares(longer, key));
    // Rows drawn at random move what is expected, and rows of one new text move more.
    std::mt19937 random(3);
    Counts many({}, &nullFirst);
    for (int i = 0; i < 20'000; ++i)
        ++many[std::to_string(random() % 2000)];
    Counts grown = many;
    for (int i = 0; i < 1000; ++i)
        ++grown[std::to_string(random() % 2000)];
    const auto [moved, expected] = shares(many, grown);
    EXPECT_GT(moved, 0.02);
    EXPECT_NEAR(moved, expected, 0.1 * moved);
    Counts alike = many;
    alike["new"] = 1000;
    EXPECT_GT(shares(many, alike).first - shares(many, alike).second, 0.015);
}

TEST(DistributionComparison, LongTextsAreCutBetweenCharacters) {
    const std::string text = std::string(kLongestText - 1, 'x') + "é and more";
    const DistributionChanges changes = compare(Counts({}, &nullFirst), Counts({{text, 1}}, &nullFirst), {1});
    ASSERT_THAT(changes.appeared.top, SizeIs(1));
    EXPECT_EQ(changes.appeared.top[0].text, KvbString(std::string(kLongestText - 1, 'x') + "…"));
}

/// Every list sorted whole, as its description says.
DistributionChanges compareSlowly(const Counts& before, const Counts& after, std::size_t top) {
    DistributionChanges changes;
    const auto sum = [](const Counts& counts) {
        std::int64_t rows = 0;
        for (const auto& entry : counts)
            rows += entry.second;
        return rows;
    };
    changes.rowsBefore = sum(before);
    changes.rowsAfter = sum(after);
    Counts all = before;
    all.insert(after.begin(), after.end());
    const auto countIn = [](const Counts& counts, const KvbString& text) {
        const auto found = counts.find(text);
        return found == counts.end() ? std::int64_t{0} : found->second;
    };
    for (const auto& entry : all) {
        const ValueChange change{entry.first, countIn(before, entry.first), countIn(after, entry.first)};
        if (changes.rowsBefore > 0 && changes.rowsAfter > 0)
            changes.shareMoved +=
                std::max(0.0, static_cast<double>(change.after) / static_cast<double>(changes.rowsAfter) -
                                  static_cast<double>(change.before) / static_cast<double>(changes.rowsBefore));
        if (change.before == change.after)
            continue;
        auto& group = change.before == 0 ? changes.appeared : change.after == 0 ? changes.vanished : changes.moved;
        ++group.texts;
        group.rowsBefore += change.before;
        group.rowsAfter += change.after;
        group.top.push_back(change);
    }
    for (auto* group : {&changes.appeared, &changes.vanished})
        std::stable_sort(group->top.begin(), group->top.end(), [](const ValueChange& a, const ValueChange& b) {
            return a.before + a.after > b.before + b.after;
        });
    const auto distance = [&](const ValueChange& change) {
        return std::abs(change.after * changes.rowsBefore - change.before * changes.rowsAfter);
    };
    std::stable_sort(changes.moved.top.begin(), changes.moved.top.end(),
                     [&](const ValueChange& a, const ValueChange& b) {
                         return std::pair(distance(a), std::abs(a.after - a.before)) >
                                std::pair(distance(b), std::abs(b.after - b.before));
                     });
    for (auto* group : {&changes.appeared, &changes.vanished, &changes.moved})
        group->top.resize(std::min(top, group->top.size()));
    return changes;
}

TEST(DistributionComparison, GivesTheSameAsASlowOneWhateverTheMemory) {
    std::mt19937 random(7);
    for (int round = 0; round < 60; ++round) {
        Counts before({}, &nullFirst);
        Counts after({}, &nullFirst);
        const int texts = 1 + static_cast<int>(random() % 800);
        for (int i = 0; i < texts; ++i) {
            const KvbString text = i == 0 ? KvbString() : KvbString(std::to_string(random() % 2000));
            if (random() % 3 != 0)
                before[text] = 1 + random() % 5;
            if (random() % 3 != 0)
                after[text] = 1 + random() % 5;
        }
        const std::size_t top = random() % 12;
        const DistributionChanges expected = compareSlowly(before, after, top);
        for (const std::size_t memory : {std::size_t{1}, std::size_t{5000}, std::size_t{1} << 20}) {
            const DistributionChanges changes = compare(before, after, {top, memory});
            EXPECT_NEAR(changes.shareMoved, expected.shareMoved, 1e-12) << round << " " << memory;
            for (const auto& [got, wanted] :
                 {std::pair(&changes.appeared, &expected.appeared), std::pair(&changes.vanished, &expected.vanished),
                  std::pair(&changes.moved, &expected.moved)}) {
                EXPECT_EQ(got->texts, wanted->texts);
                EXPECT_EQ(got->rowsBefore, wanted->rowsBefore);
                EXPECT_EQ(got->rowsAfter, wanted->rowsAfter);
                EXPECT_EQ(got->top, wanted->top) << round << " " << memory;
            }
        }
    }
}

} // namespace
} // namespace tavix
