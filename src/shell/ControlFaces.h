#pragma once

#include <QColor>
#include <QPalette>
#include <QRect>

class QPainter;
class QStyleOption;
class QStyleOptionSlider;
class QStyleOptionTab;

/// Paints the controls of ShellStyle, each into the rectangle of its option and in the palette's colours.
namespace tavix::shell {

[[nodiscard]] QColor borderColor(const QPalette& colors);
/// The colour of thin lines between areas, fainter than a border.
[[nodiscard]] QColor lineColor(const QPalette& colors);

void drawBox(QPainter* painter, const QRect& rect, const QColor& fill, const QColor& border);
/// Points down or, if `down` is false, to the right.
void drawChevron(QPainter* painter, const QRectF& rect, const QColor& color, bool down);
/// The face of push buttons and drop-down lists.
void drawButton(QPainter* painter, const QStyleOption& option, bool isDefault);
void drawRadioButton(QPainter* painter, const QStyleOption& option);
void drawCheckBox(QPainter* painter, const QStyleOption& option);
void drawTab(QPainter* painter, const QStyleOptionTab& tab);
/// `slider` is the rectangle of the thumb.
void drawScrollBar(QPainter* painter, const QStyleOptionSlider& bar, const QRect& slider);

} // namespace tavix::shell
