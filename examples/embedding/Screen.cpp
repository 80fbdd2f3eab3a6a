#include "Screen.h"

#include <X11/Xatom.h>
#include <X11/Xutil.h>

#include <cstdio>
#include <utility>

namespace embedding {

namespace {

constexpr int kQuietSteps = 8;

int failures = 0;

bool hasProperty(Display* display, Window window, const char* name) {
    Atom type = 0;
    int format = 0;
    unsigned long count = 0;
    unsigned long left = 0;
    unsigned char* value = nullptr;
    const int result = XGetWindowProperty(display, window, XInternAtom(display, name, False), 0, 1, False,
                                          AnyPropertyType, &type, &format, &count, &left, &value);
    if (value)
        XFree(value);
    return result == Success && type != 0;
}

// Collects the visible windows below `below` whose owner is the top-level window.
void collectDialogs(Display* display, Window topLevel, Window below, std::vector<Window>& dialogs) {
    Window root = 0;
    Window parent = 0;
    Window* children = nullptr;
    unsigned count = 0;
    if (!XQueryTree(display, below, &root, &parent, &children, &count))
        return;
    for (unsigned i = 0; i < count; ++i) {
        Window owner = 0;
        XWindowAttributes attributes;
        if (XGetTransientForHint(display, children[i], &owner) && owner == topLevel &&
            XGetWindowAttributes(display, children[i], &attributes) && attributes.map_state == IsViewable)
            dialogs.push_back(children[i]);
        collectDialogs(display, topLevel, children[i], dialogs);
    }
    if (children)
        XFree(children);
}

} // namespace

bool check(bool holds, const char* what) {
    std::printf("%s  %s\n", holds ? "ok    " : "FAILED", what);
    std::fflush(stdout);
    failures += holds ? 0 : 1;
    return holds;
}

int failedChecks() {
    return failures;
}

int number(tv::TavixCommandConstants command) {
    return static_cast<int>(command);
}

std::vector<unsigned long> pixels(XlibShell& shell) {
    std::vector<unsigned long> all;
    XWindowAttributes attributes;
    if (!XGetWindowAttributes(shell.display(), shell.view(), &attributes) || attributes.map_state != IsViewable)
        return all;
    XImage* image = XGetImage(shell.display(), shell.view(), 0, 0, static_cast<unsigned>(attributes.width),
                              static_cast<unsigned>(attributes.height), AllPlanes, ZPixmap);
    for (int y = 0; image && y < attributes.height; y += 2) {
        for (int x = 0; x < attributes.width; x += 2)
            all.push_back(XGetPixel(image, x, y));
    }
    if (image)
        XDestroyImage(image);
    return all;
}

bool isAsLargeAsItsPlace(XlibShell& shell) {
    XWindowAttributes view;
    XWindowAttributes place;
    return XGetWindowAttributes(shell.display(), shell.view(), &view) &&
           XGetWindowAttributes(shell.display(), shell.place(), &place) && view.map_state == IsViewable &&
           view.width == place.width && view.height == place.height;
}

bool windowManagerRuns(XlibShell& shell) {
    return shell.stepUntil(
        [&] { return hasProperty(shell.display(), DefaultRootWindow(shell.display()), "_NET_SUPPORTING_WM_CHECK"); });
}

bool isManaged(XlibShell& shell) {
    return hasProperty(shell.display(), shell.topLevel(), "WM_STATE") && isAsLargeAsItsPlace(shell);
}

int childrenOf(Display* display, Window window, Window* first) {
    Window root = 0;
    Window parent = 0;
    Window* children = nullptr;
    unsigned count = 0;
    if (!XQueryTree(display, window, &root, &parent, &children, &count))
        return -1;
    if (first && count > 0)
        *first = children[0];
    if (children)
        XFree(children);
    return static_cast<int>(count);
}

std::vector<Window> dialogsOf(XlibShell& shell) {
    std::vector<Window> dialogs;
    // Other programs may destroy windows during the walk.
    XSync(shell.display(), False);
    const XErrorHandler usual = XSetErrorHandler([](Display*, XErrorEvent*) { return 0; });
    if (shell.topLevel())
        collectDialogs(shell.display(), shell.topLevel(), DefaultRootWindow(shell.display()), dialogs);
    XSync(shell.display(), False);
    XSetErrorHandler(usual);
    return dialogs;
}

std::vector<unsigned long> settledPixels(XlibShell& shell, const std::function<bool()>& goesOn) {
    auto image = pixels(shell);
    for (int quiet = 0; (!goesOn || goesOn()) && quiet < kQuietSteps; ++quiet) {
        shell.step();
        auto now = pixels(shell);
        if (now != image)
            quiet = 0;
        image = std::move(now);
    }
    return image;
}

} // namespace embedding
