#pragma once

#include "expression/ExpressionError.h"

#include <QPlainTextEdit>

class QCompleter;
class QStringListModel;

namespace tavix {

/// The text box of a filter. Shows the conditions, or edits the expression with completion of function names while
/// typing and on Ctrl+Space.
class ExpressionBox final : public QPlainTextEdit {
    Q_OBJECT
  public:
    explicit ExpressionBox(QWidget* parent = nullptr);

    void SetFunctions(const QStringList& names);
    /// Shows a text, code in a fixed-width font. Keeps the caret when the text is already shown.
    void ShowText(const QString& text, bool isCode, bool isEditable);
    /// The text with lines ended by LF and all other characters unchanged.
    [[nodiscard]] QString Text() const;

    /// Underlines the fault.
    void MarkError(const expression::ExpressionError& error);
    void ClearMark();
    /// Moves the caret to the fault and takes the keyboard focus.
    void GoTo(const expression::ExpressionError& error);

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    bool focusNextPrevChild(bool next) override;

  private:
    [[nodiscard]] QTextCursor CursorAt(const expression::ExpressionError& error) const;
    void Offer(bool wasAskedFor);
    void Insert(const QString& name);

    QCompleter* m_completer;
    QStringListModel* m_names;
};

} // namespace tavix
