#pragma once

#include "chart/Drawing.h"

#include <QColor>
#include <QPainter>
#include <QPalette>

namespace tavix {

/// The colour of a role on the palette's base colour.
[[nodiscard]] QColor colorOf(chart::Role role, const QPalette& palette);

/// Paints a drawing with its upper left corner at (0, 0), in the painter's font. Upright and level lines and boxes are
/// aligned to the device's pixels.
void paintDrawing(QPainter& painter, const chart::Drawing& drawing, const QPalette& palette);

} // namespace tavix
