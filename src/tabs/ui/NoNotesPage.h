#pragma once

#include <QWidget>

class QAction;
class QLabel;
class QPushButton;

namespace tavix {

/// Takes the place of an empty list of notes: a sentence, and a button that adds the first note.
class NoNotesPage final : public QWidget {
    Q_OBJECT
  public:
    /// The button triggers `add`, and is shown while the action is enabled.
    explicit NoNotesPage(QAction& add, QWidget* parent = nullptr);

    void ShowSentence(const QString& sentence);
    /// The button; null while it is hidden.
    [[nodiscard]] QWidget* GetTabStop() const;

  protected:
    void changeEvent(QEvent* event) override;

  private:
    void ApplyColors();

    QLabel* m_sentence;
    QPushButton* m_add;
};

} // namespace tavix
