#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

class QLabel;
class QTableView;

namespace tavix {

class GridModel;

/// Finds a row by its first column while its beginning is typed. A long list is looked through piece by piece; between
/// two pieces keys and clicks are handled, and a line at the bottom of the list says how far the search is.
class TypingSearch final : public QObject {
    Q_OBJECT
  public:
    /// Both must outlive the search.
    TypingSearch(QTableView& view, const GridModel& model);

    /// Goes on from the current row, around the end. One letter again and again walks through the rows that begin with
    /// it.
    void Type(const QString& typed);
    [[nodiscard]] bool IsRunning() const { return m_next.isActive(); }
    /// Ends the search and takes its line away.
    void Stop();
    /// To be called when the list has another size.
    void PlaceLine();

  Q_SIGNALS:
    void Found(int row);

  private:
    void SearchPiece();
    void ShowLine(const QString& text);

    QTableView& m_view;
    const GridModel& m_model;
    QLabel* m_line = nullptr; ///< null until it is needed
    QTimer m_next;
    QElapsedTimer m_sinceTyped;
    QString m_typed;
    QString m_wanted;
    int m_start = 0;
    int m_searched = 0; ///< rows from the start on
};

} // namespace tavix
