#include "access/PrViewer.h"
#include "base/AlertMark.h"
#include "base/tests/ScriptedMessages.h"
#include "base/tests/TempFolder.h"
#include "base/ui/QtText.h"
#include "doc/tests/TestSite.h"
#include "grid/ui/Tints.h"
#include "nav/ui/CTables.h"
#include "nav/ui/NavigatorTabs.h"
#include "nav/ui/NavigatorTree.h"
#include "nav/ui/TreeModel.h"
#include "support/RunScript.h"
#include "support/SampleAlerts.h"
#include "support/SampleRepository.h"

#include <QApplication>
#include <QClipboard>
#include <QMenu>
#include <QTest>

#include <gmock/gmock.h>

namespace tavix {
namespace {

using ::testing::ElementsAre;

class NavigatorOverSample : public ::testing::Test {
  protected:
    NavigatorOverSample() {
        m_site.listeners = {&m_navigator};
        m_navigator.resize(320, 600);
        m_navigator.show();
    }
    void SetUp() override {
        ASSERT_TRUE(m_site.document.OpenReport(m_sample.path, m_sample.salesJob));
        m_site.Broadcast(RefreshHint::RunLoaded);
    }

    [[nodiscard]] NavigatorTree& tree(int page = 0) {
        return *m_navigator.findChild<NavigatorTree*>(QStringLiteral("page%1").arg(page));
    }
    [[nodiscard]] std::string current(int page = 0) { return toUtf8(tree(page).currentIndex().data().toString()); }
    /// Expands customers and selects the field in that row.
    void selectFieldOfCustomers(int row) {
        ASSERT_TRUE(m_navigator.SelectTable("Warehouse", "crm", "public", "customers", 0));
        const QModelIndex table = tree().currentIndex();
        tree().expand(table);
        tree().setCurrentIndex(tree().model()->index(row, 0, table));
        ASSERT_NE(-1, m_site.selection.fieldId);
    }
    [[nodiscard]] int fieldsOfFirstCollection() {
        QAbstractItemModel& model = *tree(1).model();
        const QModelIndex first = model.index(0, 0);
        if (model.canFetchMore(first))
            model.fetchMore(first);
        return model.rowCount(first);
    }
    [[nodiscard]] std::vector<std::string> membership() {
        return m_site.document.GetCollectionsOfField(m_sample.tables.at("customers"),
                                                     m_sample.fields.at("customers/name"));
    }

