#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

class QLabel;
class QTableView;

namespace tavix {

class GridModel;

/// Finds a row by its first column as the user types. A long list is searched in slices; between two slices keys and
/// clicks are handled, and a line at the bottom of the list shows the progress.
class TypingSearch final : public QObject {
    Q_OBJECT
  public:
    /// Both must outlive the search.
    TypingSearch(QTableView& view, const GridModel& model);

    /// Searches from the current row and wraps around. Typing the same letter repeatedly steps through the rows that
    /// begin with it.
    void Type(const QString& typed);
    [[nodiscard]] bool IsRunning() const { return m_next.isActive(); }
    /// Ends the search and hides its line.
    void Stop();
    /// Call after the list was resized.
    void PlaceLine();

  Q_SIGNALS:
    void Found(int row);

  private:
    void SearchSlice();
    void ShowLine(const QString& text);

    QTableView& m_view;
    const GridModel& m_model;
    QLabel* m_line = nullptr; ///< null until first shown
    QTimer m_next;
    QElapsedTimer m_sinceTyped;
    QString m_typed;
    QString m_wanted;
    int m_start = 0;
    int m_searched = 0; ///< rows searched from m_start on
};

} // namespace tavix
