#pragma once

#include <QStyledItemDelegate>

namespace tavix {

/// Adds space above and below the rows of a list, in proportion to the font.
class RoomyDelegate final : public QStyledItemDelegate {
  public:
    using QStyledItemDelegate::QStyledItemDelegate;

    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        const QSize size = QStyledItemDelegate::sizeHint(option, index);
        return {size.width(), size.height() + option.fontMetrics.height() / 2};
    }
};

} // namespace tavix
