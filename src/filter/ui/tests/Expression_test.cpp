#include "base/ui/Theme.h"
#include "filter/ui/tests/OverFilterDlg.h"

#include <QAbstractItemView>
#include <QClipboard>
#include <QCompleter>
#include <QLabel>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QRegularExpression>

namespace tavix {
namespace {

using namespace tavix::testing;

constexpr const char* kQuestion =
    "This action will cause you to lose any changes you made while in Edit Mode. Continue anyway?";

class EditMode : public OverFilterDlg {
  protected:
    /// The line below the box once it says something else than `before`.
    std::string errorLine(const std::string& before) {
        auto& line = child<QLabel>(*dialog, "error");
        EXPECT_TRUE(QTest::qWaitFor([&] { return toUtf8(line.text()) != before; }));
        return line.text().isEmpty() ? "" : toUtf8(line.text().remove(QRegularExpression(QStringLiteral("<[^>]*>"))));
    }
    void write(const char* words) {
        box().setFocus();
        box().selectAll();
        QTest::keyClicks(&box(), QLatin1String(words));
    }
    QAbstractItemView& completions() { return *box().findChild<QCompleter*>()->popup(); }
};

TEST_F(EditMode, DisablesWhatBuildsConditionsAndAsksBeforeEditsAreLost) {
    open();
    add("equal to", "a");
    click("editMode");
    for (const char* off : {"addCondition", "and", "or", "undo", "clear", "leftParenthesis", "rightParenthesis",
                            "field", "operation", "single", "multiple", "value", "valueList", "caseInsensitive",
                            "wildcard", "plainText", "code", "passes", "fails"})
        EXPECT_FALSE(child<QWidget>(*dialog, off).isEnabled()) << off;
    for (const char* on : {"functions", "fields", "copy", "paste", "filters", "load", "save"})
        EXPECT_TRUE(button(on).isEnabled()) << on;
    EXPECT_TRUE(button("code").isChecked());
    EXPECT_FALSE(box().isReadOnly());
    EXPECT_TRUE(box().hasFocus());
    EXPECT_TRUE(box().textCursor().atEnd());

    // Nothing was edited: no question.
    click("editMode");
    EXPECT_TRUE(box().isReadOnly());
    EXPECT_FALSE(child<QWidget>(*dialog, "error").isVisible());
    click("editMode");
    write("`Count` > 3");
    messages.expectAsk(kQuestion, "Leave Edit Mode", Messages::Answer::No);
    click("editMode");
    EXPECT_TRUE(button("editMode").isChecked());
    EXPECT_EQ("`Count` > 3", text());
    messages.expectAsk(kQuestion, "Leave Edit Mode", Messages::Answer::Yes);
    click("editMode");
    EXPECT_FALSE(button("editMode").isChecked());
    EXPECT_EQ("if `Value` == 'a' then\n   return true\nelse\n   return false\n", text());
}

TEST_F(EditMode, GivesTheTextAsItWasWritten) {
    // An unbroken blank, a mark of a line and a character of two units stay what they are.
    open("`Value` == '\u00A0\u2028\U0001F600'\r\nand\r\n`Count` > 1");
    EXPECT_TRUE(button("editMode").isChecked());
    box().moveCursor(QTextCursor::End);
    QTest::keyClick(&box(), Qt::Key_Enter, Qt::ShiftModifier);
    QTest::keyClicks(&box(), QStringLiteral("0"));
    dialog->accept();
    EXPECT_EQ("`Value` == '\u00A0\u2028\U0001F600'\r\nand\r\n`Count` > 1\r\n0", dialog->GetFilterText());
    open("`Count` > 1");
    box().clear();
    dialog->accept();
    EXPECT_EQ("", dialog->GetFilterText());
}

TEST_F(EditMode, TellsWhatIsWrongAndGoesThere) {
    open("`Count` > 1");
    auto& line = child<QLabel>(*dialog, "error");
    EXPECT_EQ("No errors.", toUtf8(line.text()));
    box().setPlainText(QString::fromUtf8("'\U0001F600<b>' == `Value`\n  and nofunction(`Value`)"));
    EXPECT_EQ("Line 2, column 7: there is no function nofunction", errorLine("No errors."));
    EXPECT_TRUE(line.isVisible());
    ASSERT_EQ(1, box().extraSelections().size());
    EXPECT_EQ("nofunction", toUtf8(box().extraSelections()[0].cursor.selectedText()));
    shoot(*dialog, "error");
    Q_EMIT line.linkActivated(QStringLiteral("#"));
    EXPECT_TRUE(box().hasFocus());
    EXPECT_EQ(1, box().textCursor().blockNumber());
    EXPECT_EQ(6, box().textCursor().positionInBlock());

    // Columns count characters, some of which have two units; text quoted in a message is not markup.
    const std::string before = toUtf8(line.text());
    box().setPlainText(QString::fromUtf8("'\U0001F600' == `<b>`"));
    EXPECT_EQ("Line 1, column 8: there is no field `&lt;b&gt;`", errorLine(before));
    EXPECT_EQ("`", toUtf8(box().extraSelections()[0].cursor.selectedText()));
    const std::string second = toUtf8(line.text());
    box().setPlainText(QStringLiteral("`Count` > 1 and `Value` > 10"));
    EXPECT_EQ("Warning: line 1, column 25: this compares texts, where '9' comes after '10'; to compare numbers "
              "write tonumber(`Value`)",
              errorLine(second));
    EXPECT_TRUE(box().extraSelections().isEmpty()) << "it is not an error";
    Q_EMIT line.linkActivated(QStringLiteral("#"));
    EXPECT_EQ(24, box().textCursor().positionInBlock());
    const std::string third = toUtf8(line.text());
    box().clear();
    EXPECT_EQ("An empty expression removes the filter.", errorLine(third));
    EXPECT_TRUE(box().extraSelections().isEmpty());
}

TEST_F(EditMode, OffersNamesOfFunctionsWhereOneIsMeant) {
    open("x");
    write("not Lo");
    ASSERT_TRUE(completions().isVisible());
    QTest::keyClick(&completions(), Qt::Key_Return);
    EXPECT_EQ("not lower(", text());
    EXPECT_FALSE(completions().isVisible());
    QTest::keyClicks(&box(), QStringLiteral("`Value`) == 'le"));
    EXPECT_FALSE(completions().isVisible());
    QTest::keyClicks(&box(), QStringLiteral("' or le"));
    ASSERT_TRUE(completions().isVisible());
    EXPECT_EQ(2, completions().model()->rowCount());
    QTest::keyClick(&completions(), Qt::Key_Down);
    QTest::keyClick(&completions(), Qt::Key_Tab);
    EXPECT_EQ("not lower(`Value`) == 'le' or length(", text());
    // Esc closes what is offered and not the dialog; Ctrl+Space offers all.
    QTest::keyClicks(&box(), QStringLiteral("up"));
    ASSERT_TRUE(completions().isVisible());
    QTest::keyClick(&completions(), Qt::Key_Escape);
    EXPECT_FALSE(completions().isVisible());
    EXPECT_TRUE(dialog->isVisible());
    write(" ");
    QTest::keyClick(&box(), Qt::Key_Space, Qt::ControlModifier);
    EXPECT_EQ(static_cast<int>(expression::functions().size()), completions().model()->rowCount());
    completions().hide();
}

TEST_F(EditMode, PastesFunctionsFieldsAndWhatIsOnTheClipboard) {
    open("x");
    box().clear();
    inNextDialog([](QWidget& over) {
        auto& names = child<QListWidget>(over, "functions");
        auto& search = child<QLineEdit>(over, "search");
        EXPECT_EQ(static_cast<int>(expression::functions().size()), names.count());
        QTest::keyClicks(&search, QStringLiteral("in"));
        EXPECT_EQ("initcap", toUtf8(names.currentItem()->text()));
        QTest::keyClick(&search, Qt::Key_Down);
        EXPECT_EQ("inlist", toUtf8(names.currentItem()->text()));
        QTest::keyClick(&search, Qt::Key_Down);
        EXPECT_EQ("instr", toUtf8(names.currentItem()->text()));
        EXPECT_TRUE(
            child<QPlainTextEdit>(over, "description")
                .toPlainText()
                .startsWith(QLatin1String("integer instr(string, string, integer)\n\nThe position of the second")));
        shoot(over, "functions");
        QTest::keyClick(&search, Qt::Key_Return);
    });
    click("functions");
    EXPECT_EQ("instr(/*string*/, /*string*/, /*integer*/)", text());
    EXPECT_EQ(text(), toUtf8(QApplication::clipboard()->text()));
    EXPECT_EQ(&box(), dialog->focusWidget());
    inNextDialog([](QWidget& over) {
        auto& names = child<QListWidget>(over, "fields");
        EXPECT_EQ("Value", toUtf8(names.item(0)->text()));
        QTest::keyClick(&names, Qt::Key_Down);
        shoot(over, "fields");
        QTest::keyClick(&names, Qt::Key_Return);
    });
    click("fields");
    EXPECT_EQ("instr(/*string*/, /*string*/, /*integer*/)Count", text());
    EXPECT_EQ("Count", toUtf8(QApplication::clipboard()->text()));
    click("copy");
    click("paste");
    EXPECT_EQ("instr(/*string*/, /*string*/, /*integer*/)Countinstr(/*string*/, /*string*/, /*integer*/)Count", text());

    // The library may be unable to tell its functions.
    dialog = std::make_unique<CFilterDlg>(messages, *settings, DistributionKind::Frequency, "x",
                                          Error{"The functions cannot be listed."});
    dialog->show();
    messages.expectWarn("The functions cannot be listed.");
    click("functions");
}

TEST_F(EditMode, IsLegibleInTheDark) {
    const QPalette before = QApplication::palette();
    QApplication::setPalette(darkPalette());
    open("if left(`Value`, 3) => 'abc' then\r\n   return true\r\nelse\r\n   return false\r\n");
    shoot(*dialog, "dark-error");
    EXPECT_NE("No errors.", toUtf8(child<QLabel>(*dialog, "error").text()));
    EXPECT_FALSE(button("valueList").isEnabled());
    dialog->close();
    QApplication::setPalette(before);
}

} // namespace
} // namespace tavix
