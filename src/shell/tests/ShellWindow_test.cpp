#include "shell/tests/ShellOverSample.h"

#include <QAction>
#include <QComboBox>
#include <QFile>
#include <QTest>
#include <QTreeWidget>

#include <gmock/gmock.h>

namespace tavix::shell {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

TEST_F(ShellOverSample, aRepositoryShowsItsReportsAndEnterOpensOne) {
    EXPECT_EQ("Tavix", title());
    ASSERT_TRUE(open(m_sample.path));
    EXPECT_EQ("sample.tavix - Tavix", title());
    auto* list = m_window.findChild<QTreeWidget*>();
    ASSERT_EQ(2, list->topLevelItemCount());
    list->setCurrentItem(list->findItems(QStringLiteral("Sales"), Qt::MatchExactly).front());
    QTest::keyClick(list, Qt::Key_Return);
    EXPECT_THAT(title(), ::testing::StartsWith("Sales - "));
    EXPECT_THAT(title(), ::testing::EndsWith(" - Tavix"));
    EXPECT_THAT(m_messages.texts, ElementsAre());
}

TEST_F(ShellOverSample, runsAreListedNewestFirstAndFollowTheKeys) {
    ASSERT_TRUE(open(m_sample.path));
    ASSERT_TRUE(m_window.openReportNamed("Sales"));
    auto* runs = m_window.findChild<QComboBox*>();
    ASSERT_EQ(3, runs->count());
    EXPECT_EQ(0, runs->currentIndex());
    EXPECT_THAT(toUtf8(runs->itemText(1)), HasSubstr("February"));
    EXPECT_THAT(toUtf8(runs->itemText(2)), HasSubstr("January"));
    runs->setFocus();
    QTest::keyClick(runs, Qt::Key_End);
    EXPECT_EQ(m_sample.salesRuns.front(), m_host.GetCurrentRun());
    EXPECT_THAT(title(), HasSubstr("January"));
}

TEST_F(ShellOverSample, whatCannotBeOpenedIsSaidAndNothingIsLost) {
    ASSERT_TRUE(open(m_sample.path));
    ASSERT_TRUE(m_window.openReportNamed("Sales"));
    const std::string before = title();
    const std::string garbage = m_folder.file("garbage.tavix");
    QFile file(toQString(garbage));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("this is no repository, it only looks long enough to be one");
    file.close();
    EXPECT_FALSE(open(garbage));
    EXPECT_FALSE(open(m_folder.file("missing.tavix")));
    EXPECT_FALSE(m_window.openReportNamed("Nothing"));
    EXPECT_EQ(3U, m_messages.texts.size());
    EXPECT_EQ(before, title());
    EXPECT_TRUE(m_host.HasReport());
    EXPECT_THAT(ShellState(m_host.GetSettings()).recentRepositories(), ElementsAre(m_sample.path));
}

TEST_F(ShellOverSample, newLeadsBackToTheList) {
    ASSERT_TRUE(open(m_sample.path));
    ASSERT_TRUE(m_window.openReportNamed("Sales"));
    for (QAction* action : m_window.findChildren<QAction*>()) {
        if (action->data().toInt() == static_cast<int>(CommandId::New))
            action->trigger();
    }
    EXPECT_FALSE(m_host.HasReport());
    EXPECT_TRUE(m_window.findChild<QTreeWidget*>()->isVisible());
    EXPECT_EQ("sample.tavix - Tavix", title());
}

TEST(ShellState, recentRepositoriesAreEightTheLatestFirst) {
    const auto store = makeMemorySettings();
    ShellState state(*store);
    for (int i = 0; i < 10; ++i)
        state.addRecentRepository("/r" + std::to_string(i));
    state.addRecentRepository("/r5");
    state.removeRecentRepository("/r8");
    EXPECT_THAT(state.recentRepositories(), ElementsAre("/r5", "/r9", "/r7", "/r6", "/r4", "/r3", "/r2"));
}

} // namespace
} // namespace tavix::shell
