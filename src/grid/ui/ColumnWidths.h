#pragma once

#include "grid/ColumnWidthMemory.h"

#include <QTimer>

#include <map>
#include <memory>
#include <string>

class QTableView;

namespace tavix {

class GridModel;

/// How wide the columns of a table view are: as their source has them until the user drags them, which is kept. A
/// column that takes the room that is left does so until it is dragged itself.
class ColumnWidths final {
  public:
    /// Both must outlive this; the view shows the model.
    ColumnWidths(QTableView& view, const GridModel& model);
    ~ColumnWidths();
    ColumnWidths(const ColumnWidths&) = delete;
    ColumnWidths& operator=(const ColumnWidths&) = delete;

    /// Where widths that the user drags are kept, and found again by Apply(); may be null.
    void SetMemory(std::unique_ptr<ColumnWidthMemory> memory);

    /// While one lives, widths change by no dragging of the user's.
    class Placing {
      public:
        explicit Placing(ColumnWidths& widths) : m_widths(widths) { ++m_widths.m_placing; }
        ~Placing() { --m_widths.m_placing; }
        Placing(const Placing&) = delete;
        Placing& operator=(const Placing&) = delete;

      private:
        ColumnWidths& m_widths;
    };

    /// To be called when the model's columns are others now, or the memory is.
    void Apply();
    /// To be called when the view has another size.
    void FitToView();
    /// To be called when a column has another width, in the view's pixels.
    void Changed(int column, int width);
    /// Writes what was dragged to the memory, which otherwise waits for the end of the dragging.
    void Keep();

  private:
    [[nodiscard]] int Scaled(int pixels) const;

    QTableView& m_view;
    const GridModel& m_model;
    std::unique_ptr<ColumnWidthMemory> m_memory;
    std::map<std::string, int> m_dragged; ///< by identity, not yet kept
    QTimer m_keepSoon;
    int m_placing = 0;
    int m_fitted = -1; ///< the column that takes the room that is left; -1 without one
};

} // namespace tavix
