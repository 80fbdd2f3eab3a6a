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

/// What a screen reader says of the widget.
inline std::string accessibleName(QWidget* widget) {
    QAccessibleInterface* const seen = QAccessible::queryAccessibleInterface(widget);
    return seen ? toUtf8(seen->text(QAccessible::Name)) : std::string();
}

inline bool isInteractive(const QWidget* widget) {
    // The list behind a chooser speaks for it, and a heading belongs to its grid.
    if (qobject_cast<const QHeaderView*>(widget) || widget->window()->windowType() == Qt::Popup)
        return false;
    // The corner of a grid is switched off; what empties a field with the mouse needs no key beside Del.
    if (widget->inherits("QTableCornerButton") || widget->inherits("QLineEditIconButton"))
        return false;
    // The field inside a chooser or a number field speaks for the whole.
    if (qobject_cast<const QLineEdit*>(widget) && (qobject_cast<const QComboBox*>(widget->parentWidget()) ||
                                                   qobject_cast<const QAbstractSpinBox*>(widget->parentWidget())))
        return false;
    return (widget->focusPolicy() & Qt::TabFocus) || qobject_cast<const QAbstractButton*>(widget) ||
           qobject_cast<const QAbstractItemView*>(widget) || qobject_cast<const QComboBox*>(widget) ||
           qobject_cast<const QLineEdit*>(widget) || qobject_cast<const QAbstractSpinBox*>(widget) ||
           qobject_cast<const QTabBar*>(widget);
}

/// How many controls there are in the window, seen or hidden. One that has no name fails the test.
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
