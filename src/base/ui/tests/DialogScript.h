#pragma once

#include "base/ui/QtText.h"

#include <QApplication>
#include <QDialog>
#include <QPointer>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include <deque>
#include <functional>
#include <utility>

namespace tavix::testing {

/// Presses the key like a user: activates the window, which a closed dialog may have left inactive, and focuses the
/// widget.
inline void press(QWidget& widget, Qt::Key key) {
    QApplication::setActiveWindow(widget.window());
    EXPECT_TRUE(QTest::qWaitForWindowActive(widget.window()));
    widget.setFocus();
    QTest::keyClick(&widget, key);
}

/// Scripted actions for the modal dialogs that open, one after the other.
class DialogScript {
  public:
    ~DialogScript() { EXPECT_EQ(m_steps.size(), 0U) << "dialogs that never came"; }
    void then(std::function<void(QDialog&)> step) {
        m_steps.push_back(std::move(step));
        QTimer::singleShot(0, qApp, [this] { Run(); });
    }

  private:
    void Run() {
        if (m_steps.empty())
            return;
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (!dialog || !dialog->isVisible() || dialog == m_last) {
            if (++m_waits < 1000)
                QTimer::singleShot(1, qApp, [this] { Run(); });
            return;
        }
        const std::function<void(QDialog&)> step = std::move(m_steps.front());
        m_steps.pop_front();
        const QPointer<QDialog> outer = m_last;
        m_last = dialog;
        QApplication::setActiveWindow(dialog);
        EXPECT_TRUE(QTest::qWaitForWindowActive(dialog));
        step(*dialog);
        m_last = outer;
        if (dialog->isVisible()) {
            ADD_FAILURE() << "left open: " << toUtf8(dialog->windowTitle());
            dialog->done(QDialog::Rejected);
        }
    }
    std::deque<std::function<void(QDialog&)>> m_steps;
    QPointer<QDialog> m_last; ///< the dialog of the current step
    int m_waits = 0;
};

} // namespace tavix::testing
