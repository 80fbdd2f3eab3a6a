// The two buttons of a view: Details and Detach.
#include "frame/ui/tests/ViewOverSample.h"
#include "support/RunScript.h"

#include <QClipboard>
#include <QDialog>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <QSignalSpy>
#include <QStackedWidget>
#include <QTimer>
#include <QWindow>

#include <gmock/gmock.h>

namespace tavix {
namespace {

using ::testing::ElementsAre;
using ::testing::StartsWith;
using testing::ViewOverSample;

class ReportDetach : public ViewOverSample {
  protected:
    void SetUp() override {
        ASSERT_TRUE(load());
        ASSERT_TRUE(selectTable("customers"));
    }
    /// Presses the button and returns the text of the dialog that it opens; "" when it opens none.
    std::string details() {
        std::string text;
        QTimer::singleShot(0, qApp, [this, &text] {
            auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            if (!dialog || dialog->objectName() != QStringLiteral("details"))
                return;
            EXPECT_EQ("Details", toUtf8(dialog->windowTitle()));
            EXPECT_EQ(QRect(report().mapToGlobal(QPoint(0, 0)), report().size()), dialog->geometry());
            auto* shown = dialog->findChild<QPlainTextEdit*>();
            EXPECT_TRUE(shown->isReadOnly());
            text = toUtf8(shown->toPlainText());
            for (auto* copy : dialog->findChildren<QPushButton*>()) {
                if (copy->text() == QStringLiteral("&Copy"))
                    copy->click();
            }
            EXPECT_EQ(text, toUtf8(QApplication::clipboard()->text()));
            QTest::keyClick(dialog, Qt::Key_Escape);
            EXPECT_FALSE(dialog->isVisible());
        });
        button(report(), "detailsButton").click();
        QCoreApplication::processEvents();
        return text;
    }
    std::vector<std::string> headers() {
        std::vector<std::string> lines;
        for (CTearOff* window : tearOffs())
            lines.push_back(header(*window));
        return lines;
    }
    /// The sentence that replaces the tabs; "" while a tab is shown.
    static std::string sentence(CTearOff& window) {
        auto* pages = window.GetView().findChild<QStackedWidget*>(QString(), Qt::FindDirectChildrenOnly);
        auto* label = qobject_cast<QLabel*>(pages->currentWidget());
        return label ? toUtf8(label->text()) : "";
    }
};

TEST_F(ReportDetach, DetailsTellWhatIsKnownAboutTheTableOrField) {
    EXPECT_THAT(details(), StartsWith("Name: customers\nType: Table\nSchema: public\n"));
    ASSERT_TRUE(selectField("customers", "city"));
    EXPECT_THAT(details(), StartsWith("Field: city\n"));
    // The lines of a query are kept.
    ASSERT_TRUE(selectTable("big orders"));
    EXPECT_THAT(details(), ::testing::HasSubstr("SELECT *"));
    selectCollection(0);
    ASSERT_TRUE(m_view->SelectField(m_sample.fields.at("customers/balance")));
    EXPECT_THAT(details(), StartsWith("Field: balance\n"));
}

TEST_F(ReportDetach, WithoutATextThereAreNoDetails) {
    ASSERT_TRUE(selectTable("customers"));
    EXPECT_TRUE(button(report(), "detailsButton").isEnabled());
    selectCollection(0);
    EXPECT_FALSE(button(report(), "detailsButton").isEnabled()) << "of a collection itself there is nothing to say";
    EXPECT_EQ("", details());
    ASSERT_TRUE(selectField("customers", "city"));
    EXPECT_TRUE(button(report(), "detailsButton").isEnabled());
    testing::runScript(m_sample.path, "PRAGMA foreign_keys=OFF; DROP TABLE run_field");
    navigator().Refresh(nullptr, RefreshHint::TaskListLost, 0);
    EXPECT_EQ("", details());
}

TEST_F(ReportDetach, AWindowComesUpBesideTheViewWithItsTabAndWithoutButtons) {
    m_view->move(100, 200);
    report().SelectTab(CTableView::Notes);
    const QRect view(report().mapToGlobal(QPoint(0, 0)), report().size());
    CTearOff& window = detach();
    EXPECT_EQ("Table", toUtf8(window.windowTitle()));
    EXPECT_TRUE(window.isWindow());
    EXPECT_EQ(view.size(), window.size());
    const QRect desktop = m_view->screen()->availableVirtualGeometry();
    EXPECT_EQ(std::min(view.x() + 50, desktop.right() + 1 - view.width()), window.x());
    EXPECT_EQ(std::max(view.y() - 50, desktop.y()), window.y());
    EXPECT_EQ(CTableView::Notes, window.GetView().GetCurrentTab());
    EXPECT_EQ(2, rows(window.GetView().GetTab(CTableView::Notes)));
    EXPECT_FALSE(button(window, "detailsButton").isVisible());
    EXPECT_FALSE(button(window, "detachButton").isVisible());
    EXPECT_TRUE(button(report(), "detailsButton").isVisible());
    EXPECT_TRUE(button(report(), "detachButton").isVisible());
    EXPECT_EQ("Details", toUtf8(button(report(), "detailsButton").toolTip()));
    EXPECT_EQ("Detach", toUtf8(button(report(), "detachButton").toolTip()));
    window.resize(500, 300);
    EXPECT_EQ(window.rect(), window.GetView().geometry());

    selectCollection(1);
    EXPECT_EQ("Collection", toUtf8(detach().windowTitle()));
    ASSERT_TRUE(m_view->SelectField(m_sample.fields.at("suppliers/id")));
    EXPECT_EQ("Collection", toUtf8(detach().windowTitle()));
    ASSERT_TRUE(selectField("suppliers", "city"));
    EXPECT_EQ("Table", toUtf8(detach().windowTitle()));
}

TEST_F(ReportDetach, ADoubleClickOnATabDetachesTheViewButNotAWindow) {
    const auto doubleClick = [](QTabBar& tabs, int index) {
        QTest::mouseDClick(&tabs, Qt::LeftButton, {}, tabs.tabRect(index).center());
        QCoreApplication::processEvents();
    };
    doubleClick(strip(), 2);
    ASSERT_EQ(1U, tearOffs().size());
    CReportView& detached = tearOffs().front()->GetView();
    const QSignalSpy requests(&detached, &CReportView::DetachRequested);
    doubleClick(strip(detached), 1);
    EXPECT_EQ(0, requests.count());
    EXPECT_EQ(1U, tearOffs().size());
}

TEST_F(ReportDetach, AWindowInTheCornerIsMovedInside) {
    const QRect desktop = m_view->screen()->availableVirtualGeometry();
    m_view->move(desktop.right() - m_view->width() + 1, desktop.top());
    const CTearOff& window = detach();
    EXPECT_EQ(desktop.right() + 1, window.x() + window.width());
    EXPECT_EQ(desktop.top(), window.y()) << "with its frame";
}

TEST_F(ReportDetach, EveryWindowKeepsItsObjectAndFollowsTheRuns) {
    detach();
    ASSERT_TRUE(selectTable("late orders"));
    detach();
    ASSERT_TRUE(selectField("customers", "name"));
    report().SelectTab(CFieldView::Frequency);
    detach();
    selectCollection(0);
    detach();
    ASSERT_TRUE(selectTable("suppliers"));
    const auto allOfMarch =
        ElementsAre("customers  1,000 records", "late orders  9 of 100 records pass",
                    "name  customers  ·  text  ·  1,000 records  ·  4 distinct values  ·  228 nulls", "Amounts  ");
    EXPECT_THAT(headers(), allOfMarch);
    CTearOff& late = *tearOffs().at(1);
    CTearOff& name = *tearOffs().at(2);
    QWidget& frequencies = name.GetView().GetTab(CFieldView::Frequency);
    EXPECT_EQ("302", cell(frequencies, 1, 1));

    ASSERT_TRUE(setRun(0));
    EXPECT_EQ("The table is not in this run.", sentence(late));
    EXPECT_THAT(headers(), ElementsAre("customers  1,000 records", "late orders  ",
                                       "name  customers  ·  text  ·  1,000 records  ·  4 distinct values  ·  230 nulls",
                                       "Amounts  "));
    EXPECT_EQ("300", cell(frequencies, 1, 1));
    EXPECT_EQ("suppliers  6 records", header(report()));
    EXPECT_EQ(&strip(late), late.GetView().GetLastTabStop());
    strip(late).setCurrentIndex(CTableView::Notes);
    EXPECT_EQ("The table is not in this run.", sentence(late));

    ASSERT_TRUE(setRun(2));
    EXPECT_EQ("", sentence(late));
    EXPECT_THAT(headers(), allOfMarch);
    EXPECT_EQ("302", cell(frequencies, 1, 1));
    EXPECT_TRUE(late.GetView().GetTab(CTableView::Notes).isVisible());

    // Reloading the same report does not change them; while another report is open, they wait for theirs.
    CTearOff* const first = tearOffs().front();
    ASSERT_TRUE(load());
    EXPECT_EQ(4U, tearOffs().size());
    EXPECT_EQ(first, tearOffs().front());
    EXPECT_THAT(headers(), allOfMarch);
    ASSERT_TRUE(m_view->LoadReportForJob("text", m_sample.inventoryJob, m_sample.path));
    ASSERT_EQ(4U, tearOffs().size());
    for (CTearOff* window : tearOffs()) {
        EXPECT_EQ("The report \u201CSales\u201D is closed. Open it again to see its contents here.", sentence(*window));
        for (int index = 0; index < window->GetView().GetTabCount(); ++index) {
            window->GetView().SelectTab(index);
            EXPECT_FALSE(window->GetView().GetTab(index).isVisible());
        }
        for (const int command : {32818, 32819, 32832, 32834})
            EXPECT_FALSE(window->GetView().UpdateCommand(command).enabled) << command;
    }
    EXPECT_THAT(headers(), ElementsAre("customers  ", "late orders  ", "name  ", "Amounts  "));
    EXPECT_TRUE(m_view->GetTavixDoc().SetCurrentJob(m_view->GetTavixDoc().GetCurrentJob()));
    m_view->Broadcast(RefreshHint::OptionsChanged);
    name.GetView().SelectTab(CFieldView::Frequency);
    ASSERT_TRUE(load());
    EXPECT_THAT(headers(), allOfMarch);
    EXPECT_EQ("302", cell(frequencies, 1, 1));
    EXPECT_EQ("", sentence(late));
}

TEST_F(ReportDetach, AFieldWhoseTableIsGoneSaysSo) {
    ASSERT_TRUE(selectField("late orders", "days"));
    CTearOff& window = detach();
    ASSERT_TRUE(selectTable("customers"));
    ASSERT_TRUE(setRun(0));
    EXPECT_EQ("The table is not in this run.", sentence(window));
    EXPECT_EQ("days  late orders", header(window));
    ASSERT_TRUE(setRun(1));
    EXPECT_EQ("", sentence(window));
    EXPECT_EQ(23 + 1, rows(window.GetView().GetTab(0)));
}

TEST_F(ReportDetach, WindowsLiveUntilTheyAreClosedAndGoWithTheView) {
    const QPointer<CTearOff> first = &detach();
    EXPECT_TRUE(execute(CommandId::New));
    EXPECT_TRUE(isEmptyViewShown());
    ASSERT_TRUE(first && first->isVisible());
    EXPECT_EQ("The report \u201CSales\u201D is closed. Open it again to see its contents here.", sentence(*first));
    ASSERT_TRUE(load());
    EXPECT_EQ("", sentence(*first));
    EXPECT_EQ("customers  1,000 records", header(*first));
    EXPECT_TRUE(execute(CommandId::New));
    first->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(first.isNull());

    ASSERT_TRUE(load());
    ASSERT_TRUE(selectTable("customers"));
    const QPointer<CTearOff> second = &detach();
    m_view.reset();
    EXPECT_TRUE(second.isNull());
}

TEST_F(ReportDetach, AWindowBelongsToTheOneThatItCameFrom) {
    CTearOff& window = detach();
    EXPECT_EQ(Qt::Dialog, window.windowType()) << "other windows do not go with their owner under X11";
    EXPECT_EQ(m_view->windowHandle(), window.windowHandle()->transientParent());
    EXPECT_TRUE(window.windowFlags().testFlag(Qt::WindowMaximizeButtonHint));
}

TEST_F(ReportDetach, AWindowHasTheKeysOfTheMainOne) {
    ASSERT_TRUE(selectField("customers", "name"));
    report().SelectTab(CFieldView::Frequency);
    CTearOff& field = detach();
    ASSERT_TRUE(selectTable("suppliers"));
    const auto press = [this](CTearOff& window, Qt::Key key, Qt::KeyboardModifiers held) {
        activate(window);
        window.GetView().FocusContents();
        QString opened;
        QTimer::singleShot(0, qApp, [&opened] {
            if (QWidget* dialog = QApplication::activeModalWidget()) {
                opened = QLatin1String(dialog->metaObject()->className());
                dialog->close();
            }
        });
        QTest::keyClick(QApplication::focusWidget(), key, held);
        QCoreApplication::processEvents();
        return toUtf8(opened);
    };
    EXPECT_EQ("", press(field, Qt::Key_F, Qt::ControlModifier));
    EXPECT_EQ("search", toUtf8(QApplication::focusWidget()->objectName()));
    EXPECT_EQ("tavix::CFilterDlg", press(field, Qt::Key_F, Qt::ControlModifier | Qt::ShiftModifier));
    EXPECT_EQ("tavix::CNoteDlg", press(field, Qt::Key_N, Qt::ControlModifier | Qt::ShiftModifier));
    ASSERT_TRUE(selectTable("customers"));
    CTearOff& table = detach();
    ASSERT_TRUE(selectTable("suppliers"));
    EXPECT_EQ("tavix::CNoteDlg", press(table, Qt::Key_N, Qt::ControlModifier | Qt::ShiftModifier));
    EXPECT_EQ("", press(table, Qt::Key_F, Qt::ControlModifier)) << "there is nothing to filter";
    // Enter opens the field in the frame, whatever the frame shows.
    table.GetView().SelectTab(CTableView::StandardMetrics);
    CUGCtrl& metrics = grid(table.GetView().GetTab(CTableView::StandardMetrics));
    metrics.SelectRow(2);
    QTest::keyClick(&metrics, Qt::Key_Return);
    EXPECT_EQ("balance", m_view->GetSelection().fieldName);
    EXPECT_EQ("customers", m_view->GetSelection().table.name);
    selectCollection(0);
    CTearOff& collection = detach();
    ASSERT_TRUE(selectTable("suppliers"));
    CUGCtrl& members = grid(collection.GetView().GetTab(CTableView::StandardMetrics));
    members.SelectRow(0);
    QTest::keyClick(&members, Qt::Key_Return);
    EXPECT_EQ(ReportSelection::Kind::Collection, m_view->GetSelection().kind);
    EXPECT_NE(-1, m_view->GetSelection().fieldId);
}

TEST_F(ReportDetach, TheViewMayGoBeforeItsClosedWindowsDo) {
    detach();
    ASSERT_TRUE(selectField("customers", "city"));
    detach();
    // Column widths are stored when the grid is destroyed, even if the view was destroyed before.
    grid(tearOffs().back()->GetView().GetTab(0)).setColumnWidth(0, 123);
    EXPECT_TRUE(execute(CommandId::New));
    m_view.reset();
}

TEST_F(ReportDetach, WindowsAreListedByWhatTheyShowAndCanBeRaisedAndClosed) {
    const auto names = [this] {
        std::vector<std::string> all;
        for (const OpenWindow& window : m_view->GetOpenWindows())
            all.push_back(window.name);
        return all;
    };
    EXPECT_THAT(names(), ElementsAre());
    ASSERT_TRUE(selectTable("orders"));
    const QPointer<CTearOff> table = &detach();
    ASSERT_TRUE(selectField("customers", "city"));
    const QPointer<CTearOff> field = &detach();
    selectCollection(0);
    detach();
    EXPECT_EQ("Table", toUtf8(field->windowTitle()));
    EXPECT_THAT(names(), ElementsAre("orders", "customers · city", "Amounts"));
    ASSERT_TRUE(setRun(0));
    execute(CommandId::New);
    EXPECT_THAT(names(), ElementsAre("orders", "customers · city", "Amounts")) << "also while it is closed";

    const std::vector<OpenWindow> windows = m_view->GetOpenWindows();
    activate(*m_view);
    table->showMinimized();
    EXPECT_TRUE(m_view->RaiseWindow(windows.front().id));
    EXPECT_FALSE(table->isMinimized());
    EXPECT_TRUE(QTest::qWaitForWindowActive(table));
    table->close();
    EXPECT_THAT(names(), ElementsAre("customers · city", "Amounts"));
    EXPECT_FALSE(m_view->RaiseWindow(windows.front().id));
    m_view->CloseWindows();
    EXPECT_THAT(names(), ElementsAre());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(field);
}

TEST_F(ReportDetach, AWindowIsClosedByItsKeysAndTheOthersStay) {
    detach();
    CTearOff& second = detach();
    activate(second);
    second.GetView().FocusContents();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
    EXPECT_EQ(1U, tearOffs().size());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    ASSERT_TRUE(setRun(1));
    EXPECT_THAT(headers(), ElementsAre("customers  1,000 records"));
    // A setting of all views reaches the window as well.
    EXPECT_TRUE(execute(CommandId::ShowInvisible));
    EXPECT_TRUE(grid(tearOffs().front()->GetView().GetTab(0)).ShowsInvisible());
}

} // namespace
} // namespace tavix
