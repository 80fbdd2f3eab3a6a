#pragma once

#include "grid/ColumnFit.h"
#include "grid/ColumnMemory.h"

#include <QTimer>

#include <map>
#include <string>
#include <vector>

class QTableView;

namespace tavix {

class GridModel;

/// The column widths of a table view: what fitColumns() decides until the user drags a column, whose width is then
/// stored. The view's header is a GridHeader, its delegate a CellDelegate.
class ColumnWidths final {
  public:
    /// Both must outlive this; the view shows the model.
    ColumnWidths(QTableView& view, const GridModel& model);
    ~ColumnWidths();
    ColumnWidths(const ColumnWidths&) = delete;
    ColumnWidths& operator=(const ColumnWidths&) = delete;

    /// Where the user's widths are stored; Apply() reads them. May be null; must outlive this or be taken back.
    void SetMemory(ColumnMemory* memory);

    /// While one lives, changes of width are not the user's.
    class Placing {
      public:
        explicit Placing(ColumnWidths& widths) : m_widths(widths) { ++m_widths.m_placing; }
        ~Placing() { --m_widths.m_placing; }
        Placing(const Placing&) = delete;
        Placing& operator=(const Placing&) = delete;

      private:
        ColumnWidths& m_widths;
    };

    /// Call after the model's columns or the memory were replaced.
    void Apply();
    /// Call after the view was resized.
    void FitToView();
    /// Call after a column's width has changed, in the view's pixels.
    void Changed(int column, int width);
    /// Stores dragged widths now, without waiting for the end of the drag.
    void Keep();

  private:
    /// The width that the column's cells need.
    void Measure(int column, ColumnNeed& need) const;
    [[nodiscard]] int Scaled(int pixels) const;

    QTableView& m_view;
    const GridModel& m_model;
    ColumnMemory* m_memory = nullptr;
    std::map<std::string, int> m_dragged; ///< by identity, not stored yet
    QTimer m_keepSoon;
    int m_placing = 0;
    std::vector<ColumnNeed> m_needs; ///< of all columns, hidden ones among them
};

} // namespace tavix
