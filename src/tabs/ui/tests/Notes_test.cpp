#include "access/PrViewer.h"
#include "base/tests/ScriptedMessages.h"
#include "base/tests/TempFolder.h"
#include "base/ui/QtText.h"
#include "base/ui/Theme.h"
#include "base/ui/tests/DialogScript.h"
#include "doc/CTavixApp.h"
#include "doc/tests/TestSite.h"
#include "grid/ui/CUGCtrl.h"
#include "notes/ui/CNoteCategoriesDlg.h"
#include "notes/ui/CNoteDlg.h"
#include "settings/Settings.h"
#include "support/SampleRepository.h"
#include "tabs/ui/CNotesTab.h"

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>

#include <gmock/gmock.h>

namespace tavix {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::press;

template <typename Widget>
Widget& child(QWidget& window, const char* name) {
    auto* found = window.findChild<Widget*>(QLatin1String(name));
    if (!found)
        throw std::runtime_error(std::string("no child ") + name);
    return *found;
}

/// Saves a picture of the window to the folder that TAVIX_SHOTS names, if it is set.
void shoot(QWidget& window, const char* name) {
    const QString folder = qEnvironmentVariable("TAVIX_SHOTS");
    QCoreApplication::processEvents();
    if (!folder.isEmpty())
        window.grab().save(QStringLiteral("%1/%2.png").arg(folder, QLatin1String(name)));
}

class NotesTabs : public ::testing::Test {
  protected:
    NotesTabs() : m_app(makeMemorySettings()), m_site(m_app.GetSettings(), m_messages) {
        if (!m_site.GetTavixDoc().OpenReport(m_sample.path, m_sample.salesJob))
            throw std::runtime_error("the sample does not open");
        Select("customers");
    }
    void Select(const char* table, const char* field = nullptr) {
        m_subject = {};
        m_subject.selection.kind = ReportSelection::Kind::Table;
        m_subject.selection.table.id = m_sample.tables.at(table);
        m_subject.selection.table.name = table;
        m_subject.table = m_subject.selection.table;
        if (field) {
            m_subject.selection.fieldId = m_sample.fields.at(std::string(table) + "/" + field);
            m_subject.selection.fieldName = field;
        }
    }
    template <typename Tab>
    std::unique_ptr<Tab> open() {
        auto tab = std::make_unique<Tab>(m_site, m_subject, false);
        tab->resize(760, 380);
        tab->show();
        QApplication::setActiveWindow(tab.get());
        EXPECT_TRUE(QTest::qWaitForWindowActive(tab.get()));
        return tab;
    }
    static std::vector<std::string> notes(QWidget& tab) {
        std::vector<std::string> lines;
        const QAbstractItemModel& model = *child<CUGCtrl>(tab, "notes").model();
        for (int row = 0; row < model.rowCount(); ++row)
            lines.push_back(toUtf8(model.index(row, 1).data().toString() + QLatin1Char('|') +
                                   model.index(row, 3).data().toString()));
        return lines;
    }
    static std::string read(QWidget& tab) { return toUtf8(child<QPlainTextEdit>(tab, "noteText").toPlainText()); }
    static void write(QDialog& dialog, const char* text) {
        auto& edit = child<QPlainTextEdit>(dialog, "text");
        edit.selectAll();
        edit.insertPlainText(QString::fromUtf8(text));
    }

