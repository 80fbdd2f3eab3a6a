// Accessibility: use without sight or mouse.
#include "base/ui/tests/NamedControls.h"
#include "shell/tests/ShellOverSample.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QDialog>
#include <QDropEvent>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QTabBar>
#include <QTabWidget>
#include <QTableView>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <QTreeView>

#include <gmock/gmock.h>

#include <set>

namespace tavix::shell {
namespace {

using tavix::testing::namedControls;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

class ShellAccess : public ShellOverSample {
  protected:
    void SetUp() override {
        QApplication::setActiveWindow(&m_window);
        ASSERT_TRUE(QTest::qWaitForWindowActive(&m_window));
    }
    void openSales() {
        ASSERT_TRUE(open(m_sample.path));
        ASSERT_TRUE(m_window.openReportNamed("Sales"));
        ASSERT_TRUE(m_host.SelectTable("Warehouse", "ODBC", "crm", "public", "customers"));
    }
    /// The controls that the Tab key reaches, starting and ending at the focus.
    std::vector<QWidget*> walk(Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        std::vector<QWidget*> reached;
        const std::size_t kEnough = 50;
        do {
            reached.push_back(QApplication::focusWidget());
            QTest::keyClick(reached.back(), modifiers ? Qt::Key_Backtab : Qt::Key_Tab, modifiers);
        } while (QApplication::focusWidget() != reached.front() && reached.size() < kEnough);
        return reached;
    }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
    }
    [[nodiscard]] QTreeView* tree() { return m_window.findChild<QTreeView*>(QStringLiteral("page0")); }
    [[nodiscard]] QTableView* grid() {
        return m_window.findChild<QWidget*>(QStringLiteral("standardMetrics"))->findChild<QTableView*>();
    }
    bool drop(const QString& path) {
        QMimeData data;
        data.setUrls({QUrl::fromLocalFile(path)});
        QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        enter.ignore();
        QApplication::sendEvent(&m_window, &enter);
        if (!enter.isAccepted())
            return false;
        QDropEvent event(QPointF(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&m_window, &event);
        return true;
    }
};

TEST_F(ShellAccess, EveryControlOfEveryDialogHasAName) {
    openSales();
    const auto openBy = [](const auto& act, int controls) {
        int seen = 0;
        QString title;
        QTimer::singleShot(0, qApp, [&seen, &title] {
            auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            if (!dialog)
                return;
            title = dialog->windowTitle();
            auto* pages = dialog->findChild<QTabWidget*>();
            for (int page = 1; pages && page < pages->count(); ++page)
                pages->setCurrentIndex(page);
            seen = namedControls(*dialog);
            dialog->reject();
        });
        act();
        EXPECT_GE(seen, controls) << toUtf8(title);
        EXPECT_NE("", toUtf8(title));
    };
    const auto command = [this](int id) { return [this, id] { m_host.ExecuteCommand(id); }; };
    openBy(command(40001), 20);
    openBy(command(40002), 3);
    openBy(command(40010), 3);
    openBy(command(32818), 4);
    openBy(command(32838), 4);
    openBy([this] { m_window.findChild<QToolButton*>(QStringLiteral("detailsButton"))->click(); }, 3);
}

TEST_F(ShellAccess, EveryControlHasAName) {
    openSales();
    EXPECT_GT(namedControls(m_window), 10);
    // For every selection, and in a detached window.
    tree()->expand(tree()->currentIndex());
    tree()->setCurrentIndex(tree()->model()->index(0, 0, tree()->currentIndex()));
    ASSERT_TRUE(m_host.ExecuteCommand(32898));
    EXPECT_GT(namedControls(m_window), 30);
    m_window.showReports();
    namedControls(m_window);
    m_window.showWelcome();
    namedControls(m_window);
    // Every menu entry has a text and a mnemonic that is unique in its menu.
    for (const QAction* title : m_window.menuBar()->actions()) {
        std::set<QString> letters;
        for (const QAction* action : title->menu()->actions()) {
            const qsizetype mark = action->text().indexOf(u'&');
            if (action->isSeparator())
                continue;
            EXPECT_GT(action->text().size(), 2);
            if (mark >= 0) {
                EXPECT_TRUE(letters.insert(action->text().mid(mark + 1, 1).toLower()).second) << toUtf8(action->text());
            }
        }
    }
}

TEST_F(ShellAccess, TabReachesTreeGridAndRunsAndComesBackTheSameWay) {
    openSales();
    tree()->setFocus();
    const std::vector<QWidget*> forth = walk();
    const std::set<QWidget*> reached(forth.begin(), forth.end());
    EXPECT_TRUE(reached.count(tree()));
    EXPECT_TRUE(reached.count(grid()));
    EXPECT_TRUE(reached.count(m_window.findChild<QComboBox*>()));
    EXPECT_TRUE(reached.count(m_window.findChild<QWidget*>(QStringLiteral("navigator"))->findChild<QTabBar*>()));
    // No control twice, and no invisible one.
    EXPECT_EQ(reached.size(), forth.size());
    for (const QWidget* widget : forth)
        EXPECT_TRUE(widget->isVisible()) << widget->metaObject()->className();
    const std::vector<QWidget*> back = walk(Qt::ShiftModifier);
    EXPECT_EQ(reached, std::set<QWidget*>(back.begin(), back.end()));
}

TEST_F(ShellAccess, TheKeysLeadFromReportsToRunsAndBack) {
    ASSERT_TRUE(open(m_sample.path));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Home);
    press(Qt::Key_Return);
    ASSERT_TRUE(m_host.HasReport());
    openSales();
    press(Qt::Key_Down, Qt::AltModifier);
    EXPECT_EQ(m_sample.salesRuns.at(1), m_host.GetCurrentRun());
    press(Qt::Key_Down, Qt::AltModifier);
    press(Qt::Key_Down, Qt::AltModifier);
    EXPECT_EQ(m_sample.salesRuns.at(0), m_host.GetCurrentRun());
    press(Qt::Key_Up, Qt::AltModifier);
    EXPECT_EQ(m_sample.salesRuns.at(1), m_host.GetCurrentRun());
    press(Qt::Key_F5);
    EXPECT_EQ(m_sample.salesRuns.at(1), m_host.GetCurrentRun());
    press(Qt::Key_J, Qt::ControlModifier);
    EXPECT_EQ("sample.tavix - Tavix", title());
    EXPECT_THAT(m_messages.texts, ElementsAre());
}

// A key opens the context menu, which adds the selected fields to a collection.
TEST_F(ShellAccess, ContextMenusOpenWithAKeyAndAddFieldsToCollections) {
    openSales();
    const auto chooseSecondCollection = [](QWidget* widget) {
        std::vector<std::string> entries;
        QTimer::singleShot(0, qApp, [&entries] {
            auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            if (!menu)
                return;
            for (const QAction* action : menu->actions())
                entries.push_back(toUtf8(action->text()));
            QMenu* collections = menu->actions().front()->menu();
            if (collections) {
                Q_EMIT collections->aboutToShow();
                collections->actions().at(1)->trigger();
            }
            menu->close();
        });
        QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(1, 1), widget->mapToGlobal(QPoint(1, 1)));
        QApplication::sendEvent(widget, &event);
        return entries;
    };
    const auto collectionsOfRow = [this](int row) { return toUtf8(grid()->model()->index(row, 1).data().toString()); };
    ASSERT_EQ("name", toUtf8(grid()->model()->index(1, 0).data().toString()));
    EXPECT_EQ("", collectionsOfRow(1));

