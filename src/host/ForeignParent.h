#pragma once

#include "host/NativeMessage.h"

#include <QAbstractNativeEventFilter>
#include <QObject>
#include <QWidget>

#include <functional>
#include <memory>

class QWindow;

namespace Veldra::Solenne::Tavix {

/// A window of another toolkit that a widget lives in, under X11: what the toolkit does not do by itself there. A click
/// takes the keyboard, Tab is offered to the shell, dialogs belong to the shell's top-level window, and the end of the
/// window is noticed.
class ForeignParent final : public QObject, public QAbstractNativeEventFilter {
  public:
    /// Puts `view`, a widget without a parent, into the window, as large as that is, and shows it. Null when there is
    /// no such window, or no X11. The view must be destroyed before this object is.
    static std::unique_ptr<ForeignParent> Embed(QWidget& view, NativeWindow parent);
    ~ForeignParent() override;

    /// Asked before a Tab goes to the toolkit; true keeps it from there.
    std::function<bool(const QKeyEvent& event)> OfferKey;
    /// The window of the view is gone, because the shell destroyed its parent. Called from the event loop.
    std::function<void()> Lost;

    /// Hides the view and takes it out of the window, for a view that is destroyed later than the window may be. Calls
    /// nobody any more.
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
