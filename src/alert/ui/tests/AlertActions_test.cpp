#include "alert/tests/AlertHistorySample.h"
#include "alert/ui/AlertActions.h"
#include "base/tests/ScriptedMessages.h"
#include "base/ui/QtText.h"
#include "base/ui/Theme.h"
#include "base/ui/tests/DialogScript.h"
#include "base/ui/tests/NamedControls.h"
#include "doc/tests/TestSite.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDateEdit>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QTest>

#include <gmock/gmock.h>

namespace tavix {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using testing::press;

template <typename Widget>
Widget& child(QWidget& window, const char* name) {
    auto* found = window.findChild<Widget*>(QLatin1String(name));
    if (!found)
        throw std::runtime_error(std::string("no child ") + name);
    return *found;
}

void type(const char* text) {
    QTest::keyClicks(QApplication::focusWidget(), QString::fromUtf8(text));
}

void key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QTest::keyClick(QApplication::focusWidget(), key, modifiers);
}

std::string text(QWidget& window, const char* label) {
    return toUtf8(child<QLabel>(window, label).text());
}

/// Saves a picture of the window to the folder that TAVIX_SHOTS names, if it is set.
void shoot(QWidget& window, const QString& name) {
    const QString folder = qEnvironmentVariable("TAVIX_SHOTS");
    QCoreApplication::processEvents();
    if (!folder.isEmpty())
        window.grab().save(QStringLiteral("%1/%2.png").arg(folder, name));
}

/// A list of the report's alerts that offers the actions.
class AlertList final : public QListWidget, public CRefreshItem {
  public:
    AlertList(testing::TestSite& site, const AlertDefinition& figure) : m_site(site) {
        m_actions = new AlertActions(site, *this, [this, figure] {
            AlertTarget target{figure, {}};
            if (currentRow() >= 0)
                target.alerts.push_back(m_alerts.at(static_cast<std::size_t>(currentRow())));
            return target;
        });
        site.listeners.push_back(this);
        Fill();
    }
    ~AlertList() override { std::erase(m_site.listeners, this); }
    void Refresh(CRefreshItem*, RefreshHint hint, int) override {
        if (hint == RefreshHint::AlertsChanged)
            Fill();
    }
    std::vector<std::string> Lines() const {
        std::vector<std::string> lines;
        for (int row = 0; row < count(); ++row)
            lines.push_back(toUtf8(item(row)->text()));
        return lines;
    }
    AlertActions& Actions() { return *m_actions; }

  private:
    void Fill() {
        m_alerts = readAlertStates(*m_site.document.GetViewer(), m_site.document.GetJobId());
        clear();
        for (const AlertState& alert : m_alerts)
            addItem(toQString(fmt::format("{}, {}: {}", alert.description, alertLevelWord(alert.rule->level),
                                          alertShownWord(alert.shown()))));
        setCurrentRow(0);
    }

    testing::TestSite& m_site;
    std::vector<AlertState> m_alerts;
    AlertActions* m_actions;
};

class AlertDialogs : public ::testing::Test {
  protected:
    AlertDialogs() {
        testing::addRules(m_sample);
        testing::addRunsWithNulls(m_sample, {231, 230, 400, 229, 232});
        if (!m_site.document.OpenReport(m_sample.path, m_sample.salesJob))
            throw std::runtime_error("the sample does not open");
        m_site.sent.clear();
        m_figure.table = m_sample.tables.at("customers");
        m_figure.field = m_sample.fields.at("customers/name");
        m_figure.metric = MetricId::NullCount;
    }
    void store(const AlertDefinition& alert) {
        int id = -1;
        ASSERT_TRUE(m_site.document.GetViewer()->createEditAlert(id, alert, "ada"));
    }
    /// As if the job file had defined all stored alerts.
    void giveToJob() {
        testing::runScript(m_sample.path, "UPDATE alert SET origin = 'J', author = '', created = NULL;");
    }

    testing::TempFolder m_folder;
    testing::SampleRepository m_sample = testing::SampleRepository::build(m_folder.file("sample.tavix"));
    std::unique_ptr<SettingsStore> m_settings = makeMemorySettings();
    testing::ScriptedMessages m_messages;
    testing::TestSite m_site{*m_settings, m_messages};
    AlertDefinition m_figure;
    testing::DialogScript m_script;
};

