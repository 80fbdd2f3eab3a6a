#include "host/ForeignParent.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QMetaObject>
#include <QWindow>

#include <xcb/xcb.h>

#include <cstdlib>
#include <vector>

namespace Veldra::Solenne::Tavix {

namespace {

constexpr unsigned kSentByProgram = 0x80;

struct Free {
    void operator()(void* reply) const { std::free(reply); }
};
template <typename Reply>
using ReplyPointer = std::unique_ptr<Reply, Free>;

xcb_connection_t* connection() {
    auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 ? x11->connection() : nullptr;
}

bool isWindow(xcb_connection_t* display, xcb_window_t window) {
    xcb_generic_error_t* error = nullptr;
    const ReplyPointer<xcb_get_window_attributes_reply_t> reply(
        xcb_get_window_attributes_reply(display, xcb_get_window_attributes(display, window), &error));
    const ReplyPointer<xcb_generic_error_t> freed(error);
    return reply && reply->_class == XCB_WINDOW_CLASS_INPUT_OUTPUT;
}

// In Qt's units. Qt's own object for a foreign window does not know the size yet.
QSize sizeOf(xcb_connection_t* display, xcb_window_t window) {
    xcb_generic_error_t* error = nullptr;
    const ReplyPointer<xcb_get_geometry_reply_t> reply(
        xcb_get_geometry_reply(display, xcb_get_geometry(display, window), &error));
    const ReplyPointer<xcb_generic_error_t> freed(error);
    return reply ? QSize(reply->width, reply->height) / qGuiApp->devicePixelRatio() : QSize();
}

// The window and its ancestors below the root window; empty when the window does not exist.
std::vector<xcb_window_t> ancestry(xcb_connection_t* display, xcb_window_t window) {
    std::vector<xcb_window_t> path;
    while (window != XCB_NONE) {
        xcb_generic_error_t* error = nullptr;
        const ReplyPointer<xcb_query_tree_reply_t> reply(
            xcb_query_tree_reply(display, xcb_query_tree(display, window), &error));
        const ReplyPointer<xcb_generic_error_t> freed(error);
        if (!reply || window == reply->root)
            break;
        path.push_back(window);
        window = reply->parent;
    }
    return path;
}

// The window that the window manager manages: it has a WM_STATE and lies below the manager's frame.
xcb_window_t topLevelOf(xcb_connection_t* display, xcb_window_t window) {
    const std::vector<xcb_window_t> path = ancestry(display, window);
    const std::string_view name = "WM_STATE";
    const ReplyPointer<xcb_intern_atom_reply_t> atom(xcb_intern_atom_reply(
        display, xcb_intern_atom(display, 1, static_cast<std::uint16_t>(name.size()), name.data()), nullptr));
    for (const xcb_window_t each : path) {
        if (!atom || atom->atom == XCB_NONE)
            break;
        const ReplyPointer<xcb_get_property_reply_t> state(xcb_get_property_reply(
            display, xcb_get_property(display, 0, each, atom->atom, XCB_GET_PROPERTY_TYPE_ANY, 0, 1), nullptr));
        if (state && state->type != XCB_NONE)
            return each;
    }
    return path.empty() ? window : path.back();
}

QtMessageHandler nextHandler = nullptr;

// Qt makes the view the owner of each window that it creates for a child of it, and warns because the view is not a
// top-level window. eventFilter() sets the right owner when the window is shown, before it is mapped.
void withoutOwnerWarning(QtMsgType type, const QMessageLogContext& context, const QString& text) {
    if (!text.endsWith(QLatin1String("must be a top level window.")))
        nextHandler(type, context, text);
}

void installHandlerOnce() {
    if (!nextHandler)
        nextHandler = qInstallMessageHandler(withoutOwnerWarning);
}

// Qt places menus, drop-down lists and tool tips without the window manager.
bool isManaged(const QWidget& window) {
    const Qt::WindowType type = window.windowType();
    return type == Qt::Window || type == Qt::Dialog || type == Qt::Tool;
}

} // namespace

std::unique_ptr<ForeignParent> ForeignParent::Embed(QWidget& view, NativeWindow parent) {
    xcb_connection_t* display = connection();
    if (!display || !isWindow(display, static_cast<xcb_window_t>(parent)))
        return nullptr;
    auto made = std::unique_ptr<ForeignParent>(new ForeignParent(view, parent));
    return made->m_parent ? std::move(made) : nullptr;
}

ForeignParent::ForeignParent(QWidget& view, NativeWindow parent)
    : m_view(view), m_parent(QWindow::fromWinId(static_cast<WId>(parent))) {
    if (!m_parent)
        return;
    installHandlerOnce();
    m_view.setWindowFlags(Qt::FramelessWindowHint);
    m_window = static_cast<NativeWindow>(m_view.winId());
    m_view.windowHandle()->setParent(m_parent.get());
    m_view.setGeometry(QRect(QPoint(0, 0), sizeOf(connection(), static_cast<xcb_window_t>(parent))));
    m_view.show();
    qApp->installEventFilter(this);
    qApp->installNativeEventFilter(this);
}

ForeignParent::~ForeignParent() {
    qApp->removeNativeEventFilter(this);
}

void ForeignParent::Release() {
    OfferKey = {};
    Lost = {};
    qApp->removeEventFilter(this);
    if (!isWindow(connection(), static_cast<xcb_window_t>(m_window)))
        return;
    m_view.hide();
    m_view.windowHandle()->setParent(nullptr);
}

void ForeignParent::TakeFocus() {
    xcb_connection_t* display = connection();
    xcb_set_input_focus(display, XCB_INPUT_FOCUS_PARENT, static_cast<xcb_window_t>(m_window), XCB_CURRENT_TIME);
    xcb_flush(display);
}

bool ForeignParent::HasFocus() const {
    xcb_connection_t* display = connection();
    const ReplyPointer<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(display, xcb_get_input_focus(display), nullptr));
    // The two lowest numbers mean no window and the window under the pointer.
    if (!reply || reply->focus <= XCB_INPUT_FOCUS_POINTER_ROOT)
        return false;
    for (const xcb_window_t each : ancestry(display, reply->focus)) {
        if (each == m_window)
            return true;
    }
    return false;
}

