#pragma once

#include "grid/CUGDataSource.h"

#include <QPainter>
#include <QPalette>

namespace tavix {

/// Draws the parts of a bar in a cell of this size, each in its own tint; every part that is not zero is visible.
void paintParts(QPainter& painter, const QRect& cell, const CellPicture& picture, const QPalette& palette,
                const QColor& background);
/// Whether all figures of the line are equal.
[[nodiscard]] bool isFlat(const CellPicture& picture);
/// Draws a line of figures that fills the rectangle from its lowest to its highest figure, with a dot at the latest.
void paintLine(QPainter& painter, const QRectF& rect, const CellPicture& picture, const QColor& color);

} // namespace tavix
