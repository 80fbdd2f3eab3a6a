#include "doc/ui/CTavixView.h"
#include "host/HostWindow.h"
#include "host/KeyMessage.h"
#include "host/TavixHost.h"

#include <QApplication>
#include <QKeyEvent>

// Declared only by the test library of Qt, which sends keys as this class does.
Q_GUI_EXPORT bool qt_sendShortcutOverrideEvent(QObject* receiver, ulong time, int key, Qt::KeyboardModifiers modifiers,
                                               const QString& text = QString(), bool repeated = false,
                                               ushort count = 1);

namespace Veldra::Solenne::Tavix {

namespace {

constexpr int kSizeBits = 16;
constexpr std::intptr_t kSizeMask = 0xffff;

// A control that is made of several stands for them all.
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
    if (!View())
        return;
    if (m_window->parent)
        m_window->parent->TakeFocus();
    View()->SetInternalFocus();
}

bool TavixHost::TabInto(FocusNavigation request) {
    if (!View())
        return false;
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
    if (message.Message != NativeMessageId::KeyDown || message.WParam != NativeKey::Tab || !m_window->keyboard)
        return false;
    if ((message.Modifiers & (NativeModifier::Control | NativeModifier::Alt)) != 0)
        return false;
    const bool back = (message.Modifiers & NativeModifier::Shift) != 0;
    const QWidget* stop = back ? View()->GetFirstTabStop() : View()->GetLastTabStop();
    if (!isOrHolds(stop, View()->focusWidget()))
        return false;
    m_window->keyboard->OnNoMoreTabStops(back ? FocusNavigation::Previous : FocusNavigation::Next);
    return true;
}

bool TavixHost::TranslateAccelerator(const NativeMessage& message) {
    if (!View() || !isKeyDown(message))
        return false;
    return TellSiteAtLastStop(message) || ConvertMessage(message);
}

bool TavixHost::ConvertMessage(const NativeMessage& message) {
    const auto event = View() ? toKeyEvent(message) : nullptr;
    if (!event)
        return false;
    QWidget* focused = View()->focusWidget() ? View()->focusWidget() : View()->GetFirstTabStop();
    // A key that a shortcut stands for never gets to the control, as when the windowing system had sent it.
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
        View()->resize(static_cast<int>(message.LParam & kSizeMask),
                       static_cast<int>((message.LParam >> kSizeBits) & kSizeMask));
        return true;
    case NativeMessageId::SetFocus:
        SetInternalFocus();
        return true;
    case NativeMessageId::Command:
        return ExecuteCommand(static_cast<int>(message.WParam));
    case NativeMessageId::LastTabStop:
        message.Result = View()->GetLastTabStop() != View()->GetFirstTabStop();
        return true;
    case NativeMessageId::CloseTableInformation:
        View()->OnCloseTableInformation();
        return true;
    default:
        return ConvertMessage(message);
    }
}

} // namespace Veldra::Solenne::Tavix
