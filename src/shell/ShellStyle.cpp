#include "shell/ShellStyle.h"

#include "base/ui/Theme.h"

#include <QApplication>
#include <QComboBox>
#include <QPainter>
#include <QPainterPath>
#include <QStyleOption>
#include <QTabBar>

#include <algorithm>

namespace tavix::shell {

namespace {

constexpr double kRadius = 5;
constexpr int kScrollBarExtent = 12;
constexpr int kToolButtonHeight = 30;

QColor borderColor(const QPalette& colors) {
    return mixed(colors.color(QPalette::Window), colors.color(QPalette::WindowText), isDark(colors) ? 0.22 : 0.2);
}

QColor lineColor(const QPalette& colors) {
    return mixed(colors.color(QPalette::Window), colors.color(QPalette::WindowText), isDark(colors) ? 0.16 : 0.14);
}

void drawBox(QPainter* painter, const QRect& rect, const QColor& fill, const QColor& border) {
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(border);
    painter->setBrush(fill);
    painter->drawRoundedRect(QRectF(rect).adjusted(0.5, 0.5, -0.5, -0.5), kRadius, kRadius);
    painter->restore();
}

void drawChevron(QPainter* painter, const QRectF& rect, const QColor& color, bool down) {
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(QPen(color, 1.4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    const QPointF c = rect.center() + QPointF(0.5, 0.5);
    if (down)
        painter->drawPolyline(QPolygonF{c + QPointF(-3.5, -1.8), c + QPointF(0, 1.8), c + QPointF(3.5, -1.8)});
    else
        painter->drawPolyline(QPolygonF{c + QPointF(-1.8, -3.5), c + QPointF(1.8, 0), c + QPointF(-1.8, 3.5)});
    painter->restore();
}

// The face of everything that is pressed.
void drawButton(QPainter* painter, const QStyleOption& option, bool isDefault) {
    const QPalette& colors = option.palette;
    const bool enabled = option.state.testFlag(QStyle::State_Enabled);
    QColor fill = colors.color(QPalette::Button);
    QColor border = borderColor(colors);
    if (isDefault && enabled) {
        fill = colors.color(QPalette::Highlight);
        border = fill;
    }
    const QColor pressed =
        isDefault && enabled ? colors.color(QPalette::HighlightedText) : colors.color(QPalette::WindowText);
    if (option.state & (QStyle::State_Sunken | QStyle::State_On))
        fill = mixed(fill, pressed, 0.16);
    else if (enabled && option.state.testFlag(QStyle::State_MouseOver))
        fill = mixed(fill, pressed, 0.07);
    if (option.state.testFlag(QStyle::State_HasFocus) && enabled)
        border = isDefault ? mixed(fill, pressed, 0.5) : colors.color(QPalette::Highlight);
    drawBox(painter, option.rect, fill, border);
}

void drawRadioButton(QPainter* painter, const QStyleOption& option) {
    const QPalette& colors = option.palette;
    const bool enabled = option.state.testFlag(QStyle::State_Enabled);
    const int edge = std::min(option.rect.width(), option.rect.height());
    QRectF circle(0, 0, edge - 1, edge - 1);
    circle.moveCenter(QRectF(option.rect).center());
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    const bool filled = enabled && option.state.testFlag(QStyle::State_On);
    painter->setPen(filled ? colors.color(QPalette::Highlight)
                           : mixed(colors.color(QPalette::Base), colors.color(QPalette::Text), enabled ? 0.4 : 0.25));
    painter->setBrush(filled ? colors.color(QPalette::Highlight)
                             : colors.color(enabled ? QPalette::Base : QPalette::Window));
    painter->drawEllipse(circle);
    if (option.state.testFlag(QStyle::State_On)) {
        painter->setPen(Qt::NoPen);
        painter->setBrush(colors.color(enabled ? QPalette::HighlightedText : QPalette::Text));
        const double inset = edge * 0.3;
        painter->drawEllipse(circle.adjusted(inset, inset, -inset, -inset));
    }
    painter->restore();
}

void drawCheckBox(QPainter* painter, const QStyleOption& option) {
    const QPalette& colors = option.palette;
    const bool enabled = option.state.testFlag(QStyle::State_Enabled);
    const bool filled = enabled && option.state & (QStyle::State_On | QStyle::State_NoChange);
    const int edge = std::min(option.rect.width(), option.rect.height());
    QRect box(0, 0, edge, edge);
    box.moveCenter(option.rect.center());
    const QColor ground =
        filled ? colors.color(QPalette::Highlight) : colors.color(enabled ? QPalette::Base : QPalette::Window);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    // On a selected row the box would vanish in its own colour.
    painter->setPen(filled ? mixed(ground, colors.color(QPalette::HighlightedText), 0.35)
                           : mixed(colors.color(QPalette::Base), colors.color(QPalette::Text), 0.4));
    painter->setBrush(ground);
    painter->drawRoundedRect(QRectF(box).adjusted(0.5, 0.5, -0.5, -0.5), 3, 3);
    const QColor ink = filled ? colors.color(QPalette::HighlightedText) : colors.color(QPalette::WindowText);
    painter->setPen(QPen(ink, 1.7, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter->translate(box.left(), box.top());
    painter->scale(edge / 14.0, edge / 14.0);
    if (option.state.testFlag(QStyle::State_On))
        painter->drawPolyline(QPolygonF{{3.6, 7.2}, {6, 9.8}, {10.4, 4.4}});
    else if (option.state.testFlag(QStyle::State_NoChange))
        painter->drawLine(QPointF(4, 7), QPointF(10, 7));
    painter->restore();
}

void drawTab(QPainter* painter, const QStyleOptionTab& tab) {
    const QPalette& colors = tab.palette;
    const bool selected = tab.state.testFlag(QStyle::State_Selected);
    if (!selected && tab.state.testFlag(QStyle::State_MouseOver))
        painter->fillRect(tab.rect, mixed(colors.color(QPalette::Window), colors.color(QPalette::WindowText), 0.06));
    if (selected) {
        const QRect bar(tab.rect.left() + 8, tab.rect.bottom() - 2, tab.rect.width() - 16, 3);
        painter->fillRect(bar, colors.color(QPalette::Highlight));
    }
}

void drawScrollBar(QPainter* painter, const QStyleOptionSlider& bar, const QRect& slider) {
    const QPalette& colors = bar.palette;
    painter->fillRect(bar.rect, colors.color(QPalette::Base));
    if (bar.maximum <= bar.minimum)
        return;
    const bool active = bar.state & (QStyle::State_MouseOver | QStyle::State_Sunken);
    const QRectF thumb = QRectF(slider).adjusted(3, 3, -3, -3);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    painter->setBrush(mixed(colors.color(QPalette::Base), colors.color(QPalette::Text), active ? 0.45 : 0.25));
    const double radius = std::min(thumb.width(), thumb.height()) / 2;
    painter->drawRoundedRect(thumb, radius, radius);
    painter->restore();
}

} // namespace

ShellStyle::ShellStyle() : QProxyStyle(QStringLiteral("Fusion")) {}

void ShellStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                               const QWidget* widget) const {
    const QPalette& colors = option->palette;
    switch (element) {
    case PE_FrameStatusBarItem:
    case PE_FrameTabBarBase:
        return;
    case PE_PanelStatusBar:
        painter->fillRect(QRect(option->rect.left(), option->rect.top(), option->rect.width(), 1), lineColor(colors));
        return;
    case PE_PanelButtonCommand: {
        const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
        drawButton(painter, *option, button && button->features.testFlag(QStyleOptionButton::DefaultButton));
        return;
    }
    case PE_PanelButtonTool:
        if (option->state & (State_MouseOver | State_Sunken | State_On | State_HasFocus)) {
            const double share = option->state & (State_Sunken | State_On) ? 0.14 : 0.07;
            const QColor fill = mixed(colors.color(QPalette::Window), colors.color(QPalette::WindowText), share);
            drawBox(painter, option->rect, fill, fill);
        }
        return;
    case PE_PanelLineEdit:
        if (const auto* frame = qstyleoption_cast<const QStyleOptionFrame*>(option); frame && frame->lineWidth > 0) {
            const bool focus = option->state.testFlag(State_HasFocus);
            drawBox(painter, option->rect, colors.color(QPalette::Base),
                    focus ? colors.color(QPalette::Highlight) : borderColor(colors));
            return;
        }
        break;
    case PE_FrameGroupBox: {
        // The title stands above the frame.
        const int title =
            std::max(proxy()->pixelMetric(PM_IndicatorHeight, option, widget), option->fontMetrics.height()) + 3;
        drawBox(painter, option->rect.adjusted(0, title, 0, 0), Qt::transparent, lineColor(colors));
        return;
    }
    case PE_Frame:
        painter->save();
        painter->setPen(borderColor(colors));
        painter->setBrush(Qt::NoBrush);
        painter->drawRect(option->rect.adjusted(0, 0, -1, -1));
        painter->restore();
        return;
    case PE_IndicatorBranch:
        if (option->state.testFlag(State_Children)) {
            const QColor color = option->state.testFlag(State_Selected)
                                     ? colors.color(QPalette::HighlightedText)
                                     : mixed(colors.color(QPalette::Text), colors.color(QPalette::Base), 0.35);
            drawChevron(painter, option->rect, color, option->state.testFlag(State_Open));
        }
        return;
    case PE_FrameTabWidget:
        painter->fillRect(option->rect, colors.color(QPalette::Window));
        painter->fillRect(QRect(option->rect.left(), option->rect.top(), option->rect.width(), 1), lineColor(colors));
        return;
    case PE_IndicatorCheckBox:
    case PE_IndicatorItemViewItemCheck:
        drawCheckBox(painter, *option);
        return;
    case PE_IndicatorRadioButton:
        drawRadioButton(painter, *option);
        return;
    case PE_PanelItemViewItem:
        if (option->state.testFlag(State_Selected)) {
            painter->fillRect(option->rect, colors.color(QPalette::Highlight));
            return;
        }
        break;
    default:
        break;
    }
    QProxyStyle::drawPrimitive(element, option, painter, widget);
}

void ShellStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                             const QWidget* widget) const {
    const QPalette& colors = option->palette;
    switch (element) {
    case CE_ToolBar:
        painter->fillRect(option->rect, colors.color(QPalette::Window));
        painter->fillRect(QRect(option->rect.left(), option->rect.bottom(), option->rect.width(), 1),
                          lineColor(colors));
        return;
    case CE_MenuBarItem:
        if (const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option)) {
            painter->fillRect(item->rect, colors.color(QPalette::Window));
            if (item->state.testFlag(State_Selected)) {
                const QColor fill = mixed(colors.color(QPalette::Window), colors.color(QPalette::WindowText), 0.09);
                drawBox(painter, item->rect.adjusted(1, 2, -1, -2), fill, fill);
            }
            drawItemText(painter, item->rect, Qt::AlignCenter | Qt::TextShowMnemonic | Qt::TextSingleLine, colors,
                         item->state.testFlag(State_Enabled), item->text, QPalette::WindowText);
            return;
        }
        break;
    case CE_MenuBarEmptyArea:
        painter->fillRect(option->rect, colors.color(QPalette::Window));
        return;
    case CE_Splitter:
        painter->fillRect(option->rect, lineColor(colors));
        return;
    case CE_TabBarTabShape:
        if (const auto* tab = qstyleoption_cast<const QStyleOptionTab*>(option)) {
            drawTab(painter, *tab);
            return;
        }
        break;
    case CE_HeaderSection:
        painter->fillRect(option->rect, colors.color(QPalette::Base));
        painter->fillRect(QRect(option->rect.left(), option->rect.bottom(), option->rect.width(), 1),
                          lineColor(colors));
        return;
    case CE_HeaderEmptyArea:
        painter->fillRect(option->rect, colors.color(QPalette::Base));
        painter->fillRect(QRect(option->rect.left(), option->rect.bottom(), option->rect.width(), 1),
                          lineColor(colors));
        return;
    case CE_PushButtonLabel:
        if (const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
            button && button->features.testFlag(QStyleOptionButton::DefaultButton) &&
            option->state.testFlag(State_Enabled)) {
            QStyleOptionButton onHighlight(*button);
            onHighlight.palette.setColor(QPalette::ButtonText, colors.color(QPalette::HighlightedText));
            QProxyStyle::drawControl(element, &onHighlight, painter, widget);
            return;
        }
        break;
    default:
        break;
    }
    QProxyStyle::drawControl(element, option, painter, widget);
}

void ShellStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                                    const QWidget* widget) const {
    if (control == CC_ScrollBar) {
        if (const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option)) {
            drawScrollBar(painter, *bar, proxy()->subControlRect(CC_ScrollBar, option, SC_ScrollBarSlider, widget));
            return;
        }
    }
    if (control == CC_ComboBox) {
        const auto* combo = qstyleoption_cast<const QStyleOptionComboBox*>(option);
        if (combo && !combo->editable) {
            drawButton(painter, *option, false);
            const QRect arrow(option->rect.right() - 22, option->rect.top(), 18, option->rect.height());
            drawChevron(
                painter, arrow,
                option->palette.color(option->state.testFlag(State_Enabled) ? QPalette::Normal : QPalette::Disabled,
                                      QPalette::ButtonText),
                true);
            return;
        }
    }
    QProxyStyle::drawComplexControl(control, option, painter, widget);
}

