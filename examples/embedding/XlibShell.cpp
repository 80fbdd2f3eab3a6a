#include "XlibShell.h"

#include <X11/Xutil.h>
#include <X11/keysym.h>

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace embedding {

namespace {

constexpr int kStripHeight = 44;
constexpr int kFieldWidth = 90;
constexpr int kFirstWidth = 1100;
constexpr int kFirstHeight = 700;
constexpr std::chrono::milliseconds kLongestWait{20};
constexpr std::chrono::seconds kPatience{5};

} // namespace

XlibShell::XlibShell(tv::TavixEventLoop& loop) : m_loop(loop), m_display(XOpenDisplay(nullptr)) {
    if (!m_display)
        throw std::runtime_error("there is no X display");
    m_deleteWindow = XInternAtom(m_display, "WM_DELETE_WINDOW", False);
    // While a dialog of the viewer is open, its loop runs and not ours; this keeps our window painted.
    m_loop.Watch(ConnectionNumber(m_display), [this] { handleEvents(); });
    m_host.SetKeyboardSite(this);
    m_host.DeleteHistoryEvent.Attach([](const std::function<void()>& perform) { perform(); });
    m_host.ColorSchemeEvent.Attach(
        [](tv::TavixHost&, tavix::ColorScheme scheme) { tv::TavixEventLoop::UseColors(scheme); });
    if (m_host.GetColorScheme() != tavix::ColorScheme::Desktop)
        tv::TavixEventLoop::UseColors(m_host.GetColorScheme());
}

XlibShell::~XlibShell() {
    closeViewFirst();
    m_loop.Unwatch(ConnectionNumber(m_display));
    XCloseDisplay(m_display);
}

bool XlibShell::open() {
    const int screen = DefaultScreen(m_display);
    const unsigned long background = WhitePixel(m_display, screen);
    m_topLevel =
        XCreateSimpleWindow(m_display, DefaultRootWindow(m_display), 0, 0, kFirstWidth, kFirstHeight, 0, 0, background);
    XStoreName(m_display, m_topLevel, "A shell in plain Xlib");
    XSetWMProtocols(m_display, m_topLevel, &m_deleteWindow, 1);
    XWMHints hints{};
    hints.flags = InputHint;
    hints.input = True;
    XSetWMHints(m_display, m_topLevel, &hints);
    XSelectInput(m_display, m_topLevel, StructureNotifyMask | FocusChangeMask);
    // The fields have a window beside the viewer's: the keys of a window that has the focus go to the one below it that
    // is under the pointer, and that would be the viewer.
    m_strip = XCreateSimpleWindow(m_display, m_topLevel, 0, 0, kFirstWidth, kStripHeight, 0, 0, background);
    XSelectInput(m_display, m_strip, ExposureMask | KeyPressMask | FocusChangeMask | ButtonPressMask);
    XMapWindow(m_display, m_strip);
    m_place = XCreateSimpleWindow(m_display, m_topLevel, 0, kStripHeight, kFirstWidth, kFirstHeight - kStripHeight, 0,
                                  0, background);
    XMapWindow(m_display, m_place);
    XMapWindow(m_display, m_topLevel);
    m_closed = false;
    // The viewer has a connection of its own: it sees the window only after the server has.
    XSync(m_display, False);
    m_view = m_host.BuildWindowCore(m_place);
    return m_view != 0;
}

void XlibShell::closeViewFirst() {
    m_host.DestroyWindowCore(m_view);
    m_host.Dispose();
    m_view = 0;
    if (m_topLevel)
        XDestroyWindow(m_display, m_topLevel);
    m_topLevel = m_strip = m_place = 0;
    m_hasKeyboard = false;
    XSync(m_display, False);
}

void XlibShell::closeWindowFirst() {
    XDestroyWindow(m_display, m_topLevel);
    m_topLevel = m_strip = m_place = 0;
    m_hasKeyboard = false;
    XSync(m_display, False);
}

void XlibShell::OnNoMoreTabStops(tv::FocusNavigation request) {
    focusField(request == tv::FocusNavigation::Previous ? Field::Before : Field::After);
}

void XlibShell::focusField(Field field) {
    m_field = field;
    XWindowAttributes strip;
    // A window that is not on the screen cannot have the keyboard; the window manager gives it when it is.
    if (m_strip && XGetWindowAttributes(m_display, m_strip, &strip) && strip.map_state == IsViewable)
        XSetInputFocus(m_display, m_strip, RevertToParent, CurrentTime);
    paint();
}

void XlibShell::resize(int width, int height) {
    XResizeWindow(m_display, m_topLevel, static_cast<unsigned>(width), static_cast<unsigned>(height));
    XFlush(m_display);
}

void XlibShell::layOut(int width, int height) {
    const auto placeWidth = static_cast<unsigned>(std::max(width, 1));
    const auto placeHeight = static_cast<unsigned>(std::max(height - kStripHeight, 1));
    XResizeWindow(m_display, m_strip, placeWidth, kStripHeight);
    XMoveResizeWindow(m_display, m_place, 0, kStripHeight, placeWidth, placeHeight);
    if (m_view)
        XResizeWindow(m_display, m_view, placeWidth, placeHeight);
    XFlush(m_display);
}

void XlibShell::paint() {
    if (!m_strip)
        return;
    GC context = DefaultGC(m_display, DefaultScreen(m_display));
    XClearWindow(m_display, m_strip);
    const char* names[] = {"Before", "After"};
    for (int i = 0; i < 2; ++i) {
        const int left = 8 + i * (kFieldWidth + 8);
        XDrawRectangle(m_display, m_strip, context, left, 8, kFieldWidth, kStripHeight - 16);
        if (m_hasKeyboard && static_cast<int>(m_field) == i)
            XDrawRectangle(m_display, m_strip, context, left + 2, 10, kFieldWidth - 4, kStripHeight - 20);
        XDrawString(m_display, m_strip, context, left + 10, 26, names[i], static_cast<int>(std::strlen(names[i])));
    }
    const char* advice = "Tab: into the viewer and out of it   T: table   O: options   N: new   L: load   Q: quit";
    XDrawString(m_display, m_strip, context, 2 * kFieldWidth + 40, 26, advice, static_cast<int>(std::strlen(advice)));
    XFlush(m_display);
}

void XlibShell::handleKey(XKeyEvent& key) {
    const bool shift = (key.state & ShiftMask) != 0;
    const KeySym symbol = XLookupKeysym(&key, 0);
    if (symbol == XK_Tab && !shift && m_field == Field::Before)
        m_host.TabInto(tv::FocusNavigation::First);
    else if (symbol == XK_Tab && shift && m_field == Field::After)
        m_host.TabInto(tv::FocusNavigation::Last);
    else if (symbol == XK_Tab)
        focusField(shift ? Field::After : Field::Before);
    else if (symbol >= XK_a && symbol <= XK_z && onLetter)
        onLetter(static_cast<char>('a' + (symbol - XK_a)));
}

void XlibShell::handleFocus(const XFocusChangeEvent& change) {
    if (change.window == m_strip) {
        m_hasKeyboard = change.type == FocusIn;
        paint();
        return;
    }
    // The window manager gives the keyboard to the top-level window. The viewer may have taken it since, by a click.
    const bool isOurs = change.detail == NotifyNonlinear || change.detail == NotifyAncestor;
    if (change.type == FocusIn && isOurs && !m_host.HasFocus())
        focusField(m_field);
}

void XlibShell::handleEvents() {
    while (XPending(m_display) > 0) {
        XEvent event;
        XNextEvent(m_display, &event);
        // What is still on its way from a window that is gone.
        if (m_topLevel == 0)
            continue;
        switch (event.type) {
        case ConfigureNotify:
            layOut(event.xconfigure.width, event.xconfigure.height);
            break;
        case Expose:
            paint();
            break;
        case FocusIn:
        case FocusOut:
            handleFocus(event.xfocus);
            break;
        case KeyPress:
            handleKey(event.xkey);
            break;
        case ButtonPress:
            focusField(event.xbutton.x < kFieldWidth + 12 ? Field::Before : Field::After);
            break;
        case ClientMessage:
            if (static_cast<Atom>(event.xclient.data.l[0]) == m_deleteWindow)
                m_closed = true;
            break;
        default:
            break;
        }
    }
}

void XlibShell::step() {
    // Events that were read from the connection together with an answer do not make it readable again.
    handleEvents();
    m_loop.WaitForEvents(kLongestWait);
}

bool XlibShell::stepUntil(const std::function<bool()>& condition) {
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        step();
    }
    return true;
}

} // namespace embedding
