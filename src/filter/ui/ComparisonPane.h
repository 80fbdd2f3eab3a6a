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

/// The controls of the comparison that is put together. What is chosen goes to the model's input at once.
class ComparisonPane final : public QWidget {
    Q_OBJECT
  public:
    /// The model must outlive the pane.
    explicit ComparisonPane(FilterModel& model, QWidget* parent = nullptr);

    /// Shows the model's input, which controls can be used included.
    void ShowInput();
    void FocusOn(FilterFocus control);
    /// Whether the keyboard is in the box of the single value.
    [[nodiscard]] bool IsInValue() const;
    /// Whether it is in any of the controls.
    [[nodiscard]] bool HasKeyboard() const;

  private:
    void MakeControls();
    void LayOut();
    void Connect();
    void FillOperations();
    void EditValues();
    /// Does what the user chose, unless the choice is only being shown.
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
