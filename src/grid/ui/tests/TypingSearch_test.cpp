#include "grid/ui/tests/GridRows.h"

#include <QLabel>
#include <QTest>

#include <gmock/gmock.h>

namespace tavix {
namespace {

using testing::Rows;

TEST(TypingSearch, FindsByTheFirstColumn) {
    Rows rows(30);
    CUGCtrl grid;
    grid.SetSource(&rows);
    grid.show();
    QTest::keyClicks(&grid, QStringLiteral("row17"));
    EXPECT_EQ(17, grid.GetCurrentRow());
    qint64 activated = -1;
    QObject::connect(&grid, &CUGCtrl::RowActivated, [&](qint64 row) { activated = row; });
    QTest::keyClick(&grid, Qt::Key_Return);
    EXPECT_EQ(17, activated);
}

class LongTyping : public ::testing::Test {
  protected:
    // More rows than one slice can search.
    static constexpr int kRows = 1'500'000;

    LongTyping() {
        testing::show(m_grid, m_source, 400, 300);
        m_grid.SelectRow(0);
    }
    ~LongTyping() override { m_grid.SetSource(nullptr); }
    /// "" while it is hidden.
    [[nodiscard]] std::string line() {
        const auto* line = m_grid.findChild<QLabel*>(QStringLiteral("typingSearch"));
        return line && line->isVisible() ? toUtf8(line->text()) : "";
    }

    Rows m_source{kRows};
    CUGCtrl m_grid;
};

TEST_F(LongTyping, FindsTheLastRowOfALongList) {
    m_grid.keyboardSearch(QStringLiteral("row1499999"));
    EXPECT_NE("", line()) << "it goes on";
    EXPECT_EQ(0, m_grid.GetCurrentRow());
    EXPECT_TRUE(QTest::qWaitFor([this] { return m_grid.GetCurrentRow() == kRows - 1; }, 60'000));
    EXPECT_EQ("", line());
}

TEST_F(LongTyping, CanBeStoppedAndSaysWhatItDoes) {
    m_grid.keyboardSearch(QStringLiteral("row14999999"));
    EXPECT_THAT(line(), ::testing::StartsWith("Looking for \u201Crow14999999\u201D: "));
    EXPECT_THAT(line(), ::testing::EndsWith(" of 1,500,000 rows. Esc stops."));
    QTest::keyClick(&m_grid, Qt::Key_Escape);
    EXPECT_EQ("", line());
    const std::size_t asked = m_source.asked.size();
    QCoreApplication::processEvents();
    EXPECT_EQ(asked, m_source.asked.size());
    EXPECT_EQ(0, m_grid.GetCurrentRow());

    // Moving to another row stops it as well, and so does reading the rows again.
    m_grid.keyboardSearch(QStringLiteral("row14999999"));
    ASSERT_NE("", line());
    QTest::keyClick(&m_grid, Qt::Key_Down);
    EXPECT_EQ("", line());
    m_grid.keyboardSearch(QStringLiteral("row14999999"));
    ASSERT_NE("", line());
    m_grid.SourceChanged();
    EXPECT_EQ("", line());
}

TEST_F(LongTyping, GoesOnWithWhatIsTypedMeanwhile) {
    m_grid.keyboardSearch(QStringLiteral("row149"));
    EXPECT_EQ(149, m_grid.GetCurrentRow());
    m_grid.keyboardSearch(QStringLiteral("9998"));
    ASSERT_NE("", line());
    m_grid.keyboardSearch(QStringLiteral("x"));
    EXPECT_THAT(line(), ::testing::StartsWith("Looking for \u201Crow1499998x\u201D: "));
    EXPECT_TRUE(QTest::qWaitFor([this] { return line().rfind("No row", 0) == 0; }, 60'000));
    EXPECT_EQ("No row begins with \u201Crow1499998x\u201D.", line());
    EXPECT_EQ(149, m_grid.GetCurrentRow());
}

} // namespace
} // namespace tavix
