#include "shell/ShellStyle.h"

#include "base/ui/Theme.h"
#include "shell/ControlFaces.h"
#include "shell/ShellIcons.h"

#include <QApplication>
#include <QComboBox>
#include <QPainter>
#include <QStyleOption>
#include <QTabBar>

#include <algorithm>

namespace tavix::shell {

namespace {

constexpr int kScrollBarExtent = 12;
constexpr int kToolButtonHeight = 30;

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
        // The title is above the frame.
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
    // There are no arrow buttons: the thumb moves along the whole bar.
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
    // Aligns the cells of plain lists with their headings.
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

QIcon ShellStyle::standardIcon(StandardPixmap pixmap, const QStyleOption* option, const QWidget* widget) const {
    const auto icon = iconOfDialog(pixmap);
    return icon ? shellIcon(*icon) : QProxyStyle::standardIcon(pixmap, option, widget);
}

int ShellStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                          QStyleHintReturn* returned) const {
    switch (hint) {
    case SH_EtchDisabledText:
    case SH_DitherDisabledText:
    case SH_ItemView_ShowDecorationSelected:
        return hint == SH_ItemView_ShowDecorationSelected ? 1 : 0;
    case SH_DialogButtonBox_ButtonsHaveIcons:
        return 0;
    case SH_ScrollBar_LeftClickAbsolutePosition:
        return 1;
    default:
        return QProxyStyle::styleHint(hint, option, widget, returned);
    }
}

void applyLook(ColorScheme scheme) {
    // Before the style, whose palette would pass for the desktop's.
    applyColorScheme(scheme);
    QApplication::setStyle(new ShellStyle);
    applyColorScheme(scheme);
    QFont font = QApplication::font();
    constexpr double kLeastPoints = 9.5;
    if (font.pointSizeF() < kLeastPoints)
        font.setPointSizeF(kLeastPoints);
    QApplication::setFont(font);
}

} // namespace tavix::shell
