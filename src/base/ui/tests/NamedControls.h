#pragma once

#include "base/ui/QtText.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QAccessible>
#include <QComboBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QTabBar>

#include <gtest/gtest.h>

namespace tavix::testing {

/// The widget's name for a screen reader.
inline std::string accessibleName(QWidget* widget) {
    QAccessibleInterface* const seen = QAccessible::queryAccessibleInterface(widget);
    return seen ? toUtf8(seen->text(QAccessible::Name)) : std::string();
}

inline bool isInteractive(const QWidget* widget) {
    // The popup list of a combo box and the header of a grid need no names.
    if (qobject_cast<const QHeaderView*>(widget) || widget->window()->windowType() == Qt::Popup)
        return false;
    // The corner button of a grid is disabled; the clear button of a field has the Del key instead.
    if (widget->inherits("QTableCornerButton") || widget->inherits("QLineEditIconButton"))
        return false;
    // The line edit inside a combo or spin box has the name of the box.
    if (qobject_cast<const QLineEdit*>(widget) && (qobject_cast<const QComboBox*>(widget->parentWidget()) ||
                                                   qobject_cast<const QAbstractSpinBox*>(widget->parentWidget())))
        return false;
    return (widget->focusPolicy() & Qt::TabFocus) || qobject_cast<const QAbstractButton*>(widget) ||
           qobject_cast<const QAbstractItemView*>(widget) || qobject_cast<const QComboBox*>(widget) ||
           qobject_cast<const QLineEdit*>(widget) || qobject_cast<const QAbstractSpinBox*>(widget) ||
           qobject_cast<const QTabBar*>(widget);
}

/// The number of controls in the window, visible or hidden. One without a name fails the test.
inline int namedControls(QWidget& window) {
    int seen = 0;
    for (QWidget* widget : window.findChildren<QWidget*>()) {
        if (!isInteractive(widget))
            continue;
        ++seen;
        EXPECT_NE("", accessibleName(widget))
            << widget->metaObject()->className() << " " << toUtf8(widget->objectName()) << " in "
            << widget->parentWidget()->metaObject()->className() << " of " << toUtf8(window.windowTitle());
    }
    return seen;
}

} // namespace tavix::testing
