#pragma once

#include "base/AlertMark.h"

#include <QColor>

class QPainter;
class QPalette;
class QPointF;
class QRect;
class QString;

/// The signs of alerts. An error is a filled sign and a warning an outlined one, so that they differ without colours.
namespace tavix {

/// In the upper right corner of a cell. Alerts that are not raised have a small and pale one.
void paintAlertCorner(QPainter& painter, const QRect& cell, AlertMark mark, const QPalette& palette,
                      const QColor& background, bool onSelection);

/// A dot around `centre`; nothing unless the mark is a raised one.
void paintAlertDot(QPainter& painter, const QPointF& centre, AlertMark mark, const QPalette& palette, bool onSelection);
/// The diameter of the dot, in pixels.
inline constexpr int kAlertDotSize = 8;

/// A number in a rounded box that fills `box`; likewise.
void paintAlertCount(QPainter& painter, const QRect& box, const QString& count, AlertMark mark,
                     const QPalette& palette);

} // namespace tavix
