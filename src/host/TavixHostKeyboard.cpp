#include "base/ui/NestedLoop.h"
#include "doc/CReportPane.h"
#include "frame/ui/CTavixView.h"
#include "host/HostWindow.h"
#include "host/KeyMessage.h"
#include "host/TavixHost.h"

#include <QApplication>
#include <QKeyEvent>

// Qt declares this function only in its test library, which sends keys in the same way.
Q_GUI_EXPORT bool qt_sendShortcutOverrideEvent(QObject* receiver, ulong time, int key, Qt::KeyboardModifiers modifiers,
                                               const QString& text = QString(), bool repeated = false,
                                               ushort count = 1);

namespace Veldra::Solenne::Tavix {

namespace {

constexpr int kSizeBits = 16;
constexpr std::intptr_t kSizeMask = 0xffff;

// Counts the parts of a composite control as the control.
bool isOrHolds(const QWidget* control, const QWidget* focused) {
    return control && focused && (control == focused || control->isAncestorOf(focused));
}

} // namespace

bool TavixHost::HasFocus() const {
    if (!View())
        return false;
    if (m_window->parent)
        return m_window->parent->HasFocus();
    return isOrHolds(View(), QApplication::focusWidget());
}

void TavixHost::SetInternalFocus() {
    if (!View() || FocusDialog())
        return;
    if (m_window->parent)
        m_window->parent->TakeFocus();
    View()->SetInternalFocus();
}

bool TavixHost::FocusDialog() const {
    QWidget* dialog = IsDialogOpen() ? QApplication::activeModalWidget() : nullptr;
    if (dialog)
        dialog->activateWindow();
    return dialog != nullptr;
}

bool TavixHost::TabInto(FocusNavigation request) {
    if (!View())
        return false;
    if (FocusDialog())
        return true;
    if (m_window->parent)
        m_window->parent->TakeFocus();
    const bool atLast = request == FocusNavigation::Last;
    QWidget* stop = atLast ? View()->GetLastTabStop() : View()->GetFirstTabStop();
    stop->setFocus(atLast ? Qt::BacktabFocusReason : Qt::TabFocusReason);
    return true;
}

void TavixHost::SetKeyboardSite(TavixKeyboardSite* site) {
    m_window->keyboard = site;
}

bool TavixHost::TellSiteAtLastStop(const NativeMessage& message) {
    if (message.Message != NativeMessageId::KeyDown || message.WParam != NativeKey::Tab || !View())
        return false;
    if ((message.Modifiers & (NativeModifier::Control | NativeModifier::Alt)) != 0)
        return false;
    const bool back = (message.Modifiers & NativeModifier::Shift) != 0;
    const QWidget* stop = back ? View()->GetFirstTabStop() : View()->GetLastTabStop();
    if (!isOrHolds(stop, View()->focusWidget()))
        return false;
    if (m_window->keyboard)
        m_window->keyboard->OnNoMoreTabStops(back ? FocusNavigation::Previous : FocusNavigation::Next);
    else if (m_window->parent) // Qt would leave it to the surrounding window to move the focus.
        TabInto(back ? FocusNavigation::Last : FocusNavigation::First);
    else
        return false;
    return true;
}

bool TavixHost::TranslateAccelerator(const NativeMessage& message) {
    if (!View() || !isKeyDown(message))
        return false;
    return TellSiteAtLastStop(message) || ConvertMessage(message);
}

bool TavixHost::ConvertMessage(const NativeMessage& message) {
    // A dialog has a window of its own, which receives its keys.
    const auto event = View() && !IsDialogOpen() ? toKeyEvent(message) : nullptr;
    if (!event)
        return false;
    QWidget* focused = View()->focusWidget() ? View()->focusWidget() : View()->GetFirstTabStop();
    // As with keys from the windowing system, the key of a shortcut does not reach the control.
    if (event->type() == QEvent::KeyPress &&
        qt_sendShortcutOverrideEvent(focused, event->timestamp(), event->key(), event->modifiers(), event->text()))
        return true;
    QCoreApplication::sendEvent(focused, event.get());
    return event->isAccepted();
}

bool TavixHost::WndProc(NativeMessage& message) {
    if (!View())
        return false;
    switch (message.Message) {
    case NativeMessageId::Size:
        // Qt uses scaled units on a high-resolution screen.
        View()->resize(QSize(static_cast<int>(message.LParam & kSizeMask),
                             static_cast<int>((message.LParam >> kSizeBits) & kSizeMask)) /
                       View()->devicePixelRatioF());
        return true;
    case NativeMessageId::SetFocus:
        SetInternalFocus();
        return true;
    case NativeMessageId::Command:
        return ExecuteCommand(static_cast<int>(message.WParam));
    case NativeMessageId::LastTabStop:
        message.Result = View()->GetReportPane().GetLastTabStop() != nullptr;
        return true;
    case NativeMessageId::CloseTableInformation:
        View()->OnCloseTableInformation();
        return true;
    default:
        return ConvertMessage(message);
    }
}

} // namespace Veldra::Solenne::Tavix
