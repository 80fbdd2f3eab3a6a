#pragma once

#include <QPoint>

class QMenu;

namespace tavix {

class CUGCtrl;
class OptionalColumns;

/// The context menus of a grid: of its rows, and of its headings, where optional columns are shown and hidden.
class GridMenus {
  public:
    /// Both must outlive the menus.
    GridMenus(CUGCtrl& grid, OptionalColumns& optional) : m_grid(grid), m_optional(optional) {}

    void Show(const QPoint& globalPosition);
    /// `column` is -1 beyond the last heading.
    void ShowForHeading(int column, const QPoint& globalPosition);

  private:
    /// Adds a checkable entry for each optional column.
    void AddColumnEntries(QMenu& menu);
    [[nodiscard]] const class CUGDataSource* Source() const;

    CUGCtrl& m_grid;
    OptionalColumns& m_optional;
};

} // namespace tavix