TEST_F(AlertDialogs, AnAlertIsMadeTriedMutedAndRemovedByKeyboard) {
    AlertList list(m_site, m_figure);
    list.Actions().AddToList(true);
    list.show();
    m_script.then([&](QDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Add Alert"));
        EXPECT_EQ(child<QComboBox>(dialog, "input").currentText(), QStringLiteral("Field name"));
        EXPECT_EQ(child<QLineEdit>(dialog, "value1").placeholderText(), QStringLiteral("this run: 232"));
        key(Qt::Key_Return);
        EXPECT_TRUE(dialog.isVisible()) << "there is no limit yet";
        type("230");
        EXPECT_EQ("Null Count for field name is greater than 230", text(dialog, "sentence"));
        EXPECT_EQ("It would have been raised in 3 of 8 runs.", text(dialog, "test"));
        EXPECT_THAT(toUtf8(child<QWidget>(dialog, "drawing").accessibleDescription()), HasSubstr("Raised in 3 of 8"));
        key(Qt::Key_L, Qt::AltModifier);
        key(Qt::Key_Down);
        key(Qt::Key_D, Qt::AltModifier);
        type("Nameless");
        key(Qt::Key_Return, Qt::ControlModifier);
    });
    press(list, Qt::Key_Insert);
    EXPECT_THAT(list.Lines(), ElementsAre("Nameless, error: raised"));
    EXPECT_THAT(m_site.sent, ElementsAre(RefreshHint::AlertsChanged));

    m_script.then([&](QDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Edit Alert"));
        EXPECT_FALSE(child<QComboBox>(dialog, "figure").isEnabled());
        key(Qt::Key_P, Qt::AltModifier);
        key(Qt::Key_Down);
        key(Qt::Key_Return);
        EXPECT_EQ("Null Count for field name is less than 220", text(dialog, "sentence"));
        m_messages.expectAsk("The alert is not stored. Discard it?", "Discard Alert", Messages::Answer::No);
        key(Qt::Key_Escape);
        EXPECT_TRUE(dialog.isVisible());
        key(Qt::Key_R, Qt::AltModifier);
        key(Qt::Key_End);
        EXPECT_TRUE(child<QComboBox>(dialog, "against").isVisible()) << "a change in percent";
        key(Qt::Key_Tab);
        key(Qt::Key_A, Qt::ControlModifier);
        type("50");
        EXPECT_EQ("Null Count for field name has changed by more than 50%", text(dialog, "sentence"));
        EXPECT_EQ("It would have been raised in 1 of 7 runs. 1 further run cannot be judged.", text(dialog, "test"));
        key(Qt::Key_Return);
    });
    press(list, Qt::Key_F2);
    EXPECT_THAT(list.Lines(), ElementsAre("Nameless, error: quiet"));

    m_script.then([&](QDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Mute Alert"));
        key(Qt::Key_Return, Qt::ControlModifier);
        EXPECT_TRUE(dialog.isVisible()) << "there is no reason yet";
        type("Import is under way");
        key(Qt::Key_Tab);
        key(Qt::Key_Space);
        key(Qt::Key_Tab);
        key(Qt::Key_Space);
        EXPECT_THAT(text(dialog, "extent"), HasSubstr("in runs that start before 2026-03-27."));
        child<QDateEdit>(dialog, "date").setDate(QDate(2026, 3, 1));
        EXPECT_THAT(text(dialog, "extent"), HasSubstr("so no run would be muted."));
        child<QDateEdit>(dialog, "date").setDate(QDate(2026, 4, 1));
        key(Qt::Key_Return, Qt::ControlModifier);
    });
    press(list, Qt::Key_M);
    EXPECT_THAT(list.Lines(), ElementsAre("Nameless, error: quiet")) << "M alone does nothing";
    QTest::keyClick(&list, Qt::Key_M, Qt::ControlModifier);
    EXPECT_THAT(list.Lines(), ElementsAre("Nameless, error: muted"));

    m_script.then([&](QDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Notes and History"));
        type("Ask the shop.");
        key(Qt::Key_Return, Qt::ControlModifier);
        const auto& table = child<QTableWidget>(dialog, "history");
        std::vector<std::string> words;
        for (int row = 0; row < table.rowCount(); ++row)
            words.push_back(toUtf8(table.item(row, 2)->text()));
        EXPECT_THAT(words, ::testing::UnorderedElementsAre("Note", "Muted", "Changed", "Made"));
        key(Qt::Key_Escape);
    });
    list.Actions().Run(AlertCommand::Notes);
    list.Actions().Run(AlertCommand::Unmute);
    EXPECT_THAT(list.Lines(), ElementsAre("Nameless, error: quiet"));
    m_messages.expectAsk("Remove this alert, with its notes and history?\n\n\"Nameless\"", "Remove Alert",
                         Messages::Answer::Yes);
    press(list, Qt::Key_Delete);
    EXPECT_THAT(list.Lines(), ::testing::IsEmpty());
    press(list, Qt::Key_F2);
    press(list, Qt::Key_Delete);
    EXPECT_EQ(0U, m_messages.pending()) << "no alert is left to act on";
}