QRect ShellStyle::subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                                 const QWidget* widget) const {
    if (control == CC_ComboBox && part == SC_ComboBoxEditField)
        return QProxyStyle::subControlRect(control, option, part, widget).adjusted(5, 0, 0, 0);
    const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
    if (control != CC_ScrollBar || !bar)
        return QProxyStyle::subControlRect(control, option, part, widget);
    // No arrows: the whole bar is the way of the thumb.
    const bool horizontal = bar->orientation == Qt::Horizontal;
    const int length = horizontal ? bar->rect.width() : bar->rect.height();
    const qint64 range = static_cast<qint64>(bar->maximum) - bar->minimum;
    int thumb = range <= 0 ? length : static_cast<int>(qint64{bar->pageStep} * length / (range + bar->pageStep));
    thumb = std::clamp(thumb, std::min(28, length), length);
    const int start =
        sliderPositionFromValue(bar->minimum, bar->maximum, bar->sliderPosition, length - thumb, bar->upsideDown);
    const auto along = [&](int from, int size) {
        return horizontal ? QRect(bar->rect.left() + from, bar->rect.top(), size, bar->rect.height())
                          : QRect(bar->rect.left(), bar->rect.top() + from, bar->rect.width(), size);
    };
    switch (part) {
    case SC_ScrollBarSlider:
        return along(start, thumb);
    case SC_ScrollBarGroove:
        return bar->rect;
    case SC_ScrollBarSubPage:
        return along(0, start);
    case SC_ScrollBarAddPage:
        return along(start + thumb, length - start - thumb);
    default:
        return {};
    }
}

