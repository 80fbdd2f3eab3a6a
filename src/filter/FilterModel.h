#pragma once

#include "base/Messages.h"
#include "filter/ComparisonInput.h"
#include "filter/FilterFile.h"
#include "filter/FilterText.h"

#include <optional>
#include <string>
#include <string_view>

namespace tavix {

enum class FilterDisplay { PlainText = 0, ExpressionCode = 1 };

/// The control that needs the user's attention next.
enum class FilterFocus { Stays, FieldList, OperationList, ValueList };

/// What the key Enter does.
enum class FilterEnter { PassOn, AddCondition, Accept };

/// The dialog "Report Filter" without its window. The condition list changes only at its end; in edit mode the user
/// writes the code instead. Refusals are shown through the messages before a call returns.
class FilterModel {
  public:
    /// Which controls are enabled. ComparisonInput::Controls has further rules for those of the comparison.
    struct Controls {
        bool comparison = true; ///< field, operation, values and their options
        bool display = true;    ///< plain text or expression code
        bool action = true;
        bool addCondition = false;
        bool leftParenthesis = false;
        bool rightParenthesis = false;
        bool connectors = false;
        bool undo = false; ///< also for "clear"
        /// The box is editable; functions, fields, copy and paste are enabled.
        bool editing = false;

        bool operator==(const Controls&) const = default;
    };

    /// Opens the dialog on a filter text. `messages` must outlive the model.
    FilterModel(Messages& messages, DistributionKind kind, std::string_view filterText);

    [[nodiscard]] DistributionKind Kind() const { return m_kind; }
    [[nodiscard]] Controls Enabled() const;
    /// The text of the box, with lines ended by CR LF.
    [[nodiscard]] std::string BoxText() const;

    /// The placeholder of the empty box.
    [[nodiscard]] std::string_view BoxHint() const;
    /// What the button that adds a condition does, or what it needs first.
    [[nodiscard]] std::string_view AddHint() const;
    /// Enter while the keyboard is in the box of the single value, in any control of the comparison, or elsewhere.
    /// Where a comparison is filled in it adds that; with Ctrl it closes the dialog.
    [[nodiscard]] FilterEnter PressEnter(bool isInValue, bool isInComparison, bool withControl) const;

    /// Field, operation, values and options of the comparison that would be added next.
    ComparisonInput input;

    // The condition list.
    [[nodiscard]] const ConditionList& Conditions() const { return m_conditions; }
    /// Throws std::invalid_argument when there is no such index.
    [[nodiscard]] const CCondition& Condition(int index) const;
    [[nodiscard]] ParenthesisCounts Parentheses() const { return m_parentheses; }
    // These do nothing while their button is disabled.
    /// Reports what is missing and where, or appends the comparison.
    [[nodiscard]] FilterFocus AddCondition();
    /// The comparison that is filled in, with a value if it takes one, and was neither added nor declined.
    [[nodiscard]] std::optional<CCondition> Pending() const;
    void AddLeftParenthesis();
    void AddRightParenthesis();
    void AddConnector(Connector connector);
    void Undo();
    void Clear();

    [[nodiscard]] FilterAction Action() const { return m_action; }
    void ChooseAction(FilterAction action);
    [[nodiscard]] FilterDisplay Display() const { return m_display; }
    void ChooseDisplay(FilterDisplay display);

    // Edit mode.
    [[nodiscard]] bool EditMode() const { return m_editMode; }
    /// Asks before edits are lost; false when the user keeps them and stays in edit mode.
    bool SetEditMode(bool on);
    /// The box now holds this text; its lines may end in LF where the model's end in CR LF. Ignored outside edit mode.
    void EditBox(std::string text);

    // Files. Failures are shown; the call then returns false and changes nothing.
    /// Asks before unsaved edits are lost.
    bool Load(const std::string& path);
    bool Save(const std::string& path);
    /// Replaces the filter by a filter text and leaves or enters edit mode as the text requires.
    void LoadText(std::string_view filterText);

    /// OK. Asks about a pending comparison first; Yes adds it, with AND where the list needs it. Returns true when the
    /// dialog can close; FilterText() then is the new filter text. Returns false after a message, when the focus
    /// belongs in the condition area.
    [[nodiscard]] bool Accept();
    /// The filter text of the current state, valid or not, as Save writes it.
    [[nodiscard]] std::string ComposeText() const;
    /// The result of the last Accept(); before that, the parser's rest of the text that was opened or loaded.
    [[nodiscard]] const std::string& FilterText() const { return m_filterText; }

  private:
    [[nodiscard]] std::optional<CCondition> FilledIn() const;
    void AskAboutPending();
    void Append(CCondition condition);
    bool Refuse(const FilterFileProblem& problem);
    [[nodiscard]] bool MayLoseEdits();

    Messages& m_messages;
    DistributionKind m_kind;
    ConditionList m_conditions;
    ParenthesisCounts m_parentheses;
    std::optional<CCondition> m_settled; ///< the input when it was last added, declined or abandoned
    FilterAction m_action = FilterAction::RemoveFailing;
    FilterDisplay m_display = FilterDisplay::PlainText;
    bool m_editMode = false;
    bool m_edited = false;
    bool m_hasUnsavedEdits = false;
    std::string m_editText; ///< the box's text in edit mode
    std::string m_filterText;
};

} // namespace tavix
