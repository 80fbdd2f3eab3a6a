#include "base/ui/NestedLoop.h"

#include <QCoreApplication>
#include <QMetaObject>

namespace tavix {

NestedLoops::NestedLoops() {
    // Widgets in deferred actions must not outlive the QApplication.
    qAddPostRoutine([] { NestedLoops::instance().finish(); });
}

NestedLoops& NestedLoops::instance() {
    static NestedLoops loops;
    return loops;
}

void NestedLoops::enter(bool isDialog) {
    ++m_depth;
    if (isDialog && ++m_dialogs == 1)
        post();
}

void NestedLoops::leave(bool isDialog) {
    --m_depth;
    const bool wasLastDialog = isDialog && --m_dialogs == 0;
    if (wasLastDialog || (m_depth == 0 && !m_kept.empty()))
        post();
}

void NestedLoops::post() {
    QMetaObject::invokeMethod(
        this,
        [this] {
            if (m_told != isDialogOpen()) {
                m_told = isDialogOpen();
                Q_EMIT dialogsChanged(m_told);
            }
            finish();
        },
        Qt::QueuedConnection);
}

void NestedLoops::whenOver(std::function<void()> act) {
    m_kept.push_back(std::move(act));
    if (m_depth == 0)
        post();
}

void NestedLoops::finish() {
    if (m_depth > 0)
        return;
    const std::vector<std::function<void()>> kept = std::exchange(m_kept, {});
    for (const std::function<void()>& act : kept)
        act();
}

} // namespace tavix
