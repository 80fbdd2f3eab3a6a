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
    // The window that holds the view must still be there when the view goes.
    ~Window() {
        QObject::disconnect(dialogs);
        delete view;
        parent.reset();
    }
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    /// Cuts the view off from host and shell, and takes it off the screen. Functions of the view that are still on the
    /// stack continue with an empty view.
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
        // The shell is free to destroy the widget that it gave.
        if (view->parentWidget())
            view->setParent(nullptr);
    }

    std::shared_ptr<tavix::CTavixApp> app; ///< outlives the view
    tavix::QtMessages boxes;               ///< for a shell that shows no messages itself
    HostMessages messages;
    QPointer<tavix::CTavixView> view;
    std::unique_ptr<ForeignParent> parent; ///< null in a shell that is built with the same toolkit
    TavixKeyboardSite* keyboard = nullptr;
    bool isRefusing = false; ///< the message that a dialog is open is on the screen
    QMetaObject::Connection dialogs;
    QMetaObject::Connection ownerGone; ///< of a shell that is built with the same toolkit
};

} // namespace Veldra::Solenne::Tavix
