#pragma once

#include "filter/FilterModel.h"

#include <QWidget>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;

namespace tavix {

/// The controls of the comparison that is being built. Choices go to the model's input at once.
class ComparisonPane final : public QWidget {
    Q_OBJECT
  public:
    /// The model must outlive the pane.
    explicit ComparisonPane(FilterModel& model, QWidget* parent = nullptr);

    /// Shows the model's input and enables its controls.
    void ShowInput();
    void FocusOn(FilterFocus control);
    /// Whether the box of the single value has the keyboard focus.
    [[nodiscard]] bool IsInValue() const;
    /// Whether any of the controls has it.
    [[nodiscard]] bool HasKeyboard() const;

  private:
    void MakeControls();
    void LayOut();
    void Connect();
    void FillOperations();
    void EditValues();
    /// Applies the user's choice; does nothing while the model is being shown.
    template <typename Choose>
    void Chosen(Choose choose) {
        if (m_isShowing)
            return;
        choose(m_model.input);
        ShowInput();
    }

    FilterModel& m_model;
    QComboBox* m_field;
    QComboBox* m_operation;
    QRadioButton* m_single;
    QRadioButton* m_multiple;
    QLineEdit* m_value;
    QPushButton* m_valueList;
    QLabel* m_values;
    QCheckBox* m_caseInsensitive;
    QCheckBox* m_wildcard;
    bool m_isShowing = false;
};

} // namespace tavix
