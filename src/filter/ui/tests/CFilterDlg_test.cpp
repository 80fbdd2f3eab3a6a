#include "base/tests/TempFolder.h"
#include "base/ui/Theme.h"
#include "filter/ConditionBlock.h"
#include "filter/FilterMemory.h"
#include "filter/tests/Conditions.h"
#include "filter/ui/FilterMenu.h"
#include "filter/ui/tests/OverFilterDlg.h"

#include <QAccessible>
#include <QFileDialog>
#include <QLabel>
#include <QPlainTextEdit>

#include <fstream>

namespace tavix {
namespace {

using namespace tavix::testing;

using FilterDialog = OverFilterDlg;

const std::vector<const char*> kBuilding = {"addCondition", "leftParenthesis", "rightParenthesis", "and", "or", "undo",
                                            "clear"};
const std::vector<const char*> kComparing = {"field", "operation", "single",          "multiple",
                                             "value", "valueList", "caseInsensitive", "wildcard"};
const std::vector<const char*> kEditing = {"functions", "fields", "copy", "paste"};
const std::vector<const char*> kShowing = {"plainText", "code", "passes", "fails"};

std::string filterOf(const ConditionList& list, FilterAction action = FilterAction::RemoveFailing) {
    return WriteConditionBlock(list) + BuildExpression(list, action);
}

TEST_F(FilterDialog, HasTheWordsAndTheStateOfABeginning) {
    open({}, DistributionKind::Pattern);
    EXPECT_EQ("Report Filter", toUtf8(dialog->windowTitle()));
    const struct {
        const char* name;
        const char* text;
    } words[] = {{"addCondition", "&Add Condition"},
                 {"leftParenthesis", "("},
                 {"rightParenthesis", ")"},
                 {"and", "AND"},
                 {"or", "OR"},
                 {"undo", "&Undo"},
                 {"clear", "&Clear"},
                 {"single", "Single value"},
                 {"multiple", "Multiple values"},
                 {"valueList", "&Value List..."},
                 {"caseInsensitive", "Case insensitive"},
                 {"wildcard", "Treat '*' and '?' as wildcards"},
                 {"passes", "Passes filter validation"},
                 {"fails", "Fails filter validation"},
                 {"plainText", "Show plain text"},
                 {"code", "Show expression code"},
                 {"editMode", "Edit filter expression"},
                 {"functions", "&Functions..."},
                 {"fields", "Fi&elds..."},
                 {"copy", "C&opy"},
                 {"paste", "&Paste"},
                 {"load", "&Load..."},
                 {"save", "&Save..."}};
    for (const auto& each : words)
        EXPECT_EQ(each.text, toUtf8(button(each.name).text()));
    auto& field = child<QComboBox>(*dialog, "field");
    EXPECT_EQ(-1, field.currentIndex());
    EXPECT_EQ("Pattern value", toUtf8(field.itemText(0)));
    EXPECT_EQ("Pattern count", toUtf8(field.itemText(1)));
    EXPECT_EQ(6, child<QComboBox>(*dialog, "operation").count());
    for (const char* checked : {"single", "fails", "plainText"})
        EXPECT_TRUE(button(checked).isChecked()) << checked;
    EXPECT_EQ("addCondition leftParenthesis ", enabled(kBuilding));
    EXPECT_EQ("", enabled(kEditing));
    EXPECT_TRUE(box().isReadOnly());
    EXPECT_TRUE(field.hasFocus());
    shoot(*dialog, "empty");
    QTest::keyClick(dialog.get(), Qt::Key_Return);
    EXPECT_EQ(QDialog::Accepted, dialog->result());
    EXPECT_EQ("", dialog->GetFilterText());
}

TEST_F(FilterDialog, OffersTheButtonsThatTheLastEntryAllows) {
    open();
    // On a beginning, after "(", a comparison, a connector and ")", with and without a parenthesis that is open.
    const std::string operand = "addCondition leftParenthesis ";
    const std::string operandAfter = operand + "undo clear ";
    const std::string connector = "and or undo clear ";
    const std::string closing = "rightParenthesis " + connector;
    click("leftParenthesis");
    EXPECT_EQ(operandAfter, enabled(kBuilding));
    click("leftParenthesis");
    add("equal to", "a");
    EXPECT_EQ(closing, enabled(kBuilding));
    click("rightParenthesis");
    EXPECT_EQ(closing, enabled(kBuilding));
    click("rightParenthesis");
    EXPECT_EQ(connector, enabled(kBuilding));
    click("or");
    EXPECT_EQ(operandAfter, enabled(kBuilding));
    add("greater than", "10", "Frequency count");
    EXPECT_EQ(connector, enabled(kBuilding));
    EXPECT_EQ("((Value equal to \"a\")) OR\nCount greater than 10", text());
    click("undo");
    EXPECT_EQ(operandAfter, enabled(kBuilding));
    click("undo");
    click("undo");
    EXPECT_EQ(closing, enabled(kBuilding));
    click("clear");
    EXPECT_EQ("addCondition leftParenthesis ", enabled(kBuilding));
    EXPECT_EQ("", text());
}

TEST_F(FilterDialog, EnablesWhatFieldOperationAndModeAllow) {
    open();
    const std::string always = "field operation ";
    EXPECT_EQ(always + "single multiple value caseInsensitive wildcard ", enabled(kComparing));
    choose("field", "Frequency value");
    choose("operation", "equal to");
    click("wildcard");
    click("caseInsensitive");
    click("multiple");
    EXPECT_EQ(always + "single multiple valueList caseInsensitive ", enabled(kComparing));
    EXPECT_FALSE(button("wildcard").isChecked());
    choose("operation", "contains");
    EXPECT_TRUE(button("single").isChecked());
    EXPECT_EQ(always + "single value caseInsensitive ", enabled(kComparing));
    choose("operation", "is null");
    EXPECT_EQ(always, enabled(kComparing));
    EXPECT_FALSE(button("caseInsensitive").isChecked());
    choose("operation", "less than");
    choose("field", "Frequency count");
    EXPECT_EQ(6, child<QComboBox>(*dialog, "operation").count());
    EXPECT_EQ("less than", toUtf8(child<QComboBox>(*dialog, "operation").currentText()));
    EXPECT_EQ(always + "single value ", enabled(kComparing));
    choose("field", "Frequency value");
    choose("operation", "has control characters");
    choose("field", "Frequency count");
    EXPECT_EQ(-1, child<QComboBox>(*dialog, "operation").currentIndex());
}

TEST_F(FilterDialog, SaysWhatIsMissingAndGoesThere) {
    open();
    messages.expectWarn("Please select a field type", "Missing Value");
    click("addCondition");
    EXPECT_TRUE(child<QWidget>(*dialog, "field").hasFocus());
    choose("field", "Frequency value");
    messages.expectWarn("Please select an operation", "Missing Value");
    click("addCondition");
    EXPECT_TRUE(child<QWidget>(*dialog, "operation").hasFocus());
    choose("operation", "not equal to");
    click("multiple");
    messages.expectWarn("Please enter one or more values in the value list", "Missing Value");
    click("addCondition");
    EXPECT_TRUE(button("valueList").hasFocus());
    inNextDialog([](QWidget& over) {
        EXPECT_EQ("Value List", toUtf8(over.windowTitle()));
        // As a column of a worksheet is pasted, with a blank that is not an ordinary one.
        child<QPlainTextEdit>(over, "values").setPlainText(QString::fromUtf8("a\r\nO'Brien\r\n\r\nb\u00A0c\r\n"));
        shoot(over, "value-list");
        QTest::keyClick(&over, Qt::Key_Return, Qt::ControlModifier);
    });
    click("valueList");
    EXPECT_EQ("3 values: a, O'Brien, b c", toUtf8(child<QLabel>(*dialog, "values").text()));
    click("addCondition");
    click("code");
    EXPECT_TRUE(text().starts_with("if not inlist(`Value`,'a','O\\'Brien','b\u00A0c') then\n")) << text();
}

TEST_F(FilterDialog, TakesAConditionAndClosesByKeyboardAlone) {
    open();
    auto& field = child<QComboBox>(*dialog, "field");
    QTest::keyClick(&field, Qt::Key_Down);
    QTest::keyClick(&field, Qt::Key_Tab);
    QTest::keyClicks(dialog->focusWidget(), QStringLiteral("con"));
    while (dialog->focusWidget() != &child<QWidget>(*dialog, "value"))
        QTest::keyClick(dialog->focusWidget(), Qt::Key_Tab);
    QTest::keyClicks(dialog->focusWidget(), QStringLiteral("x"));
    QTest::keyClick(dialog->focusWidget(), Qt::Key_Return);
    EXPECT_EQ("Value contains \"x\"", text());
    ASSERT_TRUE(dialog->isVisible());
    QTest::keyClick(dialog->focusWidget(), Qt::Key_Return);
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_EQ(QDialog::Accepted, dialog->result());
    EXPECT_TRUE(dialog->GetFilterText().starts_with("/*{{BEGIN CONDITIONS\r\nOPERATION=6\r\n"));

    // The same text opens as the same list, and Esc keeps it.
    const std::string kept = dialog->GetFilterText();
    open(kept);
    EXPECT_EQ("Value contains \"x\"", text());
    QTest::keyClick(dialog.get(), Qt::Key_Escape);
    EXPECT_EQ(QDialog::Rejected, dialog->result());
}

// A condition that was filled in and never added is not dropped without a word.
TEST_F(FilterDialog, AsksAboutAConditionThatWasNotAdded) {
    const std::string question =
        "The condition that is filled in has not been added to the filter:\n\nValue equal to \"Bern\"\n\n"
        "Add it now?";
    const auto fillIn = [this] {
        choose("field", "Frequency value");
        choose("operation", "equal to");
        type("Bern");
    };
    open();
    fillIn();
    messages.expectAsk(question, "Report Filter", Messages::Answer::Yes, Messages::Answer::Yes);
    dialog->accept();
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_EQ(filterOf({onValue(FilterOperation::EqualTo, {"Bern"})}), dialog->GetFilterText());

    open();
    fillIn();
    messages.expectAsk(question, "Report Filter", Messages::Answer::No, Messages::Answer::Yes);
    dialog->accept();
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_EQ("", dialog->GetFilterText());

    // After AND it is what is missing; what was added, or merely chosen, is not asked about.
    open(filterOf({onValue(FilterOperation::IsNotNull)}));
    choose("field", "Frequency value");
    choose("operation", "equal to");
    dialog->accept();
    EXPECT_FALSE(dialog->isVisible());
    open(filterOf({onValue(FilterOperation::IsNotNull)}));
    click("and");
    fillIn();
    messages.expectAsk(question, "Report Filter", Messages::Answer::Yes, Messages::Answer::Yes);
    dialog->accept();
    EXPECT_EQ(filterOf({onValue(FilterOperation::IsNotNull), kAnd, onValue(FilterOperation::EqualTo, {"Bern"})}),
              dialog->GetFilterText());

    // With a list to which nothing can be added without AND or OR, it says so in place of a question that Yes cannot
    // answer.
    open(filterOf({onValue(FilterOperation::IsNotNull)}));
    fillIn();
    messages.expectAsk("The condition that is filled in has not been added to the filter:\n\nValue equal to "
                       "\"Bern\"\n\nAdd it now, with AND?",
                       "Report Filter", Messages::Answer::Yes, Messages::Answer::Yes);
    dialog->accept();
    EXPECT_EQ(filterOf({onValue(FilterOperation::IsNotNull), kAnd, onValue(FilterOperation::EqualTo, {"Bern"})}),
              dialog->GetFilterText());

    // Conditions that need no value, and lists of values.
    open();
    choose("field", "Frequency value");
    choose("operation", "is null");
    messages.expectAsk("The condition that is filled in has not been added to the filter:\n\nValue is null\n\n"
                       "Add it now?",
                       "Report Filter", Messages::Answer::Yes, Messages::Answer::Yes);
    dialog->accept();
    EXPECT_EQ(filterOf({onValue(FilterOperation::IsNull)}), dialog->GetFilterText());
}

TEST_F(FilterDialog, ReturnInItsBoxesAddsTheCondition) {
    for (const char* at : {"value", "operation", "caseInsensitive", "field"}) {
        open();
        choose("field", "Frequency value");
        choose("operation", "equal to");
        type("Bern");
        child<QWidget>(*dialog, at).setFocus();
        QTest::keyClick(dialog->focusWidget(), Qt::Key_Return);
        EXPECT_EQ("Value equal to \"Bern\"", text()) << at;
        EXPECT_TRUE(dialog->isVisible()) << at;
        // Nothing is left to add: the same key closes.
        QTest::keyClick(dialog->focusWidget(), Qt::Key_Return);
        EXPECT_FALSE(dialog->isVisible()) << at;
        EXPECT_EQ(filterOf({onValue(FilterOperation::EqualTo, {"Bern"})}), dialog->GetFilterText()) << at;
    }
}

TEST_F(FilterDialog, RefusesAListThatIsNoExpression) {
    open();
    click("leftParenthesis");
    add("equal to", "a");
    messages.expectWarn("Invalid expression: Extra left parenthesis", "Invalid Value");
    dialog->accept();
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_TRUE(child<QWidget>(*dialog, "field").hasFocus());
    click("rightParenthesis");
    click("and");
    click("code");
    EXPECT_EQ("Cannot display expression:\n\nCondition list cannot end with AND or OR", text());
    messages.expectWarn("Invalid expression: Cannot end with AND or OR", "Invalid Value");
    dialog->accept();
    click("undo");
    click("passes");
    EXPECT_EQ("if (`Value` == 'a') then\n   return false\nelse\n   return true\n", text());
    shoot(*dialog, "code");
    dialog->accept();
    EXPECT_FALSE(dialog->isVisible());
}

TEST_F(FilterDialog, SavesAndLoadsFiles) {
    const TempFolder folder;
    const auto answer = [](const QString& path) {
        return [path](QWidget& over) {
            auto& files = dynamic_cast<QFileDialog&>(over);
            EXPECT_EQ((QStringList{QStringLiteral("Filter Files (*.flt)"), QStringLiteral("All Files (*)")}),
                      files.nameFilters());
            auto& name = child<QLineEdit>(files, "fileNameEdit");
            name.setText(path);
            QTest::keyClick(&name, Qt::Key_Return);
        };
    };
    open();
    add("begins with", "\xC3\xBC'");
    inNextDialog(answer(toQString(folder.file("mine"))));
    click("save");
    const std::string list = filterOf({onValue(FilterOperation::BeginsWith, {"\xC3\xBC'"})});
    std::ifstream file(folder.file("mine.flt"), std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    ASSERT_GT(bytes.size(), 2U);
    EXPECT_EQ(list, bytes.substr(2));

    click("clear");
    inNextDialog(answer(toQString(folder.file("mine.flt"))));
    click("load");
    EXPECT_EQ("Value begins with \"\xC3\xBC'\"", text());

    // A bad file leaves what is there; one without conditions is for edit mode.
    std::ofstream(folder.file("cut.flt"), std::ios::binary) << '\x09' << '\0' << "abc";
    messages.expectWarn("Invalid or corrupt filter file", "File Error");
    inNextDialog(answer(toQString(folder.file("cut.flt"))));
    click("load");
    EXPECT_EQ("Value begins with \"\xC3\xBC'\"", text());
    std::ofstream(folder.file("code.flt"), std::ios::binary) << '\x0C' << '\0' << "`Count` > 10";
    inNextDialog(answer(toQString(folder.file("code.flt"))));
    click("load");
    EXPECT_TRUE(button("editMode").isChecked());
    EXPECT_EQ("`Count` > 10", text());
}

TEST_F(FilterDialog, HasTheFiltersThatWereUsedAndNamed) {
    FilterMemory memory(*settings);
    const std::string nulls = filterOf({onValue(FilterOperation::IsNull)});
    ASSERT_TRUE(memory.Remember(DistributionKind::Frequency, nulls).ok());
    open();
    auto& menu = child<QMenu>(*dialog, "filterMenu");
    const auto action = [&menu](const char* words) -> QAction& {
        Q_EMIT menu.aboutToShow();
        for (QAction* each : menu.actions()) {
            if (each->text() == QLatin1String(words))
                return *each;
        }
        throw std::runtime_error(std::string("no entry ") + words);
    };
    EXPECT_FALSE(action("&Save Under a Name...").isEnabled());
    action("Value is null").trigger();
    EXPECT_EQ("Value is null", text());

    inNextDialog([](QWidget& over) {
        over.findChild<QLineEdit*>()->setText(QStringLiteral("A & B"));
        QTest::keyClick(&over, Qt::Key_Return);
    });
    action("&Save Under a Name...").trigger();
    ASSERT_EQ(1U, memory.Named(DistributionKind::Frequency).size());
    EXPECT_EQ((NamedFilter{"A & B", nulls}), memory.Named(DistributionKind::Frequency)[0]);

    // Edits are not lost without a question.
    open("`Count` > 1");
    auto& again = child<QMenu>(*dialog, "filterMenu");
    Q_EMIT again.aboutToShow();
    QAction* named = again.actions()[1];
    EXPECT_EQ("A && B", toUtf8(named->text()));
    const std::string question =
        "This action will cause you to lose any changes you made while in Edit Mode. Continue anyway?";
    messages.expectAsk(question, "Leave Edit Mode", Messages::Answer::No);
    named->trigger();
    EXPECT_EQ("`Count` > 1", text());
    messages.expectAsk(question, "Leave Edit Mode", Messages::Answer::Yes);
    named->trigger();
    EXPECT_EQ("Value is null", text());
    EXPECT_FALSE(button("editMode").isChecked());

    Q_EMIT again.aboutToShow();
    messages.expectAsk("Delete the filter named \"A & B\"?", "Delete Filter", Messages::Answer::Yes);
    again.actions().back()->menu()->actions()[0]->trigger();
    EXPECT_TRUE(memory.Named(DistributionKind::Frequency).empty());
}

TEST_F(FilterDialog, NamesEveryControlForScreenReaders) {
    open();
    int controls = 0;
    for (QWidget* widget : dialog->findChildren<QWidget*>()) {
        if (widget->focusPolicy() == Qt::NoFocus || !widget->isVisible())
            continue;
        ++controls;
        QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(widget);
        ASSERT_NE(nullptr, spoken);
        EXPECT_FALSE(spoken->text(QAccessible::Name).isEmpty()) << toUtf8(widget->objectName());
    }
    EXPECT_GT(controls, 25);
}

TEST_F(FilterDialog, IsLegibleInTheDark) {
    const QPalette before = QApplication::palette();
    QApplication::setPalette(darkPalette());
    open(filterOf({onValue(FilterOperation::EqualTo, {"a", "b"}), kAnd, kOpen, onValue(FilterOperation::IsNotNull), kOr,
                   onCount(FilterOperation::GreaterThan, {"10"}), kClose}));
    shoot(*dialog, "dark-plain-text");
    EXPECT_TRUE(isDark(dialog->palette()));
    dialog->close();
    QApplication::setPalette(before);
}

} // namespace
} // namespace tavix
