#include "frame/ui/tests/ViewOverSample.h"
#include "support/RunScript.h"
#include "support/SampleRules.h"
#include "tabs/ui/CRunView.h"
#include "tabs/ui/OverviewCardButton.h"

#include <gmock/gmock.h>

namespace tavix {
namespace {

using ::testing::ElementsAre;
using ::testing::StartsWith;

class ReportOverview : public testing::ViewOverSample {
  protected:
    void SetUp() override {
        testing::addRules(m_sample);
        ASSERT_TRUE(load());
        ASSERT_TRUE(QTest::qWaitFor([this] { return m_view->GetItemCode() == 0; })) << "the first table";
    }
    QTreeView& tree() { return *m_view->findChild<QTreeView*>(QStringLiteral("page0")); }
    /// In the order of the tree: 0 "Warehouse", 1 "/data/files".
    void selectSource(int row) { tree().setCurrentIndex(tree().model()->index(row, 0)); }
    [[nodiscard]] CRunView& overview() { return dynamic_cast<CRunView&>(m_view->GetReportPane()); }
    std::vector<std::string> cards() {
        std::vector<std::string> texts;
        for (const auto* card : overview().findChildren<OverviewCardButton*>())
            texts.push_back(toUtf8(card->accessibleName()));
        return texts;
    }
    OverviewCardButton& card(const char* caption) {
        for (auto* each : overview().findChildren<OverviewCardButton*>()) {
            if (each->text() == QLatin1String(caption))
                return *each;
        }
        throw std::runtime_error(std::string("no card ") + caption);
    }
    void pressEnter(QWidget& widget) {
        QTest::keyClick(&widget, Qt::Key_Return);
        QCoreApplication::processEvents();
    }
};

TEST_F(ReportOverview, ASelectedSourceShowsItsFiguresAndNothingToExport) {
    selectSource(1);
    EXPECT_EQ(0U, header(overview()).find("/data/files"));
    EXPECT_THAT(cards(), ElementsAre("Records: 5", "Tables: 1", "Fields: 2", "Damaged rows: 2", "Alerts raised: 0",
                                     "Rules violated: 0", "Findings: 0"));
    EXPECT_EQ(-1, m_view->GetItemCode());
    EXPECT_FALSE(m_view->GetTavixMain().HasCurrentItem());
    EXPECT_EQ(&list(overview(), "Fields with nulls"), m_view->GetReportPane().GetLastTabStop());
    selectSource(0);
    EXPECT_EQ("Tables: 6", cards()[1]);
    tree().setCurrentIndex({});
    EXPECT_EQ("Tables: 7", cards()[1]) << "the whole run";
    EXPECT_EQ(0U, header(overview()).find("Sales"));
    navigator().ShowPage(NavigatorPage::Collections);
    EXPECT_THROW((void)overview(), std::bad_cast) << "a collection is to be chosen";
}

TEST_F(ReportOverview, FiguresAndRowsAreDoors) {
    selectSource(1);
    pressEnter(card("Damaged rows"));
    EXPECT_THAT(header(report()), StartsWith("airports  5 records"));
    selectSource(0);
    QTest::mouseClick(&card("Rules violated"), Qt::LeftButton);
    QCoreApplication::processEvents();
    EXPECT_EQ(CTableView::BusinessRules, report().GetCurrentTab());
    selectSource(0);
    CUGCtrl& nulls = list(overview(), "Fields with nulls");
    nulls.SelectRow(1);
    EXPECT_EQ("name", toUtf8(nulls.model()->index(1, 0).data().toString()));
    pressEnter(nulls);
    EXPECT_THAT(header(report()), StartsWith("name  customers"));
    selectSource(0);
    EXPECT_EQ(Qt::NoFocus, card("Alerts raised").focusPolicy()) << "leads nowhere";
    QTest::mouseClick(&card("Alerts raised"), Qt::LeftButton);
    QCoreApplication::processEvents();
    EXPECT_EQ("Alerts raised: 0", cards()[4]);
}

TEST_F(ReportOverview, AnotherRunShowsItsOwnOverviewAndAnotherReportItsOwn) {
    tree().setCurrentIndex({});
    EXPECT_EQ("Tables: 7", cards()[1]);
    ASSERT_TRUE(setRun(0));
    EXPECT_EQ("Tables: 6", cards()[1]);
    ASSERT_TRUE(m_view->LoadReportForJob("", m_sample.inventoryJob, m_sample.path));
    EXPECT_THROW((void)overview(), std::bad_cast) << "its first table is about to be selected";
    ASSERT_TRUE(QTest::qWaitFor([this] { return m_view->GetItemCode() == 0; }));
    selectSource(0);
    EXPECT_EQ("Records: 2", cards()[0]);
    execute(CommandId::New);
    EXPECT_THROW((void)overview(), std::bad_cast);
}

TEST_F(ReportOverview, ADamagedRepositorySaysSoAndLeavesThePaneEmpty) {
    tree().setCurrentIndex({});
    ASSERT_TRUE(setRun(1));
    testing::runScript(m_sample.path, "ALTER TABLE run_field RENAME TO gone");
    m_messages.expectWarn("The overview of the run cannot be read:\n\nThe repository \"" + m_sample.path +
                          "\" is not built as it should be: no such table: run_field.");
    ASSERT_TRUE(setRun(0));
    QCoreApplication::processEvents();
    EXPECT_THROW((void)overview(), std::bad_cast);
}

TEST_F(ReportOverview, ANarrowPanePutsTheListsBelowEachOther) {
    selectSource(0);
    const auto isBeside = [this] {
        QCoreApplication::processEvents();
        const QWidget* first = &list(overview(), "Tables");
        const QWidget* second = &list(overview(), "Alerts and rules");
        return first->mapTo(m_view.get(), QPoint()).y() == second->mapTo(m_view.get(), QPoint()).y();
    };
    EXPECT_TRUE(isBeside());
    m_view->resize(700, 500);
    EXPECT_FALSE(isBeside());
}

} // namespace
} // namespace tavix
