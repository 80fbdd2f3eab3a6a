#pragma once

#include "grid/CUGDataSource.h"

#include <QStyledItemDelegate>

#include <limits>

namespace tavix {

class GridModel;
struct GridCell;

/// Draws a cell from one fetch: bar, icon, text, the look of null and unknown, the alert corner. The tooltip shows a
/// text that does not fit.
class CellDelegate final : public QStyledItemDelegate {
    Q_OBJECT
  public:
    CellDelegate(const GridModel& model, QObject* parent) : QStyledItemDelegate(parent), m_model(model) {}

    void setShowsInvisible(bool shows) { m_showsInvisible = shows; }

    /// Another view covers the cells from this x on; their texts stay before it.
    void setFreeWidth(int width) { m_freeWidth = width; }

    /// The width of a cell that cuts nothing of this one.
    [[nodiscard]] int neededWidth(const GridCell& cell, const QFont& font) const;

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override;

  private:
    [[nodiscard]] QString paintedText(const GridCell& cell) const;

    const GridModel& m_model;
    bool m_showsInvisible = false;
    int m_freeWidth = std::numeric_limits<int>::max();
};

} // namespace tavix
