#include "base/tests/ScriptedMessages.h"
#include "base/tests/TempFolder.h"
#include "filter/FilterModel.h"
#include "filter/tests/Conditions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace tavix {
namespace {

using namespace tavix::testing;
using ::testing::IsEmpty;

constexpr int kValueField = 0;
constexpr int kCountField = 1;

int indexOf(FilterOperation operation) {
    return static_cast<int>(operation);
}

class Dialog : public ::testing::Test {
  protected:
    /// Chooses field and operation, types a value, and presses "Add Condition".
    void add(int field, FilterOperation operation, const std::string& value) {
        model.input.ChooseField(field);
        model.input.ChooseOperation(indexOf(operation));
        model.input.SetSingleValue(value);
        EXPECT_EQ(model.AddCondition(), FilterFocus::Stays);
    }
    void addAbc() { add(kValueField, FilterOperation::EqualTo, "abc"); }

    /// The enabled buttons, as a user sees them.
    std::string buttons() const {
        const FilterModel::Controls controls = model.Enabled();
        std::string text;
        const auto append = [&](bool enabled, const char* name) { text += enabled ? name : ""; };
        append(controls.addCondition, "add ");
        append(controls.leftParenthesis, "( ");
        append(controls.rightParenthesis, ") ");
        append(controls.connectors, "and/or ");
        append(controls.undo, "undo ");
        append(controls.editing, "edit ");
        return text;
    }

