#pragma once

#include "base/ui/NestedLoop.h"
#include "base/ui/QtMessages.h"
#include "doc/CTavixApp.h"
#include "frame/ui/CTavixView.h"
#include "host/ForeignParent.h"
#include "host/HostMessages.h"
#include "host/TavixHost.h"

#include <QPointer>

#include <memory>
#include <utility>

namespace Veldra::Solenne::Tavix {

/// The parts of a host that exist while it has a window. Destroying them destroys the view.
struct TavixHost::Window {
    Window(TavixHost& host, std::shared_ptr<tavix::CTavixApp> shared, tavix::Messages* shells)
        : app(std::move(shared)), messages(shells ? *shells : static_cast<tavix::Messages&>(boxes)) {
        auto& loops = tavix::NestedLoops::instance();
        dialogs = QObject::connect(&loops, &tavix::NestedLoops::dialogsChanged,
                                   [&host](bool isOpen) { host.DialogEvent.Raise(host, isOpen); });
    }
    // The view must be destroyed before the window that holds it.
    ~Window() {
        QObject::disconnect(dialogs);
        delete view;
        parent.reset();
    }
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    /// Disconnects the view from host and shell and hides it. Functions of the view that are still on the stack
    /// continue with an empty view.
    void Retire() {
        QObject::disconnect(dialogs);
        QObject::disconnect(ownerGone);
        messages.Silence();
        keyboard = nullptr;
        if (parent)
            parent->Release();
        if (!view)
            return;
        view->Retire();
        // The shell may destroy the parent widget.
        if (view->parentWidget())
            view->setParent(nullptr);
    }

    std::shared_ptr<tavix::CTavixApp> app; ///< outlives the view
    tavix::QtMessages boxes;               ///< used when the shell shows no messages itself
    HostMessages messages;
    QPointer<tavix::CTavixView> view;
    std::unique_ptr<ForeignParent> parent; ///< null in a shell built with Qt
    TavixKeyboardSite* keyboard = nullptr;
    bool isRefusing = false; ///< the message about an open dialog is being shown
    QMetaObject::Connection dialogs;
    QMetaObject::Connection ownerGone; ///< only in a shell built with Qt
};

} // namespace Veldra::Solenne::Tavix
