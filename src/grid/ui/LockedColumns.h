#pragma once

#include <QObject>
#include <QTableView>

namespace tavix {

class GridModel;

/// The leading columns that stay in view while a grid scrolls sideways: a second table view over the same model and
/// selection, shown over the grid while the grid is scrolled.
class LockedColumns final : public QObject {
    Q_OBJECT
  public:
    /// Both must outlive the object.
    LockedColumns(QTableView& grid, const GridModel& model);

    /// How many leading columns the source locks.
    [[nodiscard]] int Count() const;
    /// Their width in the grid.
    [[nodiscard]] int Width() const;
    /// Whether the view has to be made; most grids have no locked columns, and a second view costs as much as the
    /// first.
    [[nodiscard]] bool NeedsView() const { return !m_view && Count() > 0; }
    /// Makes the view. The caller sets it up as it did the grid.
    QTableView& MakeView();
    /// Null until it is made.
    [[nodiscard]] QTableView* View() const { return m_view; }

    /// Call after the columns have changed.
    void HideOtherColumns();
    /// Call after the grid was scrolled or resized, or a column was.
    void Place();

  private:
    QTableView& m_grid;
    const GridModel& m_model;
    QTableView* m_view = nullptr;
};

} // namespace tavix
