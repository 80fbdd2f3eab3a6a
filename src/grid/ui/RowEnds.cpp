#include "grid/ui/RowEnds.h"

#include "grid/ui/Tints.h"

#include <QItemSelectionModel>
#include <QPainter>
#include <QTableView>

#include <algorithm>

namespace tavix {

void paintRowEnds(QTableView& view, int end) {
    const int width = view.viewport()->width() - end;
    const QAbstractItemModel* model = view.model();
    if (width <= 0 || model->columnCount() == 0)
        return;
    QPainter painter(view.viewport());
    const QColor selected = tint::selection(view.palette(), view.hasFocus()).background;
    const int last = view.rowAt(view.viewport()->height() - 1);
    const int rows = last < 0 ? model->rowCount() : last + 1;
    for (int row = std::max(0, view.rowAt(0)); row < rows; ++row) {
        const bool isSelected = view.selectionModel()->isSelected(model->index(row, 0));
        const QColor stripe = view.palette().color(row % 2 == 1 ? QPalette::AlternateBase : QPalette::Base);
        painter.fillRect(end, view.rowViewportPosition(row), width, view.rowHeight(row),
                         isSelected ? selected : stripe);
    }
}

} // namespace tavix