    testing::TempFolder m_folder;
    testing::SampleRepository m_sample = testing::SampleRepository::build(m_folder.file("sample.tavix"));
    std::unique_ptr<SettingsStore> m_settings = makeMemorySettings();
    testing::ScriptedMessages m_messages;
    testing::TestSite m_site{*m_settings, m_messages};
    CTables m_navigator{m_site};
};

TEST_F(NavigatorOverSample, PageTitlesAreWholeWhereThereIsRoomAndToldInAnyCase) {
    auto* tabs = m_navigator.findChild<NavigatorTabs*>();
    ASSERT_EQ(3, tabs->count());
    EXPECT_EQ("Tables", toUtf8(tabs->tabText(0)));
    EXPECT_EQ("Collections", toUtf8(tabs->tabText(1)));
    EXPECT_EQ("Redundant Data Analyses", toUtf8(tabs->tabText(2)));
    EXPECT_EQ("Redundant Data Analyses", toUtf8(tabs->tabToolTip(2)));
    const auto isCut = [tabs](int index) {
        constexpr int kLeastPadding = 4;
        return tabs->tabRect(index).width() <
               tabs->fontMetrics().horizontalAdvance(tabs->tabText(index)) + 2 * kLeastPadding;
    };
    EXPECT_FALSE(isCut(0) || isCut(1) || isCut(2));
    EXPECT_LE(tabs->tabRect(2).right(), tabs->width());
    m_navigator.resize(200, 600);
    for (const int index : {0, 1})
        EXPECT_EQ(tabs->tabText(index), tabs->fontMetrics().elidedText(tabs->tabText(index), Qt::ElideRight,
                                                                       tabs->tabRect(index).width() - 8))
            << index;
    m_navigator.resize(160, 600);
    EXPECT_TRUE(isCut(2));
    EXPECT_GE(tabs->tabRect(0).width(), tabs->fontMetrics().horizontalAdvance(QStringLiteral("Tables")));
}

TEST_F(NavigatorOverSample, ABranchThatCannotBeReadCanBeOpenedAgain) {
    ASSERT_TRUE(m_navigator.SelectTable("Warehouse", "crm", "public", "customers", 0));
    const QPersistentModelIndex table = tree().currentIndex();
    testing::runScript(m_sample.path, "ALTER TABLE run_field RENAME TO renamed");
    (void)m_site.document.GetViewer()->getFieldList(m_sample.tables.at("customers"));
    m_messages.expectWarn("The contents of the report cannot be read:\n\n" +
                          m_site.document.GetViewer()->getErrorString().str());
    tree().expand(table);
    EXPECT_EQ(0U, m_messages.pending());
    QCoreApplication::processEvents();
    EXPECT_FALSE(tree().isExpanded(table));
    EXPECT_TRUE(tree().model()->hasChildren(table));
    testing::runScript(m_sample.path, "ALTER TABLE renamed RENAME TO run_field");
    tree().expand(table);
    EXPECT_GT(tree().model()->rowCount(table), 3);
}

TEST_F(NavigatorOverSample, APageThatCannotBeReadIsReadWhenItIsShownAgain) {
    testing::runScript(m_sample.path, "ALTER TABLE collection RENAME TO renamed");
    (void)m_site.document.GetViewer()->getGlobalCollections();
    m_messages.expectWarn("The contents of the report cannot be read:\n\n" +
                          m_site.document.GetViewer()->getErrorString().str());
    m_site.Broadcast(RefreshHint::RunLoaded);
    EXPECT_EQ(0, tree(1).model()->rowCount());
    testing::runScript(m_sample.path, "ALTER TABLE renamed RENAME TO collection");
    m_navigator.ShowPage(NavigatorPage::Collections);
    EXPECT_EQ(2, tree(1).model()->rowCount());
}

TEST_F(NavigatorOverSample, TheSelectedFieldGoesIntoACollectionAndThePageShowsIt) {
    const int amounts = m_sample.collections.at("Amounts");
    EXPECT_EQ(0, m_navigator.AddSelectedFieldToCollection(amounts));
    ASSERT_TRUE(m_navigator.SelectTable("Warehouse", "crm", "public", "customers", 0));
    EXPECT_EQ(0, m_navigator.AddSelectedFieldToCollection(amounts));

    selectFieldOfCustomers(1);
    ASSERT_EQ("name", m_site.selection.fieldName);
    EXPECT_EQ(1, m_navigator.AddSelectedFieldToCollection(amounts));
    EXPECT_THAT(membership(), ElementsAre("Amounts"));
    EXPECT_EQ("name", current());
    EXPECT_EQ(3, fieldsOfFirstCollection());

    m_messages.expectWarn("Unable to create field collection mapping:\n\nThe collection has this field already.");
    EXPECT_EQ(0, m_navigator.AddSelectedFieldToCollection(amounts));
    EXPECT_EQ(3, fieldsOfFirstCollection());
}

TEST_F(NavigatorOverSample, TheMenuOfAFieldListsTheCollections) {
    selectFieldOfCustomers(1);
    QMenu& menu = tree().GetCollectionMenu();
    Q_EMIT menu.aboutToShow();
    std::vector<std::string> names;
    for (const QAction* action : menu.actions())
        names.push_back(toUtf8(action->text()));
    ASSERT_THAT(names, ElementsAre("Amounts", "Customer keys"));
    menu.actions().at(1)->trigger();
    EXPECT_THAT(membership(), ElementsAre("Customer keys"));
}

TEST_F(NavigatorOverSample, TypingFindsLoadedNamesOpenedOrNotAndCopyTakesTheName) {
    selectFieldOfCustomers(1);
    tree().collapseAll();
    tree().setCurrentIndex(tree().model()->index(0, 0));
    tree().setFocus();
    QTest::keyClicks(&tree(), QStringLiteral("BALA"));
    EXPECT_EQ("balance", current());
    EXPECT_TRUE(tree().isExpanded(tree().currentIndex().parent()));
    QTest::keyClick(&tree(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ("balance", toUtf8(QApplication::clipboard()->text()));
    // A search does not fetch the fields of tables that were never expanded.
    QTest::keyClicks(&tree(), QStringLiteral("zzz"));
    EXPECT_EQ("balance", current());
}

TEST_F(NavigatorOverSample, SelectTableOpensTheWayAndAFailureSelectsNothing) {
    m_navigator.ShowPage(NavigatorPage::Collections);
    ASSERT_TRUE(m_navigator.SelectTable("/data/files", "", "", "airports", 4));
    EXPECT_EQ(NavigatorPage::Tables, m_navigator.GetPage());
    EXPECT_EQ("airports", current());
    EXPECT_TRUE(tree().isExpanded(tree().currentIndex().parent()));
    EXPECT_FALSE(m_navigator.SelectTable("/data/files", "", "", "airports", 0));
    EXPECT_EQ("", current());
    EXPECT_EQ(ReportSelection::Kind::Nothing, m_site.selection.kind);
}

TEST_F(NavigatorOverSample, TablesAndFieldsWithRaisedAlertsHaveADotAndSaySo) {
    testing::addAlert(m_sample, "customers/name", MetricId::NullCount, {.value1 = 227, .level = AlertLevel::Error});
    testing::addAlert(m_sample, "customers/city", MetricId::NullCount, {.value1 = 1e6});
    m_site.Broadcast(nullptr, RefreshHint::AlertsChanged, 0);
    ASSERT_TRUE(m_navigator.SelectTable("Warehouse", "crm", "public", "customers", 0));
    const QModelIndex table = tree().currentIndex();
    tree().expand(table);
    /// "mark text" of the table, or of a field in that row.
    const auto line = [&](int row) {
        const QModelIndex at = row < 0 ? table : tree().model()->index(row, 0, table);
        return std::to_string(at.data(TreeModel::AlertRole).toInt()) + " " +
               toUtf8(at.data(Qt::AccessibleTextRole).toString());
    };
    const std::string error = std::to_string(static_cast<int>(AlertMark::Error));
    EXPECT_EQ(error + " customers 1,000, Alerts raised: 1 error", line(-1));
    EXPECT_EQ("customers", toUtf8(table.data().toString()));
    EXPECT_THAT(toUtf8(table.data(Qt::ToolTipRole).toString()), ::testing::EndsWith("\nAlerts raised: 1 error"));
    int fieldsWithDot = 0;
    for (int row = 0; row < tree().model()->rowCount(table); ++row) {
        const QModelIndex field = tree().model()->index(row, 0, table);
        const bool isName = field.data().toString() == QLatin1String("name");
        EXPECT_EQ(isName ? "name" : "none", line(row).substr(0, 1) == error ? "name" : "none") << row;
        fieldsWithDot += isName ? 1 : 0;
    }
    EXPECT_EQ(1, fieldsWithDot);
    // The dot is drawn over the icon, in the colour of errors.
    const QImage image = tree().viewport()->grab(tree().visualRect(table)).toImage();
    int alarming = 0;
    for (int x = 0; x < 60 && x < image.width(); ++x)
        for (int y = 0; y < image.height(); ++y)
            alarming += image.pixelColor(x, y) == tint::alert(tree().palette()) ||
                                image.pixelColor(x, y) == tree().palette().color(QPalette::HighlightedText)
                            ? 1
                            : 0;
    EXPECT_GT(alarming, 10);
}

} // namespace
} // namespace tavix