TEST_F(AlertDialogs, AnAlertOfTheJobIsEditedAsACopyAndCopiedToFields) {
    m_figure.rule.value1 = 230;
    store(m_figure);
    giveToJob();
    AlertList list(m_site, m_figure);
    list.Actions().AddToList(true);
    list.show();
    m_script.then([&](QDialog& dialog) {
        const auto labels = dialog.findChildren<QLabel*>();
        EXPECT_TRUE(std::ranges::any_of(labels, [](const QLabel* label) {
            return label->isVisible() && label->text().startsWith(QLatin1String("The job file defines this alert"));
        }));
        type("2300");
        key(Qt::Key_Return);
    });
    press(list, Qt::Key_F2);
    EXPECT_THAT(list.Lines(), ElementsAre("Null Count for field name is greater than 230, warning: raised",
                                          "Null Count for field name is greater than 2300, warning: quiet"))
        << "both stand";
    press(list, Qt::Key_Delete);
    EXPECT_EQ(2, list.count()) << "the job would restore it";

    m_script.then([&](QDialog& dialog) {
        key(Qt::Key_Space);
        key(Qt::Key_End, Qt::ControlModifier);
        key(Qt::Key_Home);
        key(Qt::Key_Space);
        EXPECT_EQ("2 of 6 fields chosen", text(dialog, "summary"));
        key(Qt::Key_Return, Qt::ControlModifier);
    });
    list.Actions().Run(AlertCommand::CopyToFields);
    EXPECT_THAT(list.Lines(),
                ::testing::IsSupersetOf({"Null Count for field id is greater than 230, warning: quiet",
                                         "Null Count for field city is greater than 230, warning: quiet"}));
}

TEST_F(AlertDialogs, TheMenuOfAFigureNamesItsAlerts) {
    AlertTarget target{m_figure, {}};
    QListWidget list;
    AlertActions actions(m_site, list, [&] { return target; });
    actions.AddMenuToList();
    auto& menu = child<QMenu>(list, "alertMenu");
    EXPECT_FALSE(menu.menuAction()->isEnabled()) << "no alert watches the figure";
    EXPECT_TRUE(actions.ActionOf(AlertCommand::Add)->isEnabled());
    m_figure.rule.value1 = 230;
    store(m_figure);
    m_figure.rule.value1 = 300;
    m_figure.description = "R&D";
    store(m_figure);
    target.alerts = readAlertStates(*m_site.document.GetViewer(), m_sample.salesJob);
    QContextMenuEvent opens(QContextMenuEvent::Keyboard, QPoint(1, 1), QPoint(1, 1));
    QApplication::sendEvent(list.viewport(), &opens);
    std::vector<std::string> entries;
    for (const QAction* action : menu.actions())
        entries.push_back(toUtf8(action->text()));
    EXPECT_THAT(entries, ElementsAre("Null Count for field name is greater than 230", "R&&D"));
    target.figure.reset();
    target.alerts.pop_back();
    actions.Update();
    entries.clear();
    for (const QAction* action : menu.actions())
        entries.push_back(toUtf8(action->text()));
    EXPECT_THAT(entries, ElementsAre("&Edit...", "&Mute...", "&Unmute", "&Notes and History...",
                                     "Copy to &Other Fields...", "&Remove..."));
    EXPECT_FALSE(actions.ActionOf(AlertCommand::Add)->isEnabled());
}

TEST_F(AlertDialogs, LookWellInBothSchemesAndAreNamed) {
    m_figure.rule.value1 = 230;
    store(m_figure);
    const QPalette before = QApplication::palette();
    for (const bool dark : {false, true}) {
        QApplication::setPalette(dark ? darkPalette() : lightPalette());
        AlertList list(m_site, m_figure);
        list.Actions().AddToList(true);
        list.show();
        const auto look = [&](AlertCommand command, const char* name, const std::function<void(QDialog&)>& act = {}) {
            m_script.then([&, name, act](QDialog& dialog) {
                EXPECT_GT(testing::namedControls(dialog), 3);
                if (act)
                    act(dialog);
                shoot(dialog, QLatin1String(name) + QLatin1String(dark ? "-dark" : ""));
                const QImage picture = dialog.grab().toImage();
                EXPECT_EQ(picture.pixelColor(2, picture.height() - 3).lightness() < 128, dark);
                dialog.done(QDialog::Rejected);
            });
            list.Actions().Run(command);
        };
        look(AlertCommand::Edit, "alert-edit");
        look(AlertCommand::Add, "alert-add", [](QDialog& dialog) {
            auto& comparison = child<QComboBox>(dialog, "comparison");
            comparison.setCurrentIndex(comparison.count() - 1);
            auto& against = child<QComboBox>(dialog, "against");
            against.setCurrentIndex(against.count() - 1);
            type("20");
        });
        look(AlertCommand::Mute, "alert-mute");
        look(AlertCommand::Notes, "alert-notes");
        look(AlertCommand::CopyToFields, "alert-copy");
    }
    QApplication::setPalette(before);
}

} // namespace
} // namespace tavix
