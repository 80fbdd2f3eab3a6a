#pragma once

#include "grid/CUGDataSource.h"

#include <QIcon>
#include <QPainter>
#include <QPalette>

namespace tavix {

/// The usual edge length of a small picture, in device-independent pixels.
inline constexpr int kIconSize = 16;

/// Draws the picture as lines and areas, so that it is crisp at every scale; on a selection in the colour of its text.
void paintIcon(QPainter& painter, const QRectF& rect, CellIcon icon, const QPalette& palette, bool onSelection);
/// The words that stand for the picture, for tooltips and screen readers; "" for none.
[[nodiscard]] QString iconMeaning(CellIcon icon);

} // namespace tavix
