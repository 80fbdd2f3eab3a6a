#pragma once

#include "grid/CUGDataSource.h"
#include "grid/ui/ColumnWidths.h"

#include <QTableView>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tavix {

class GridModel;
class TypingSearch;

/// The one grid: the rows of a CUGDataSource, of which only those on the screen are fetched. Whole rows are selected.
/// A click on a heading sorts where the source can; leading locked columns stay in view; typing finds a row by its
/// first column, and Escape stops a long search; Home and End go to the first and the last row; Ctrl+C copies the
/// selected rows, Ctrl+Shift+C with the headings. Actions added to the widget come first in its context menu.
class CUGCtrl final : public QTableView {
    Q_OBJECT
  public:
    explicit CUGCtrl(QWidget* parent = nullptr);

    /// Not owned; must outlive the grid or be taken back with null.
    void SetSource(CUGDataSource* source);
    /// To be called when the source's rows or columns are others now. Widths, selection and sorting start anew.
    void SourceChanged();
    /// The same for rows that were read anew of what is shown already: they are sorted as the user had them.
    void RowsRefilled();

    /// Where widths that the user drags are kept and found again; may be null.
    void SetWidthMemory(std::unique_ptr<ColumnWidthMemory> memory);

    /// Whether characters without a mark of their own are drawn as signs. What is copied stays as it is.
    void SetShowsInvisible(bool shows);
    [[nodiscard]] bool ShowsInvisible() const { return m_showsInvisible; }

    /// -1 without one.
    [[nodiscard]] std::int64_t GetCurrentRow() const;
    void SelectRow(std::int64_t row);
    /// Scrolls sideways until the column is in view.
    void ShowColumn(int column);
    /// Ascending order of the rows on the screen.
    [[nodiscard]] std::vector<std::int64_t> GetSelectedRows() const;
    void SortBy(int column, bool descending);
    void CopySelection(bool withHeadings) const;

    void scrollTo(const QModelIndex& index, ScrollHint hint = EnsureVisible) override;
    void keyboardSearch(const QString& typed) override;

  Q_SIGNALS:
    void CurrentRowChanged(qint64 row);
    /// Enter or a double click.
    void RowActivated(qint64 row);

  protected:
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;

  private:
    void SetUpView(QTableView& view);
    void MakeLockedView();
    [[nodiscard]] std::vector<QTableView*> Views();
    void ApplyFont();
    void ApplyColumns();
    void PlaceLockedView();
    void ShowSortArrow();
    void ToggleSort(int column);
    bool Sort(int column, bool descending);
    void ShowMenu(const QPoint& globalPosition);
    [[nodiscard]] int LockedColumns() const;
    [[nodiscard]] int LockedWidth() const;

    GridModel* m_model;
    ColumnWidths m_widths;
    QTableView* m_locked = nullptr; ///< the locked columns again, over the scrolled ones; null without any
    int m_sortColumn = -1;          ///< by which the rows are sorted now
    // What the user chose outlasts rows that cannot be sorted by it, and the column may stand elsewhere when they are
    // read anew.
    std::optional<std::string> m_sortKey; ///< the identity of the column
    bool m_sortDescending = false;
    bool m_showsInvisible = false;
    TypingSearch* m_search;
};

} // namespace tavix
