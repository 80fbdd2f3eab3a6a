#pragma once

#include <QObject>
#include <QTableView>

class QFrame;

namespace tavix {

class GridModel;

/// The columns that stay in view while a grid scrolls sideways, leading ones at its left edge or trailing ones at its
/// right edge: a second table view over the same model and selection, shown over the grid while the columns are out of
/// view.
class LockedColumns final : public QObject {
    Q_OBJECT
  public:
    enum class Edge { Left, Right };

    /// Both must outlive the object.
    LockedColumns(QTableView& grid, const GridModel& model, Edge edge);

    /// Whether the source locks the column at this edge.
    [[nodiscard]] bool IsLocked(int column) const;
    /// Of the locked columns in the grid.
    [[nodiscard]] int Width() const;
    /// What the view hides of the grid's viewport now.
    [[nodiscard]] int CoveredWidth() const;
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
    [[nodiscard]] int Count() const;

    QTableView& m_grid;
    const GridModel& m_model;
    Edge m_edge;
    QTableView* m_view = nullptr;
    QFrame* m_border = nullptr; ///< of the view at the right edge
};

} // namespace tavix
