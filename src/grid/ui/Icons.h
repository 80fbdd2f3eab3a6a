#pragma once

#include "grid/CUGDataSource.h"

#include <QIcon>
#include <QPainter>
#include <QPalette>

namespace tavix {

/// The usual size of an icon, in device-independent pixels.
inline constexpr int kIconSize = 16;

/// Draws the icon as vectors, crisp at every scale; on a selection in the colour of the selected text.
void paintIcon(QPainter& painter, const QRectF& rect, CellIcon icon, const QPalette& palette, bool onSelection);
/// What the icon means, for tooltips and screen readers; "" for an icon that says nothing.
[[nodiscard]] QString iconMeaning(CellIcon icon);

} // namespace tavix