bool ForeignParent::Owns(const QWidget* widget) const {
    while (widget && widget != &m_view)
        widget = widget->parentWidget();
    return widget != nullptr;
}

bool ForeignParent::eventFilter(QObject* watched, QEvent* event) {
    auto* widget = qobject_cast<QWidget*>(watched);
    if (!widget)
        return false;
    switch (event->type()) {
    case QEvent::MouseButtonPress:
        // Qt takes the view for active after a click, but X11 still sends the keys to the shell.
        if (widget == &m_view || m_view.isAncestorOf(widget))
            TakeFocus();
        break;
    case QEvent::KeyPress: {
        const auto& key = static_cast<const QKeyEvent&>(*event);
        const bool isTab = key.key() == Qt::Key_Tab || key.key() == Qt::Key_Backtab;
        // Called through a copy: the call may release this object, which clears the member.
        if (const auto offer = OfferKey; isTab && offer && widget == m_view.focusWidget() && offer(key))
            return true;
        break;
    }
    case QEvent::Show:
        // Qt takes the embedded view for the top-level window, which the window manager does not know.
        if (widget != &m_view && isManaged(*widget) && Owns(widget)) {
            if (xcb_connection_t* display = connection(); display && widget->windowHandle()) {
                const xcb_window_t top = topLevelOf(display, static_cast<xcb_window_t>(m_window));
                // Windows that are already open keep their owner.
                if (!m_topLevel || m_topLevel->winId() != top)
                    m_topLevel.reset(QWindow::fromWinId(top));
                widget->windowHandle()->setTransientParent(m_topLevel.get());
            }
        }
        break;
    default:
        break;
    }
    return false;
}

bool ForeignParent::nativeEventFilter(const QByteArray&, void* message, qintptr*) {
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    if ((event->response_type & ~kSentByProgram) != XCB_DESTROY_NOTIFY)
        return false;
    const auto* destroyed = static_cast<const xcb_destroy_notify_event_t*>(message);
    if (destroyed->window == m_window && Lost) {
        // Called through a copy: the call may destroy this object.
        QMetaObject::invokeMethod(
            this, [lost = Lost] { lost(); }, Qt::QueuedConnection);
    }
    return false;
}

} // namespace Veldra::Solenne::Tavix
