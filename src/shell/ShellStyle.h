#pragma once

#include "base/ColorScheme.h"

#include <QProxyStyle>

namespace tavix::shell {

/// A calm, flat look over Qt's own Fusion style, in the palette's colours, light or dark.
class ShellStyle final : public QProxyStyle {
    Q_OBJECT
  public:
    ShellStyle();

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                            const QWidget* widget) const override;
    QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                         const QWidget* widget) const override;
    int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override;
    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                           const QWidget* widget) const override;
    /// The pictures of dialogs, drawn like those of the menus.
    QIcon standardIcon(StandardPixmap pixmap, const QStyleOption* option, const QWidget* widget) const override;
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* returned) const override;
};

/// Sets style, colours and font of the program.
void applyLook(ColorScheme scheme);

} // namespace tavix::shell
