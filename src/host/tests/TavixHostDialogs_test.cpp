// Dialogs and menus run event loops of their own, in which a shell's events are handled too: here the shell destroys or
// changes the viewer while one is open.
#include "host/tests/HostOverSample.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QPointer>
#include <QTabBar>
#include <QTest>
#include <QTimer>
#include <QToolButton>

#include <algorithm>
#include <array>
#include <functional>
#include <optional>

namespace Veldra::Solenne::Tavix {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// The dialogs and menus that run an event loop within a call.
enum class Opened {
    Options,
    DeleteHistory,
    NoteCategories,
    Alerts,
    TableNote,
    FieldNote,
    Filter,
    Details,
    ListMenu,
    TreeMenu,
};

constexpr std::array kAll = {Opened::Options,   Opened::DeleteHistory, Opened::NoteCategories, Opened::Alerts,
                             Opened::TableNote, Opened::FieldNote,     Opened::Filter,         Opened::Details,
                             Opened::ListMenu,  Opened::TreeMenu};

/// The command that opens it, if one does.
std::optional<CommandId> commandOf(Opened what) {
    switch (what) {
    case Opened::Options:
        return CommandId::Options;
    case Opened::DeleteHistory:
        return CommandId::DeleteHistory;
    case Opened::NoteCategories:
        return CommandId::NoteCategories;
    case Opened::Alerts:
        return CommandId::Alerts;
    case Opened::TableNote:
        return CommandId::AddTableNote;
    case Opened::FieldNote:
        return CommandId::AddFieldNote;
    case Opened::Filter:
        return CommandId::Filter;
    default:
        return std::nullopt;
    }
}

bool isMenu(Opened what) {
    return what == Opened::ListMenu || what == Opened::TreeMenu;
}

class HostDialogs : public HostOverSample, public ::testing::WithParamInterface<Opened> {
  protected:
    void SetUp() override {
        m_host.DeleteHistoryEvent.Attach([](const std::function<void()>& perform) { perform(); });
        m_host.DialogEvent.Attach([this](TavixHost&, bool isOpen) { m_dialogs.push_back(isOpen); });
        ASSERT_TRUE(load());
        ASSERT_TRUE(m_host.SelectTable("Warehouse", "ODBC", "crm", "public", "customers"));
    }
    void selectField(int row) {
        grid().selectRow(row);
        QTest::keyClick(&grid(), Qt::Key_Return);
        ASSERT_TRUE(isShown("fieldView"));
    }
    void showTab(int index) { report()->findChild<QTabBar*>(QStringLiteral("tabStrip"))->setCurrentIndex(index); }
    static void askForMenu(QWidget& widget) {
        QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(), widget.mapToGlobal(QPoint(5, 5)));
        QCoreApplication::sendEvent(&widget, &event);
    }

    /// Opens it, and calls `act` in its event loop. Returns when it is closed.
    void open(Opened what, const std::function<void()>& act) {
        int acted = 0;
        if (what == Opened::FieldNote || what == Opened::Filter)
            selectField(1);
        if (what == Opened::Filter)
            showTab(1);
        QTimer::singleShot(0, qApp, [&acted, act] {
            ++acted;
            ASSERT_TRUE(QApplication::activeModalWidget() || QApplication::activePopupWidget());
            act();
        });
        if (const auto command = commandOf(what))
            m_host.ExecuteCommand(static_cast<int>(*command));
        else if (what == Opened::Details)
            report()->findChild<QToolButton*>(QStringLiteral("detailsButton"))->click();
        else
            askForMenu(what == Opened::ListMenu ? static_cast<QWidget&>(grid()) : tree(0));
        EXPECT_EQ(1, acted) << "it was not opened";
    }
    static void closeIt() {
        QWidget* popup = QApplication::activePopupWidget();
        (popup ? popup : QApplication::activeModalWidget())->close();
    }
    static bool isAnythingVisible() {
        const QWidgetList windows = QApplication::topLevelWidgets();
        return std::any_of(windows.begin(), windows.end(), [](const QWidget* window) { return window->isVisible(); });
    }

    std::vector<bool> m_dialogs;
};

TEST_P(HostDialogs, TheHostMayGoUnderThem) {
    const QPointer<QWidget> view = m_view;
    open(GetParam(), [this] {
        m_host.Dispose();
        EXPECT_FALSE(m_host.HasReport());
        EXPECT_FALSE(m_host.ExecuteCommand(static_cast<int>(CommandId::New)));
        EXPECT_FALSE(isAnythingVisible());
    });
    EXPECT_FALSE(m_host.IsDialogOpen());
    QCoreApplication::processEvents();
    EXPECT_FALSE(view) << "nothing uses it any more";
    // The host can have another window, which has nothing of the old one.
    m_view = TavixQtWindow::Build(m_host, nullptr);
    m_view->show();
    EXPECT_TRUE(load());
}

