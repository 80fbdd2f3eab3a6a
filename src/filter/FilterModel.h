#pragma once

#include "base/Messages.h"
#include "filter/ComparisonInput.h"
#include "filter/FilterText.h"

#include <optional>
#include <string>
#include <string_view>

namespace tavix {

enum class FilterDisplay { PlainText = 0, ExpressionCode = 1 };

/// The control that the user has to look at next.
enum class FilterFocus { Stays, FieldList, OperationList, ValueList };

/// The dialog "Report Filter" without its window. A condition list grows and shrinks at its end only; or, in edit mode,
/// the user writes the code. Every refusal is shown through the messages before the call returns.
class FilterModel {
  public:
    /// What can be used now. The controls of the comparison also have their own rules, see ComparisonInput::Controls.
    struct Controls {
        bool comparison = true; ///< field, operation, values and their options
        bool display = true;    ///< plain text or expression code
        bool action = true;
        bool addCondition = false;
        bool leftParenthesis = false;
        bool rightParenthesis = false;
        bool connectors = false;
        bool undo = false; ///< and clear
        /// The box can be written in; functions, fields, copy and paste are at hand.
        bool editing = false;

        bool operator==(const Controls&) const = default;
    };

    /// Opens the dialog on a filter text. `messages` outlives the model.
    FilterModel(Messages& messages, DistributionKind kind, std::string_view filterText);

    [[nodiscard]] DistributionKind Kind() const { return m_kind; }
    [[nodiscard]] Controls Enabled() const;
    /// What the box shows, lines ended by CR LF.
    [[nodiscard]] std::string BoxText() const;

    /// Field, operation, values and options of the comparison that would be added next.
    ComparisonInput input;

    // The condition list.
    [[nodiscard]] const ConditionList& Conditions() const { return m_conditions; }
    /// Throws std::invalid_argument for an index that the list does not have.
    [[nodiscard]] const CCondition& Condition(int index) const;
    [[nodiscard]] ParenthesisCounts Parentheses() const { return m_parentheses; }
    // Each of these does nothing while its button is disabled.
    /// Says what is missing and where, or appends the comparison.
    [[nodiscard]] FilterFocus AddCondition();
    /// The comparison that is filled in, with a value where it takes one, and was neither added nor declined.
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
    /// Asks before edits are lost; false when the user then keeps them, and edit mode with them.
    bool SetEditMode(bool on);
    /// The box now holds this text; its lines may end in LF where the model's end in CR LF. Nothing outside edit mode.
    void EditBox(std::string text);

    // Files. What is wrong is shown, and false returned with nothing changed.
    /// Asks before edits are lost that were not saved.
    bool Load(const std::string& path);
    bool Save(const std::string& path);
    /// Takes a filter text in place of what is there, and leaves or enters edit mode as the text needs it.
    void LoadText(std::string_view filterText);

    /// OK. Asks about a pending comparison first; Yes adds it, with AND where the list needs it. True when the dialog
    /// can close: FilterText() then is the new filter text. False after a message; the focus then goes to the condition
    /// area.
    [[nodiscard]] bool Accept();
    /// The filter text of what is there now, valid or not, as Save writes it.
    [[nodiscard]] std::string ComposeText() const;
    /// What Accept left; before that, what the parser left of the text that was opened or loaded.
    [[nodiscard]] const std::string& FilterText() const { return m_filterText; }

  private:
    [[nodiscard]] std::optional<CCondition> FilledIn() const;
    void AskAboutPending();
    void Append(CCondition condition);
    void AppendParenthesis(bool left);
    [[nodiscard]] bool MayLoseEdits();

    Messages& m_messages;
    DistributionKind m_kind;
    ConditionList m_conditions;
    ParenthesisCounts m_parentheses;
    std::optional<CCondition> m_settled; ///< the input when it was last added, declined or done without
    FilterAction m_action = FilterAction::RemoveFailing;
    FilterDisplay m_display = FilterDisplay::PlainText;
    bool m_editMode = false;
    bool m_edited = false;
    bool m_hasUnsavedEdits = false;
    std::string m_editText; ///< the box in edit mode
    std::string m_filterText;
};

} // namespace tavix