    testing::TempFolder m_folder;
    testing::SampleRepository m_sample = testing::SampleRepository::build(m_folder.file("sample.tavix"));
    testing::ScriptedMessages m_messages;
    CTavixApp m_app;
    testing::TestSite m_site;
    ReportSubject m_subject;
    testing::DialogScript m_script;
};

TEST_F(NotesTabs, ShowTheNotesInTheChosenOrderAndTheWholeTextOfOne) {
    const auto tab = open<CTabTblNotes>();
    EXPECT_THAT(notes(*tab), ElementsAre("Question|Why so many nulls?", "|Known. Fixed in March."));
    EXPECT_EQ(read(*tab), "Why so many nulls?");
    QTest::keyClick(&child<CUGCtrl>(*tab, "notes"), Qt::Key_Down);
    EXPECT_EQ(read(*tab), "Known.\nFixed in March.");

    ASSERT_TRUE(writeFlag(m_site.GetTavixDoc().GetSettings(), Setting::NotesSortOrder, true));
    tab->Refresh(nullptr, RefreshHint::OptionsChanged, 0);
    EXPECT_THAT(notes(*tab), ElementsAre("|Known. Fixed in March.", "Question|Why so many nulls?"));
    EXPECT_EQ(read(*tab), "Known.\nFixed in March.") << "the selected note stays selected";

    Select("orders");
    tab->SubjectChanged();
    EXPECT_THAT(notes(*tab), IsEmpty());
    EXPECT_EQ(child<QLabel>(*tab, "emptySentence").text(), QStringLiteral("This table has no notes yet."));
    EXPECT_EQ(tab->GetLastTabStop(), &child<QPushButton>(*tab, "addFirst"));
}

TEST_F(NotesTabs, AreWrittenEditedAndDeletedByKeyboard) {
    Select("orders", "note");
    const auto tab = open<CTabNotes>();
    CTabNotes other(m_site, m_subject, true);
    other.show();
    m_site.listeners = {tab.get(), &other};

    m_script.then([&](QDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Add Note"));
        QTest::keyClick(&dialog, Qt::Key_Return, Qt::ControlModifier);
        EXPECT_TRUE(dialog.isVisible()) << "there is no text yet";
        QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("two"));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("lines"));
        auto& category = child<QComboBox>(dialog, "category");
        category.setCurrentIndex(category.findText(QStringLiteral("Decision")));
        QTest::keyClick(&dialog, Qt::Key_Return, Qt::ControlModifier);
    });
    m_messages.expectWarn("Enter the text of the note.", "Missing Value");
    QTest::keyClick(tab.get(), Qt::Key_Insert);
    EXPECT_THAT(notes(*tab), ElementsAre("Decision|two lines"));
    EXPECT_EQ(read(*tab), "two\nlines");
    EXPECT_THAT(notes(other), ElementsAre("Decision|two lines")) << "other views hear of it";
    EXPECT_THAT(m_site.sent, ElementsAre(RefreshHint::NotesChanged));

    auto& grid = child<CUGCtrl>(*tab, "notes");
    m_script.then([&](QDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Edit Note"));
        EXPECT_EQ(child<QPlainTextEdit>(dialog, "text").toPlainText(), QStringLiteral("two\nlines"));
        write(dialog, "changed");
        QTest::keyClick(&dialog, Qt::Key_Escape);
        EXPECT_TRUE(dialog.isVisible()) << "the user would lose the text";
        QTest::keyClick(&dialog, Qt::Key_Return, Qt::ControlModifier);
    });
    m_messages.expectAsk("The note is not saved. Discard what you have written?", "Discard Note", Messages::Answer::No);
    press(grid, Qt::Key_Return);
    EXPECT_THAT(notes(*tab), ElementsAre("Decision|changed"));

    m_script.then([&](QDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
    press(grid, Qt::Key_F2);
    m_messages.expectAsk("Delete this note?\n\n\"changed\"", "Delete Note", Messages::Answer::Yes);
    press(grid, Qt::Key_Delete);
    EXPECT_THAT(notes(*tab), IsEmpty());
    EXPECT_EQ(child<QLabel>(*tab, "emptySentence").text(), QStringLiteral("This field has no notes yet."));
    EXPECT_EQ(QApplication::focusWidget(), &child<QPushButton>(*tab, "addFirst"));
}

TEST_F(NotesTabs, CategoriesAreKeptByKeyboard) {
    const auto tab = open<CTabTblNotes>();
    m_script.then([&](QDialog& dialog) {
        auto& list = child<QListWidget>(dialog, "categories");
        const auto named = [&](const char* name) {
            m_script.then([name](QDialog& asked) {
                auto& edit = child<QLineEdit>(asked, "name");
                edit.selectAll();
                QTest::keyClicks(&edit, QLatin1String(name));
                QTest::keyClick(&edit, Qt::Key_Return);
                if (asked.isVisible())
                    QTest::keyClick(&asked, Qt::Key_Escape);
            });
        };
        named("To do");
        press(list, Qt::Key_Insert);
        EXPECT_EQ(list.currentItem()->text(), QStringLiteral("To do"));
        named("Done");
        press(list, Qt::Key_Return);
        EXPECT_EQ(list.currentItem()->text(), QStringLiteral("Done"));
        named("decision");
        m_messages.expectWarn("Error occurred while adding the note category:\n\n"
                              "There is a note category \"Decision\" already.");
        press(list, Qt::Key_Insert);
        list.setCurrentRow(2);
        m_messages.expectAsk("Delete the category \"Question\"?\n\nIts notes stay, without a category.",
                             "Delete Category", Messages::Answer::Yes);
        press(list, Qt::Key_Delete);
        EXPECT_EQ(list.count(), 2);
        QTest::keyClick(&dialog, Qt::Key_Escape);
    });
    child<QPushButton>(*tab, "categoriesButton").click();
    EXPECT_THAT(notes(*tab), ElementsAre("|Why so many nulls?", "|Known. Fixed in March."));
    EXPECT_THAT(m_site.sent, ElementsAre(RefreshHint::NotesChanged));
}

TEST_F(NotesTabs, AFailingRepositoryLeavesWhatIsShown) {
    const auto tab = open<CTabTblNotes>();
    m_site.GetTavixDoc().GetViewer()->close();
    m_messages.expectWarn("Error occurred while retrieving notes:\n\nNo repository is open.");
    tab->Refresh(nullptr, RefreshHint::RunLoaded, 0);
    QCoreApplication::processEvents();
    EXPECT_EQ(notes(*tab).size(), 2U);
    Select("suppliers");
    m_messages.expectWarn("Error occurred while retrieving notes:\n\nNo repository is open.");
    tab->SubjectChanged();
    QCoreApplication::processEvents();
    EXPECT_THAT(notes(*tab), IsEmpty()) << "notes of another table must not stay";
    EXPECT_EQ(child<QLabel>(*tab, "emptySentence").text(), QStringLiteral("The notes cannot be read."));
    m_site.GetTavixDoc().Clear();
    tab->Refresh(nullptr, RefreshHint::DocumentReset, 0);
    EXPECT_FALSE(tab->CanAddNote());
    tab->AddNote();
}

TEST_F(NotesTabs, EveryControlHasAName) {
    const auto tab = open<CTabTblNotes>();
    const auto nameless = [](QWidget& window) {
        std::vector<std::string> found;
        for (const QWidget* widget : window.findChildren<QWidget*>()) {
            const auto* button = qobject_cast<const QAbstractButton*>(widget);
            const bool isPart = widget->objectName().startsWith(QLatin1String("qt_"));
            if (widget->focusPolicy() != Qt::NoFocus && !isPart && widget->window() == window.window() &&
                widget->accessibleName().isEmpty() && (!button || button->text().isEmpty()))
                found.push_back(widget->metaObject()->className());
        }
        return found;
    };
    EXPECT_THAT(nameless(*tab), IsEmpty());
    m_script.then([&](QDialog& dialog) {
        EXPECT_THAT(nameless(dialog), IsEmpty());
        m_script.then([&](QDialog& categories) {
            EXPECT_THAT(nameless(categories), IsEmpty());
            categories.reject();
        });
        child<QPushButton>(dialog, "categories").click();
        dialog.reject();
    });
    tab->AddNote();
}

TEST_F(NotesTabs, LookWellInBothSchemes) {
    const QPalette before = QApplication::palette();
    PrViewer& viewer = *m_site.GetTavixDoc().GetViewer();
    ASSERT_TRUE(viewer.createNewTableNote(
        m_sample.tables.at("customers"), 'T', m_sample.noteCategories.at("Decision"), "grace",
        "Keep the rows of 2008.\n\nThey are test data of the migration and go away with the old ledger; until then "
        "every "
        "figure of this table counts them. Ask the warehouse before filtering them out.\n- city: 150 values\n- "
        "remark: never filled"));
    for (const bool dark : {false, true}) {
        QApplication::setPalette(dark ? darkPalette() : lightPalette());
        Select("customers");
        const auto tab = open<CTabTblNotes>();
        auto& grid = child<CUGCtrl>(*tab, "notes");
        grid.SelectRow(2);
        grid.setFocus();
        shoot(*tab, dark ? "notes-dark" : "notes");
        const QImage picture = tab->grab().toImage();
        EXPECT_EQ(picture.pixelColor(2, picture.height() - 3).lightness() < 128, dark) << "the reading pane";
        m_script.then([&](QDialog& dialog) {
            shoot(dialog, dark ? "note-dark" : "note");
            dialog.reject();
        });
        press(grid, Qt::Key_Return);
        m_script.then([&](QDialog& dialog) {
            shoot(dialog, dark ? "categories-dark" : "categories");
            dialog.reject();
        });
        child<QPushButton>(*tab, "categoriesButton").click();
        Select("orders");
        tab->SubjectChanged();
        shoot(*tab, dark ? "none-dark" : "none");
    }
    QApplication::setPalette(before);
}

} // namespace
} // namespace tavix