TEST_P(HostDialogs, TheReportStaysUntilTheyAreClosed) {
    const int run = m_host.GetCurrentRun();
    const std::size_t runs = m_host.GetJobRuns().size();
    open(GetParam(), [&] {
        EXPECT_EQ(!isMenu(GetParam()), m_host.IsDialogOpen());
        if (m_host.IsDialogOpen()) {
            EXPECT_FALSE(m_host.LoadReportForJob("", m_sample.inventoryJob, &m_connection));
            EXPECT_FALSE(m_host.SetCurrentRun(m_sample.salesRuns.front()));
            EXPECT_FALSE(m_host.SelectTable("Warehouse", "ODBC", "", "dbo", "suppliers"));
            EXPECT_TRUE(m_host.ExecuteCommand(static_cast<int>(CommandId::New)));
            EXPECT_FALSE(m_host.ExecuteUpdateUICommand(static_cast<int>(CommandId::New)).Enabled);
            EXPECT_FALSE(m_host.ExecuteCommand(1)) << "nobody knows it";
            EXPECT_EQ(4U, m_messages.texts.size());
            EXPECT_THAT(m_messages.texts, ::testing::Each("The report has an open dialog. Close it first."));
            m_messages.texts.clear();
        }
        closeIt();
    });
    EXPECT_EQ("Sales", m_host.GetReportTitle());
    EXPECT_EQ(run, m_host.GetCurrentRun());
    EXPECT_EQ(runs, m_host.GetJobRuns().size());
    QCoreApplication::processEvents();
    if (isMenu(GetParam()))
        EXPECT_THAT(m_dialogs, IsEmpty());
    else
        EXPECT_THAT(m_dialogs, ElementsAre(true, false));
    EXPECT_TRUE(m_host.LoadReportForJob("", m_sample.inventoryJob, &m_connection));
}

INSTANTIATE_TEST_SUITE_P(Each, HostDialogs, ::testing::ValuesIn(kAll),
                         [](const auto& tested) { return std::to_string(static_cast<int>(tested.param)); });

class HostsEnd : public ::testing::Test {
  protected:
    tavix::testing::TempFolder m_folder;
    tavix::testing::SampleRepository m_sample = tavix::testing::SampleRepository::build(m_folder.file("sample.tavix"));
    PathConnection m_connection{m_sample.path};
};

// Destroys everything, as a shell does at its end.
TEST_F(HostsEnd, TheHostItselfMayBeDestroyedWithItsMessagesAndWidgets) {
    for (const CommandId command :
         {CommandId::DeleteHistory, CommandId::Options, CommandId::NoteCategories, CommandId::Alerts}) {
        auto messages = std::make_unique<RecordedMessages>();
        auto host = std::make_unique<TavixHost>(*messages, tavix::makeMemorySettings());
        auto parent = std::make_unique<QWidget>();
        const QPointer<QWidget> view = TavixQtWindow::Build(*host, parent.get());
        parent->show();
        host->DeleteHistoryEvent.Attach([](const std::function<void()>& perform) { perform(); });
        ASSERT_TRUE(host->LoadReportForJob("", m_sample.salesJob, &m_connection));
        QTimer::singleShot(0, qApp, [&] {
            host.reset();
            parent.reset();
            messages.reset();
        });
        host->ExecuteCommand(static_cast<int>(command));
        EXPECT_FALSE(host);
        QCoreApplication::processEvents();
        EXPECT_FALSE(view);
    }
}

TEST_F(HostsEnd, TheParentOfTheViewMayBeDestroyedUnderADialog) {
    RecordedMessages messages;
    TavixHost host(messages, tavix::makeMemorySettings());
    host.DeleteHistoryEvent.Attach([](const std::function<void()>& perform) { perform(); });
    for (const CommandId command :
         {CommandId::DeleteHistory, CommandId::Options, CommandId::NoteCategories, CommandId::Alerts}) {
        auto grandparent = std::make_unique<QWidget>();
        const QPointer<QWidget> view = TavixQtWindow::Build(host, new QWidget(grandparent.get()));
        grandparent->show();
        ASSERT_TRUE(host.LoadReportForJob("", m_sample.salesJob, &m_connection));
        QTimer::singleShot(0, qApp, [&] { grandparent.reset(); });
        host.ExecuteCommand(static_cast<int>(command));
        EXPECT_FALSE(host.HasReport());
        QCoreApplication::processEvents();
        EXPECT_FALSE(view);
    }
}

TEST_F(HostsEnd, AHandlerMayDestroyTheHostThatCallsIt) {
    RecordedMessages messages;
    const auto make = [&] {
        auto host = std::make_unique<TavixHost>(messages, tavix::makeMemorySettings());
        TavixQtWindow::Build(*host, nullptr)->show();
        EXPECT_TRUE(host->LoadReportForJob("", m_sample.salesJob, &m_connection));
        return host;
    };
    auto host = make();
    std::function<void()> kept;
    int calls = 0;
    host->DeleteHistoryEvent.Attach([&](const std::function<void()>& perform) {
        kept = perform;
        host.reset();
    });
    host->DeleteHistoryEvent.Attach([&calls](const std::function<void()>&) { ++calls; });
    host->ExecuteCommand(static_cast<int>(CommandId::DeleteHistory));
    EXPECT_EQ(0, calls) << "there is no such event any more";
    kept();
    host = make();
    host->RunsChangedEvent.Attach([&host](TavixHost&) { host.reset(); });
    host->ExecuteCommand(static_cast<int>(CommandId::New));
    QCoreApplication::processEvents();
    EXPECT_THAT(messages.texts, IsEmpty());
}

} // namespace
} // namespace Veldra::Solenne::Tavix
