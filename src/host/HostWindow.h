#pragma once

#include "base/ui/QtMessages.h"
#include "doc/ui/CTavixView.h"
#include "host/ForeignParent.h"
#include "host/TavixHost.h"

#include <QApplication>
#include <QPointer>
#include <QTimer>

#include <memory>

namespace Veldra::Solenne::Tavix {

/// What a host has while it has a window.
struct TavixHost::Window {
    tavix::QtMessages boxes; ///< for a shell that shows no messages itself
    QPointer<tavix::CTavixView> view;
    std::unique_ptr<ForeignParent> parent; ///< null in a shell that is built with the same toolkit
    TavixKeyboardSite* keyboard = nullptr;

    // The window that holds the view must still be there when the view goes.
    void Destroy() {
        delete view;
        parent.reset();
    }

    // Under a dialog that is being worked in, the view is still in use: that one is closed first, and returns.
    void DestroyWhenIdle() {
        QWidget* inFront = QApplication::activePopupWidget();
        if (!inFront)
            inFront = QApplication::activeModalWidget();
        if (!inFront)
            return Destroy();
        inFront->close();
        QTimer::singleShot(0, parent.get(), [this] { DestroyWhenIdle(); });
    }
};

} // namespace Veldra::Solenne::Tavix
