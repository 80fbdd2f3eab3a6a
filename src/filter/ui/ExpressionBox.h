#pragma once

#include "expression/ExpressionError.h"

#include <QPlainTextEdit>

class QCompleter;
class QStringListModel;

namespace tavix {

/// The box of a filter: its conditions to be read, or its expression to be written, with names of functions offered
/// while one is being typed and on Ctrl+Space.
class ExpressionBox final : public QPlainTextEdit {
    Q_OBJECT
  public:
    explicit ExpressionBox(QWidget* parent = nullptr);

    void SetFunctions(const QStringList& names);
    /// Shows a text, code in a fixed pitch. Where it is shown already, the caret stays.
    void ShowText(const QString& text, bool isCode, bool isEditable);
    /// What is in the box, with lines ended by LF and every other character as it is.
    [[nodiscard]] QString Text() const;

    /// Underlines the place.
    void MarkError(const expression::ExpressionError& error);
    void ClearMark();
    /// Puts the caret there and takes the keyboard.
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
