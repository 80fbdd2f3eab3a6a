#pragma once

#include <QWidget>

class QLabel;
class QPlainTextEdit;

namespace tavix {

/// The whole text of one note below a heading, to be read and copied.
class NoteReadingPane final : public QWidget {
    Q_OBJECT
  public:
    explicit NoteReadingPane(QWidget* parent = nullptr);

    /// Empty texts show no note.
    void ShowNote(const QString& heading, const QString& text);
    void SetTextFont(const QFont& font);
    /// The control that takes the keyboard.
    [[nodiscard]] QWidget* GetTabStop() const;

  protected:
    void changeEvent(QEvent* event) override;

  private:
    void ApplyColors();

    QLabel* m_heading;
    QPlainTextEdit* m_text;
};

} // namespace tavix