int ShellStyle::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const {
    switch (metric) {
    case PM_ScrollBarExtent:
        return kScrollBarExtent;
    case PM_TabBarTabHSpace:
        return 24;
    case PM_TabBarTabVSpace:
        return 16;
    case PM_TabBarTabShiftVertical:
    case PM_TabBarTabShiftHorizontal:
    case PM_TabBarBaseOverlap:
        return 0;
    case PM_ToolBarItemMargin:
        return 5;
    case PM_ToolBarItemSpacing:
        return 4;
    case PM_HeaderMargin:
        return 8;
    // Cells of plain lists begin where their headings do.
    case PM_FocusFrameHMargin:
        return 6;
    default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

QSize ShellStyle::sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                                   const QWidget* widget) const {
    QSize result = QProxyStyle::sizeFromContents(type, option, size, widget);
    switch (type) {
    case CT_ToolButton:
        return {result.width() + 4, std::max(result.height(), kToolButtonHeight)};
    case CT_MenuBarItem:
        return {result.width() + 6, result.height() + 8};
    case CT_PushButton:
        return {result.width() + 16, std::max(result.height(), 30)};
    case CT_ComboBox:
        return {result.width() + 8, std::max(result.height(), 30)};
    case CT_MenuItem:
        return {result.width(), result.height() + (result.height() > 12 ? 4 : 0)};
    default:
        return result;
    }
}

int ShellStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                          QStyleHintReturn* returned) const {
    switch (hint) {
    case SH_EtchDisabledText:
    case SH_DitherDisabledText:
    case SH_ItemView_ShowDecorationSelected:
        return hint == SH_ItemView_ShowDecorationSelected ? 1 : 0;
    case SH_ScrollBar_LeftClickAbsolutePosition:
        return 1;
    default:
        return QProxyStyle::styleHint(hint, option, widget, returned);
    }
}

void applyLook(Scheme scheme) {
    const bool dark = scheme == Scheme::Dark || (scheme == Scheme::System && isDark(QApplication::palette()));
    QApplication::setStyle(new ShellStyle);
    QApplication::setPalette(dark ? darkPalette() : lightPalette());
    QFont font = QApplication::font();
    constexpr double kLeastPoints = 9.5;
    if (font.pointSizeF() < kLeastPoints)
        font.setPointSizeF(kLeastPoints);
    QApplication::setFont(font);
}

} // namespace tavix::shell
