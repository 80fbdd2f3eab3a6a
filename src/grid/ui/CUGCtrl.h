#pragma once

#include "grid/CUGDataSource.h"
#include "grid/OptionalColumns.h"
#include "grid/ui/ColumnWidths.h"

#include <QTableView>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class QMenu;

namespace tavix {

class GridMenus;
class GridModel;
class LockedColumns;
class TypingSearch;

/// The grid for all lists. Shows the rows of a CUGDataSource and fetches only those on the screen. Whole rows are
/// selected. A click on a heading sorts if the source can; leading locked columns stay in view; typing finds a row by
/// its first column, and Escape stops a long search; Home and End go to the first and last row; Ctrl+C copies the
/// selected rows, Ctrl+Shift+C with headings. Actions added to the widget come first in its context menu.
class CUGCtrl final : public QTableView {
    Q_OBJECT
  public:
    explicit CUGCtrl(QWidget* parent = nullptr);
    ~CUGCtrl() override;

    /// Not owned; must outlive the grid or be taken back with null.
    void SetSource(CUGDataSource* source);
    /// Call after the source's rows or columns were replaced. Resets widths, selection and sorting.
    void SourceChanged();
    /// Call after the rows of the same object were read again: keeps the user's sort order.
    void RowsRefilled();

    /// Where the user's widths of columns and choices of optional columns are stored; may be null.
    void SetColumnMemory(std::unique_ptr<ColumnMemory> memory);
    /// Adds entries for the column to the menu of its heading, after those for sorting.
    void SetHeadingEntries(std::function<void(QMenu&, int column)> add) { m_addHeadingEntries = std::move(add); }
    void AddHeadingEntries(QMenu& menu, int column) const;

    /// Whether invisible characters are drawn as signs. Copied text is not changed.
    void SetShowsInvisible(bool shows);
    [[nodiscard]] bool ShowsInvisible() const { return m_showsInvisible; }

    /// -1 without one.
    [[nodiscard]] std::int64_t GetCurrentRow() const;
    void SelectRow(std::int64_t row) { SelectCell(row, 0); }
    /// Selects the row and makes its cell in that column current.
    void SelectCell(std::int64_t row, int column);
    /// In ascending order.
    [[nodiscard]] std::vector<std::int64_t> GetSelectedRows() const;
    void SortBy(int column, bool descending);
    /// Ascending, or descending if the rows are already sorted by the column.
    void ToggleSort(int column);
    /// Call after optional columns were chosen.
    void ShowColumns();
    void CopySelection(bool withHeadings) const;

    void scrollTo(const QModelIndex& index, ScrollHint hint = EnsureVisible) override;
    /// The room beyond the last column belongs to the row.
    [[nodiscard]] QModelIndex indexAt(const QPoint& at) const override;
    void keyboardSearch(const QString& typed) override;

  Q_SIGNALS:
    void CurrentRowChanged(qint64 row);
    /// Enter or a double click.
    void RowActivated(qint64 row);

  protected:
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void changeEvent(QEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;

  private:
    void SetUpView(QTableView& view);
    /// The grid, and the view of the locked columns if there is one.
    [[nodiscard]] std::vector<QTableView*> Views();
    void ApplyFont();
    void ApplyColumns();
    void PlaceLocked();
    /// Where the columns end, in the viewport.
    [[nodiscard]] int EndOfColumns() const;
    void ShowSortArrow();
    bool Sort(int column, bool descending);

    GridModel* m_model;
    std::unique_ptr<ColumnMemory> m_memory;
    OptionalColumns m_optional;
    ColumnWidths m_widths;
    LockedColumns* m_locked;
    LockedColumns* m_pinned; ///< at the right edge
    int m_sortColumn = -1;   ///< by which the rows are sorted now
    /// The identity of the column that the user chose to sort by. It is kept while the rows cannot be sorted by it, and
    /// the column may have another index when they are read anew.
    std::optional<std::string> m_sortKey;
    bool m_sortDescending = false;
    bool m_showsInvisible = false;
    std::function<void(QMenu&, int)> m_addHeadingEntries;
    TypingSearch* m_search;
    std::unique_ptr<GridMenus> m_menus;
};

} // namespace tavix
