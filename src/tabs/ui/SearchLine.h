#pragma once

#include "tabs/FreqDistModel.h"

#include <QTimer>
#include <QWidget>

class QLabel;
class QLineEdit;
class QPushButton;

namespace tavix {

/// The line above a list of values or patterns: the search field, the base of the percentages, a summary of the filter,
/// and buttons to edit and to stop it.
class SearchLine final : public QWidget {
    Q_OBJECT
  public:
    explicit SearchLine(QWidget* parent = nullptr);

    /// What the field shows; while the user types in it, a text that is not a filter yet stays.
    void ShowSearch(const FreqDistModel::SearchField& field);
    [[nodiscard]] QString GetText() const;
    /// The message about the typed text, in place of the summary; "" removes it.
    void ShowProblem(const QString& problem);
    void ShowBase(const QString& text);
    void ShowFilter(const FreqDistModel::Line& line);
    /// Whether a pause in typing searches.
    void SetSearchesWhileTyping(bool searches) { m_searchesWhileTyping = searches; }

    void FocusSearch();
    [[nodiscard]] QWidget* GetLastTabStop() const;

  Q_SIGNALS:
    /// `isFinal`: by Return or Escape, not by a pause.
    void SearchRequested(bool isFinal);
    void EditClicked();
    void StopClicked();
    /// The user moves on to the list.
    void ListRequested();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    void ApplyColors();
    void FitText();
    void SearchNow(bool isFinal);

    QLineEdit* m_search;
    QLabel* m_base;
    QLabel* m_text;
    QPushButton* m_edit;
    QPushButton* m_stop;
    QTimer m_pause;
    QString m_words; ///< summary of the filter
    QString m_problem;
    bool m_isAlarming = false;
    bool m_isFiltered = false;
    bool m_searchesWhileTyping = true;
};

} // namespace tavix
