#include "access/CacheCursor.h"
#include "base/GenException.h"

#include <gtest/gtest.h>

namespace tavix {
namespace {

/// The given rows; throws at the row `failAt`.
class ListCursor final : public ProfileCursor {
  public:
    ListCursor(std::vector<KvbString> names, std::vector<std::vector<KvbString>> rows, std::size_t failAt = SIZE_MAX)
        : m_names(std::move(names)), m_rows(std::move(rows)), m_failAt(failAt) {}

    bool next() override {
        if (m_next == m_failAt)
            throw GenException("broken");
        return ++m_next <= m_rows.size();
    }
    int getColumnCount() const override { return static_cast<int>(m_names.size()); }
    KvbString getColumnName(int column) const override { return m_names[static_cast<std::size_t>(column)]; }
    KvbString getColumnValue(int column) const override { return m_rows[m_next - 1][static_cast<std::size_t>(column)]; }
    int getColumnInt(int) const override { return 0; }
    std::int64_t getColumnInt64(int) const override { return 0; }
    double getColumnDouble(int) const override { return 0; }
    bool isColumnNull(int) const override { return false; }
    bool isColumnValid(int) const override { return true; }

  private:
    std::vector<KvbString> m_names;
    std::vector<std::vector<KvbString>> m_rows;
    std::size_t m_failAt;
    std::size_t m_next = 0;
};

TEST(CacheCursor, ReadsTheCopiedRows) {
    ListCursor source({"Name", "Figure"}, {{"a", "12"}, {KvbString(), "2.5"}});
    CacheCursor cache(source);
    EXPECT_EQ(cache.getRowCount(), 2U);
    EXPECT_EQ(cache.getColumnCount(), 2);
    EXPECT_EQ(cache.getColumnName(1), KvbString("Figure"));
    EXPECT_EQ(cache.getColumnName(2), KvbString(""));
    ASSERT_TRUE(cache.next());
    EXPECT_EQ(cache.getColumnValue(0), KvbString("a"));
    EXPECT_EQ(cache.getColumnInt(1), 12);
    EXPECT_EQ(cache.getColumnInt(0), 0);
    ASSERT_TRUE(cache.next());
    EXPECT_TRUE(cache.isColumnNull(0));
    EXPECT_EQ(cache.getColumnValue(0), KvbString("")) << "null reads as an empty text";
    EXPECT_EQ(cache.getColumnDouble(1), 2.5);
    EXPECT_TRUE(cache.isColumnValid(99));
    EXPECT_EQ(cache.getColumnInt64(1), 2);
    cache.setColumnValue(0, 7);
    EXPECT_EQ(cache.getColumnInt(0), 7);
}

TEST(CacheCursor, WithoutACurrentRowEverythingIsEmpty) {
    ListCursor source({"Name"}, {{"12"}});
    CacheCursor cache(source);
    EXPECT_EQ(cache.getColumnValue(0), KvbString(""));
    EXPECT_EQ(cache.getColumnInt(0), 0);
    EXPECT_EQ(cache.getColumnDouble(0), 0.0);
    EXPECT_TRUE(cache.isColumnNull(0));
    cache.setColumnValue(0, 5);
    ASSERT_TRUE(cache.next());
    EXPECT_EQ(cache.getColumnInt(0), 12);
    EXPECT_TRUE(cache.isColumnNull(-1));
    EXPECT_EQ(cache.getColumnValue(1), KvbString(""));
}

TEST(CacheCursor, StartsOverAfterItsEnd) {
    ListCursor source({"Name"}, {{"a"}, {"b"}});
    CacheCursor cache(source);
    for (int round = 0; round < 3; ++round) {
        EXPECT_TRUE(cache.next());
        EXPECT_EQ(cache.getColumnValue(0), KvbString("a"));
        EXPECT_TRUE(cache.next());
        EXPECT_FALSE(cache.next());
        EXPECT_TRUE(cache.isColumnNull(0));
    }
}

TEST(CacheCursor, AResultWithoutRowsHasNoColumns) {
    ListCursor source({"Name"}, {});
    CacheCursor cache(source);
    EXPECT_EQ(cache.getColumnCount(), 0);
    EXPECT_FALSE(cache.next());
    EXPECT_FALSE(cache.next());
    ListCursor empty({}, {{}, {}});
    CacheCursor nothing(empty);
    EXPECT_EQ(nothing.getRowCount(), 0U);
}

TEST(CacheCursor, PassesOnWhatTheSourceThrows) {
    ListCursor source({"Name"}, {{"a"}, {"b"}}, 1);
    EXPECT_THROW(CacheCursor{source}, GenException);
}

} // namespace
} // namespace tavix
