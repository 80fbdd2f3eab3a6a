#pragma once

#include "base/Result.h"
#include "base/SettingsStore.h"
#include "expression/ExpressionError.h"
#include "filter/FilterModel.h"
#include "filter/FunctionTexts.h"

#include <QDialog>
#include <QTimer>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

class QCheckBox;
class QGroupBox;
class QLabel;
class QPushButton;
class QRadioButton;

namespace tavix {

class ComparisonPane;
class ExpressionBox;
class FilterMenu;

/// The dialog "Report Filter", in which a user builds conditions or writes an expression. The FilterModel makes the
/// decisions; this class shows them.
class CFilterDlg final : public QDialog {
    Q_OBJECT
  public:
    using Functions = Result<std::vector<FilterFunction>>;

    /// `functions`: those of the expression language, or why they are not available. Messages and settings must outlive
    /// the dialog.
    CFilterDlg(Messages& messages, SettingsStore& settings, DistributionKind kind, std::string_view filterText,
               Functions functions, QWidget* parent = nullptr);

    /// The new filter text, after the dialog was closed with OK.
    [[nodiscard]] const std::string& GetFilterText() const { return m_model.FilterText(); }

    void accept() override;

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    void MakeConditionArea();
    void MakeActionArea();
    void MakeExpressionArea();
    void LayOut();
    void ConnectBuilding();
    void ConnectEditing();

    void ShowModel();
    void ApplyColors();
    void AddCondition();
    void SwitchEditMode(bool on);
    void BoxEdited();
    void CheckExpression();
    void PasteFunction();
    void PasteField();
    void Copy();
    void Load();
    void Save();

    Messages& m_messages;
    FilterModel m_model;
    Functions m_functions;
    ComparisonPane* m_comparison;
    QPushButton* m_add;
    QPushButton* m_left;
    QPushButton* m_right;
    QPushButton* m_and;
    QPushButton* m_or;
    QPushButton* m_undo;
    QPushButton* m_clear;
    QGroupBox* m_conditionArea;
    QGroupBox* m_actionArea;
    QGroupBox* m_expressionArea;
    QRadioButton* m_passes;
    QRadioButton* m_fails;
    QRadioButton* m_plainText;
    QRadioButton* m_code;
    QCheckBox* m_editMode;
    ExpressionBox* m_box;
    QLabel* m_error = nullptr;
    QPushButton* m_functionsButton;
    QPushButton* m_fields;
    QPushButton* m_copy;
    QPushButton* m_paste;
    QPushButton* m_filters;
    FilterMenu* m_menu;
    QPushButton* m_load;
    QPushButton* m_save;
    QTimer m_checkSoon;
    std::optional<expression::ExpressionError> m_fault; ///< the fault named below the box
    bool m_isShowing = false;
};

} // namespace tavix
