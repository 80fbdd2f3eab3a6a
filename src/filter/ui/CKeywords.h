#pragma once

#include "filter/FunctionTexts.h"

#include <QDialog>

#include <vector>

class QLineEdit;
class QListWidget;
class QPlainTextEdit;
class QPushButton;

namespace tavix {

/// Shows the functions of the expression language and what each is for. OK puts a call of the chosen one, with the
/// types of its arguments in their places, on the clipboard.
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
    /// Null when none is chosen.
    [[nodiscard]] const FilterFunction* Chosen() const;

    std::vector<FilterFunction> m_functions;
    QLineEdit* m_search;
    QListWidget* m_names;
    QPlainTextEdit* m_text;
    QPushButton* m_ok;
};

} // namespace tavix