    grid()->setFocus();
    grid()->selectRow(1);
    QTest::keyClick(grid(), Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ("&Add to Collection", chooseSecondCollection(grid()).at(0));
    EXPECT_EQ("Customer keys", collectionsOfRow(1));
    EXPECT_EQ("Amounts, Customer keys", collectionsOfRow(2));
    EXPECT_EQ("", collectionsOfRow(3));

    const QModelIndex table = tree()->currentIndex();
    EXPECT_THAT(chooseSecondCollection(tree()), ElementsAre("&Copy Name"));
    tree()->expand(table);
    tree()->setCurrentIndex(tree()->model()->index(3, 0, table));
    EXPECT_THAT(chooseSecondCollection(tree()), ElementsAre("&Add to Collection", "&Copy Name"));
    tree()->setCurrentIndex(table);
    EXPECT_EQ("Customer keys", collectionsOfRow(3));
    EXPECT_THAT(m_messages.texts, ElementsAre());
}

TEST_F(ShellAccess, AFileDroppedOnTheWindowIsOpened) {
    EXPECT_TRUE(drop(toQString(m_sample.path)));
    EXPECT_EQ("sample.tavix - Tavix", title());
    EXPECT_TRUE(drop(toQString(m_folder.file("missing.tavix"))));
    EXPECT_EQ(1U, m_messages.texts.size());
    EXPECT_EQ("sample.tavix - Tavix", title());

    QMimeData words;
    words.setText(QStringLiteral("no file"));
    QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction, &words, Qt::LeftButton, Qt::NoModifier);
    enter.ignore();
    QApplication::sendEvent(&m_window, &enter);
    EXPECT_FALSE(enter.isAccepted());
}

TEST_F(ShellAccess, RepositoriesOpenedLatelyAreOffered) {
    const std::string other = m_folder.file("other & more.tavix");
    ASSERT_TRUE(QFile::copy(toQString(m_sample.path), toQString(other)));
    ASSERT_TRUE(open(m_sample.path));
    ASSERT_TRUE(open(other));
    QMenu* recent = nullptr;
    for (QMenu* menu : m_window.findChildren<QMenu*>()) {
        if (menu->title() == QStringLiteral("Open &Recent"))
            recent = menu;
    }
    ASSERT_NE(nullptr, recent);
    Q_EMIT recent->aboutToShow();
    ASSERT_EQ(2, recent->actions().size());
    EXPECT_THAT(toUtf8(recent->actions().at(0)->text()), HasSubstr("other && more.tavix"));
    recent->actions().at(1)->trigger();
    EXPECT_EQ("sample.tavix - Tavix", title());

    m_window.showWelcome();
    auto* list = m_window.findChild<QListWidget*>();
    ASSERT_EQ(2, list->count());
    list->setFocus();
    list->setCurrentRow(1);
    press(Qt::Key_Return);
    EXPECT_EQ("other & more.tavix - Tavix", title());

    // A missing file is removed from the list after an attempt to open it.
    ASSERT_TRUE(QFile::remove(toQString(m_sample.path)));
    EXPECT_FALSE(open(m_sample.path));
    EXPECT_THAT(ShellState(m_host.GetSettings()).recentRepositories(), ElementsAre(other));
}

} // namespace
} // namespace tavix::shell