    ScriptedMessages messages;
    FilterModel model{messages, DistributionKind::Frequency, ""};
};

TEST_F(Dialog, OpensEmpty) {
    EXPECT_EQ(buttons(), "add ( ");
    EXPECT_EQ(model.BoxText(), "");
    EXPECT_EQ(model.Action(), FilterAction::RemoveFailing);
    EXPECT_EQ(model.Display(), FilterDisplay::PlainText);
    EXPECT_EQ(model.input.Mode(), ValueMode::Single);
    EXPECT_FALSE(model.EditMode() || model.input.CaseInsensitive() || model.input.Wildcard());
    EXPECT_TRUE(model.Accept());
    EXPECT_EQ(model.FilterText(), "");
}

TEST_F(Dialog, AFilterIsBuiltWithButtons) {
    model.AddLeftParenthesis();
    EXPECT_EQ(buttons(), "add ( undo ");
    addAbc();
    EXPECT_EQ(buttons(), ") and/or undo ");
    model.AddConnector(Connector::Or);
    EXPECT_EQ(buttons(), "add ( undo ");
    add(kCountField, FilterOperation::GreaterThan, "10");
    model.AddRightParenthesis();
    EXPECT_EQ(buttons(), "and/or undo ");
    EXPECT_EQ(model.Parentheses(), (ParenthesisCounts{1, 1}));
    EXPECT_EQ(model.BoxText(), "(Value equal to \"abc\" OR\r\nCount greater than 10)");

    model.ChooseDisplay(FilterDisplay::ExpressionCode);
    const std::string condition = "if (`Value` == 'abc' or\r\n`Count` > 10) then\r\n";
    EXPECT_EQ(model.BoxText(), condition + "   return true\r\nelse\r\n   return false\r\n");
    model.ChooseAction(FilterAction::RemovePassing);
    EXPECT_EQ(model.BoxText(), condition + "   return false\r\nelse\r\n   return true\r\n");
    ASSERT_TRUE(model.Accept());
    EXPECT_TRUE(model.FilterText().starts_with("/*{{BEGIN CONDITIONS\r\nOPERATION=0\r\n"));
    EXPECT_TRUE(model.FilterText().ends_with("}}END CONDITIONS*/\r\n" + model.BoxText()));

    FilterModel again(messages, DistributionKind::Pattern, model.FilterText());
    EXPECT_EQ(again.Conditions(), model.Conditions());
    EXPECT_EQ(again.Action(), FilterAction::RemovePassing);
    EXPECT_EQ(again.Parentheses(), (ParenthesisCounts{1, 1}));
    ASSERT_TRUE(again.Accept());
    EXPECT_EQ(again.FilterText(), model.FilterText());
}

TEST_F(Dialog, UndoAndClearGoBack) {
    model.AddLeftParenthesis();
    model.AddLeftParenthesis();
    addAbc();
    model.AddRightParenthesis();
    EXPECT_EQ(buttons(), ") and/or undo ");
    model.Undo();
    EXPECT_EQ(model.Parentheses(), (ParenthesisCounts{2, 0}));
    model.Undo();
    EXPECT_EQ(buttons(), "add ( undo ");
    model.Undo();
    EXPECT_EQ(model.Parentheses(), (ParenthesisCounts{1, 0}));
    EXPECT_EQ(model.Conditions(), ConditionList{kOpen});
    model.Clear();
    EXPECT_EQ(model.Parentheses(), ParenthesisCounts());
    EXPECT_EQ(buttons(), "add ( ");
    model.Undo();
    EXPECT_THAT(model.Conditions(), IsEmpty());
}

TEST_F(Dialog, DisabledButtonsDoNothing) {
    model.AddRightParenthesis();
    model.AddConnector(Connector::And);
    EXPECT_THAT(model.Conditions(), IsEmpty());
    addAbc();
    model.AddLeftParenthesis();
    model.AddRightParenthesis();
    EXPECT_EQ(model.AddCondition(), FilterFocus::Stays);
    EXPECT_EQ(model.Conditions().size(), 1u);
    EXPECT_EQ(model.Condition(0), onValue(FilterOperation::EqualTo, {"abc"}));
    EXPECT_THROW((void)model.Condition(1), std::invalid_argument);
    EXPECT_THROW((void)model.Condition(-1), std::invalid_argument);
}

TEST_F(Dialog, AddingSaysWhatIsMissingInOrder) {
    messages.expectWarn("Please select a field type", "Missing Value");
    EXPECT_EQ(model.AddCondition(), FilterFocus::FieldList);
    model.input.ChooseField(kValueField);
    messages.expectWarn("Please select an operation", "Missing Value");
    EXPECT_EQ(model.AddCondition(), FilterFocus::OperationList);
    model.input.ChooseOperation(indexOf(FilterOperation::NotEqualTo));
    model.input.ChooseMode(ValueMode::Multiple);
    messages.expectWarn("Please enter one or more values in the value list", "Missing Value");
    EXPECT_EQ(model.AddCondition(), FilterFocus::ValueList);
    EXPECT_THAT(model.Conditions(), IsEmpty());

    model.input.SetValueList({"b*", "", "a"});
    model.input.CheckCaseInsensitive(true);
    EXPECT_EQ(model.AddCondition(), FilterFocus::Stays);
    EXPECT_EQ(model.Condition(0), anyCase(onValue(FilterOperation::NotEqualTo, {"b*", "", "a"})));

    // Operations without a value ask for none, and one empty value is a value.
    model.AddConnector(Connector::And);
    model.input.ChooseOperation(indexOf(FilterOperation::IsNull));
    model.input.SetValueList({});
    EXPECT_EQ(model.AddCondition(), FilterFocus::Stays);
    EXPECT_EQ(model.Condition(2), onValue(FilterOperation::IsNull));
    model.AddConnector(Connector::And);
    add(kCountField, FilterOperation::LessThan, "");
    EXPECT_EQ(model.Condition(4), onCount(FilterOperation::LessThan, {""}));
}

TEST_F(Dialog, WildcardsNeedTheBoxTheOperationAndAStarOrQuestionMark) {
    const auto added = [&](FilterOperation operation, const std::string& value, bool box) {
        model.Clear();
        model.input.ChooseField(kValueField);
        model.input.ChooseOperation(indexOf(operation));
        model.input.CheckWildcard(box);
        model.input.SetSingleValue(value);
        EXPECT_EQ(model.AddCondition(), FilterFocus::Stays);
        return model.Condition(0).wildcard;
    };
    EXPECT_TRUE(added(FilterOperation::EqualTo, "a*", true));
    EXPECT_TRUE(added(FilterOperation::NotEqualTo, "?", true));
    EXPECT_FALSE(added(FilterOperation::EqualTo, "a*", false));
    EXPECT_FALSE(added(FilterOperation::EqualTo, "a", true));
    EXPECT_FALSE(added(FilterOperation::LessThan, "a*", true));
    EXPECT_FALSE(added(FilterOperation::Contains, "a*", true));
}

TEST_F(Dialog, EditModeGivesTheCodeToTheUser) {
    addAbc();
    model.ChooseAction(FilterAction::RemovePassing);
    const std::string code = "if `Value` == 'abc' then\r\n   return false\r\nelse\r\n   return true\r\n";
    EXPECT_TRUE(model.SetEditMode(true));
    EXPECT_EQ(buttons(), "edit ");
    EXPECT_FALSE(model.Enabled().comparison || model.Enabled().display || model.Enabled().action);
    EXPECT_EQ(model.Display(), FilterDisplay::ExpressionCode);
    EXPECT_EQ(model.BoxText(), code);
    model.ChooseDisplay(FilterDisplay::PlainText);
    model.ChooseAction(FilterAction::RemoveFailing);
    model.Undo();
    EXPECT_EQ(model.BoxText(), code);

    // Nothing was edited, so nothing is asked; other line ends in the box are not an edit.
    std::string fromBox = code;
    std::erase(fromBox, '\r');
    model.EditBox(fromBox);
    EXPECT_TRUE(model.SetEditMode(false));
    EXPECT_EQ(model.BoxText(), code);
    EXPECT_EQ(buttons(), "and/or undo ");

    ASSERT_TRUE(model.SetEditMode(true));
    model.EditBox("return\n`Count` > 3");
    ASSERT_TRUE(model.Accept());
    EXPECT_EQ(model.FilterText(), "return\r\n`Count` > 3");

    const std::string question =
        "This action will cause you to lose any changes you made while in Edit Mode. Continue anyway?";
    messages.expectAsk(question, "Leave Edit Mode", Messages::Answer::No);
    EXPECT_FALSE(model.SetEditMode(false));
    EXPECT_TRUE(model.EditMode());
    EXPECT_EQ(model.BoxText(), "return\r\n`Count` > 3");
    messages.expectAsk(question, "Leave Edit Mode", Messages::Answer::Yes);
    EXPECT_TRUE(model.SetEditMode(false));
    EXPECT_EQ(model.BoxText(), code);
    EXPECT_TRUE(model.SetEditMode(true));
    EXPECT_TRUE(model.SetEditMode(false));
}

TEST_F(Dialog, TheBoxCannotBeWrittenOutsideEditMode) {
    addAbc();
    model.EditBox("return true");
    EXPECT_EQ(model.BoxText(), "Value equal to \"abc\"");
    ASSERT_TRUE(model.SetEditMode(true));
    EXPECT_TRUE(model.SetEditMode(false));
}

TEST_F(Dialog, CodeWithoutConditionsOpensInEditMode) {
    const std::string code = "if `Value` == 'A\nb' THEN return TRUE else return false";
    FilterModel edited(messages, DistributionKind::Frequency, code);
    EXPECT_TRUE(edited.EditMode());
    EXPECT_EQ(edited.BoxText(), code);
    EXPECT_EQ(edited.Display(), FilterDisplay::ExpressionCode);
    edited.EditBox(code);
    ASSERT_TRUE(edited.Accept());
    EXPECT_EQ(edited.FilterText(), code);
    edited.EditBox(code + "\n");
    ASSERT_TRUE(edited.Accept());
    EXPECT_EQ(edited.FilterText(), code + "\n") << "a line feed inside a value must stay one";
    edited.EditBox("");
    ASSERT_TRUE(edited.Accept());
    EXPECT_EQ(edited.FilterText(), "");

    // It counts as edited from the start.
    edited.LoadText(code);
    messages.expectAsk("This action will cause you to lose any changes you made while in Edit Mode. Continue anyway?",
                       "Leave Edit Mode", Messages::Answer::Yes);
    EXPECT_TRUE(edited.SetEditMode(false));
    EXPECT_EQ(edited.BoxText(), "");
}

TEST_F(Dialog, OkRefusesAnUnfinishedList) {
    addAbc();
    model.AddConnector(Connector::And);
    messages.expectWarn("Invalid expression: Cannot end with AND or OR", "Invalid Value");
    EXPECT_FALSE(model.Accept());
    EXPECT_EQ(model.FilterText(), "");
    model.AddLeftParenthesis();
    messages.expectWarn("Invalid expression: Extra left parenthesis", "Invalid Value");
    EXPECT_FALSE(model.Accept());
    // The list does not matter to a user who writes the code.
    ASSERT_TRUE(model.SetEditMode(true));
    EXPECT_TRUE(model.Accept());
    EXPECT_EQ(model.FilterText(),
              "Cannot display expression:\r\n\r\nCondition list contains an extra left parenthesis");
    ASSERT_TRUE(model.SetEditMode(false));
    CCondition closing = onCount(FilterOperation::EqualTo, {"1"});
    closing.rightParen = true;
    model.LoadText(expectedText("extra_right.filter"));
    EXPECT_EQ(model.Conditions(), (ConditionList{closing, kAnd}));
    EXPECT_EQ(model.Parentheses(), (ParenthesisCounts{0, 1}));
    messages.expectWarn("Invalid expression: Extra right parenthesis", "Invalid Value");
    EXPECT_FALSE(model.Accept());
    model.Undo();
    model.Undo();
    EXPECT_EQ(model.Parentheses(), ParenthesisCounts());
    EXPECT_TRUE(model.Accept());
}

TEST_F(Dialog, FilesKeepUnfinishedListsAndEdits) {
    const TempFolder folder;
    const std::string unfinished = folder.file("unfinished.flt");
    addAbc();
    model.AddConnector(Connector::Or);
    model.ChooseAction(FilterAction::RemovePassing);
    ASSERT_TRUE(model.Save(unfinished));
    const ConditionList list = model.Conditions();
    ASSERT_TRUE(model.SetEditMode(true));
    model.EditBox("return true");
    const std::string code = folder.file("code.flt");
    ASSERT_TRUE(model.Save(code));

    FilterModel other(messages, DistributionKind::Pattern, "");
    other.input.ChooseField(kValueField);
    other.input.ChooseMode(ValueMode::Multiple);
    other.input.ChooseOperation(indexOf(FilterOperation::IsNull));
    other.ChooseDisplay(FilterDisplay::ExpressionCode);
    ASSERT_TRUE(other.Load(unfinished));
    EXPECT_EQ(other.Conditions(), list);
    EXPECT_EQ(other.BoxText(), "Value equal to \"abc\" OR\r\n");
    EXPECT_EQ(other.Action(), FilterAction::RemoveFailing) << "the message that replaces the code states no action";
    EXPECT_EQ(other.input.Mode(), ValueMode::Single);
    EXPECT_EQ(buttons(), "edit ");
    ASSERT_TRUE(other.Load(code));
    EXPECT_TRUE(other.EditMode());
    EXPECT_EQ(other.BoxText(), "return true");
    // Loading a condition list leaves edit mode again.
    ASSERT_TRUE(other.Load(unfinished));
    EXPECT_FALSE(other.EditMode());
    EXPECT_EQ(other.Conditions(), list);
}

TEST_F(Dialog, LoadingAsksBeforeEditsAreLost) {
    const TempFolder folder;
    const std::string file = folder.file("code.flt");
    ASSERT_TRUE(model.SetEditMode(true));
    model.EditBox("`Count` > 3");
    ASSERT_TRUE(model.Save(file));
    ASSERT_TRUE(model.Load(file)) << "what was saved is not lost";
    model.EditBox("`Count` > 4");
    const std::string question =
        "This action will cause you to lose any changes you made while in Edit Mode. Continue anyway?";
    messages.expectAsk(question, "Leave Edit Mode", Messages::Answer::No);
    EXPECT_FALSE(model.Load(file));
    EXPECT_EQ(model.BoxText(), "`Count` > 4");
    messages.expectAsk(question, "Leave Edit Mode", Messages::Answer::Yes);
    EXPECT_TRUE(model.Load(file));
    EXPECT_EQ(model.BoxText(), "`Count` > 3");
}

TEST_F(Dialog, AFileThatCannotBeLoadedChangesNothing) {
    const TempFolder folder;
    addAbc();
    const std::string before = model.BoxText();
    messages.expectWarn("Unable to open filter file", "File Open Error");
    EXPECT_FALSE(model.Load(folder.file("missing.flt")));
    messages.expectWarn("Unable to open filter file", "File Open Error");
    EXPECT_FALSE(model.Save(folder.file("no/folder.flt")));
    std::ofstream(folder.file("short.flt"), std::ios::binary) << "\x05";
    messages.expectWarn("Invalid filter file", "File Error");
    EXPECT_FALSE(model.Load(folder.file("short.flt")));
    std::ofstream(folder.file("cut.flt"), std::ios::binary) << "\x05\x01/*{{";
    messages.expectWarn("Invalid or corrupt filter file", "File Error");
    EXPECT_FALSE(model.Load(folder.file("cut.flt")));
    EXPECT_EQ(model.BoxText(), before);
    EXPECT_EQ(model.Conditions().size(), 1u);

    std::ofstream(folder.file("empty.flt"), std::ios::binary) << std::string(2, '\0');
    EXPECT_TRUE(model.Load(folder.file("empty.flt")));
    EXPECT_EQ(buttons(), "add ( ");
}

TEST_F(Dialog, AFullDiskIsToldWithItsCaption) {
    if (!std::filesystem::exists("/dev/full"))
        GTEST_SKIP() << "this system has no /dev/full";
    addAbc();
    messages.expectWarn("Unable to write filter file", "File Error");
    EXPECT_FALSE(model.Save("/dev/full"));
}

TEST_F(Dialog, EnterAddsAConditionThatIsFilledIn) {
    EXPECT_EQ(model.PressEnter(true, true, false), FilterEnter::AddCondition) << "to be told what is missing";
    EXPECT_EQ(model.PressEnter(false, true, false), FilterEnter::PassOn) << "nothing is filled in";
    EXPECT_EQ(model.PressEnter(false, false, false), FilterEnter::PassOn);
    EXPECT_EQ(model.PressEnter(true, true, true), FilterEnter::Accept);
    EXPECT_EQ(model.PressEnter(false, false, true), FilterEnter::Accept);
    model.input.ChooseField(kValueField);
    model.input.ChooseOperation(indexOf(FilterOperation::EqualTo));
    model.input.SetSingleValue("abc");
    EXPECT_EQ(model.PressEnter(false, true, false), FilterEnter::AddCondition);
    EXPECT_EQ(model.PressEnter(false, false, false), FilterEnter::PassOn) << "the keyboard is elsewhere";
    EXPECT_EQ(model.AddHint(), "Add the condition to the filter");
    addAbc();
    EXPECT_EQ(model.PressEnter(true, true, false), FilterEnter::PassOn) << "AND or OR comes first";
    EXPECT_EQ(model.AddHint(), "Choose AND or OR before another condition");
}

TEST_F(Dialog, TheEmptyBoxSaysWhatItIsFor) {
    EXPECT_EQ(model.BoxHint(), "No conditions: every row stays in the report.");
    model.SetEditMode(true);
    EXPECT_EQ(model.BoxHint(), "Write an expression, for example `Count` > 10");
}

} // namespace
} // namespace tavix
