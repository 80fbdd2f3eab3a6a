#pragma once

#include "filter/FunctionTexts.h"

#include <QDialog>

#include <vector>

class QLineEdit;
class QListWidget;
class QPlainTextEdit;
class QPushButton;

namespace tavix {

/// Shows the functions of the expression language with their descriptions. OK copies a call of the chosen function to
/// the clipboard, with the types in place of its arguments.
class CKeywords final : public QDialog {
    Q_OBJECT
  public:
    explicit CKeywords(std::vector<FilterFunction> functions, QWidget* parent = nullptr);

    void accept() override;

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void FillList();
    void ShowFunction();
    /// Null when no function is chosen.
    [[nodiscard]] const FilterFunction* Chosen() const;

    std::vector<FilterFunction> m_functions;
    QLineEdit* m_search;
    QListWidget* m_names;
    QPlainTextEdit* m_text;
    QPushButton* m_ok;
};

} // namespace tavix
