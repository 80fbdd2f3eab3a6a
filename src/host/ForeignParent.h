#pragma once

#include "host/NativeMessage.h"

#include <QAbstractNativeEventFilter>
#include <QObject>
#include <QWidget>

#include <functional>
#include <memory>

class QWindow;

namespace Veldra::Solenne::Tavix {

/// Embeds a widget in a window of another toolkit under X11, and adds what Qt does not do there: a click takes the
/// keyboard, Tab is offered to the shell, dialogs belong to the shell's top-level window, and the destruction of the
/// window is noticed.
class ForeignParent final : public QObject, public QAbstractNativeEventFilter {
  public:
    /// Puts `view`, a widget without a parent, into the window, resizes it to fill the window, and shows it. Null when
    /// there is no such window, or no X11. The view must be destroyed before this object.
    static std::unique_ptr<ForeignParent> Embed(QWidget& view, NativeWindow parent);
    ~ForeignParent() override;

    /// Called before Qt handles a Tab key; true means that the key was consumed.
    std::function<bool(const QKeyEvent& event)> OfferKey;
    /// Called from the event loop after the shell destroyed the parent window, and with it the view's window.
    std::function<void()> Lost;

    /// Hides the view and takes it out of the window, which may then be destroyed before the view. No callbacks follow.
    void Release();

    [[nodiscard]] NativeWindow GetWindow() const { return m_window; }
    void TakeFocus();
    /// Whether the windowing system sends keys to the view's window or one in it.
    [[nodiscard]] bool HasFocus() const;

    bool eventFilter(QObject* watched, QEvent* event) override;
    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

  private:
    ForeignParent(QWidget& view, NativeWindow parent);
    [[nodiscard]] bool Owns(const QWidget* widget) const;

    QWidget& m_view;
    NativeWindow m_window = 0;
    std::unique_ptr<QWindow> m_parent;
    std::unique_ptr<QWindow> m_topLevel;
};

} // namespace Veldra::Solenne::Tavix
