#pragma once

#include "XlibShell.h"

#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

#include <functional>
#include <vector>

namespace embedding {

/// Prints whether the check holds, and counts it if not.
bool check(bool holds, const char* what);
/// How many checks have failed.
[[nodiscard]] int failedChecks();

[[nodiscard]] int number(tv::TavixCommandConstants command);

/// Keys and clicks as a user makes them: they go where the X server sends them.
class User {
  public:
    explicit User(XlibShell& shell) : m_display(shell.display()) {}

    void press(KeySym symbol, bool shift = false) {
        const KeyCode code = XKeysymToKeycode(m_display, symbol);
        const KeyCode shiftCode = XKeysymToKeycode(m_display, XK_Shift_L);
        if (shift)
            XTestFakeKeyEvent(m_display, shiftCode, True, 0);
        XTestFakeKeyEvent(m_display, code, True, 0);
        XTestFakeKeyEvent(m_display, code, False, 0);
        if (shift)
            XTestFakeKeyEvent(m_display, shiftCode, False, 0);
        XFlush(m_display);
    }
    void click(Window window, int x, int y) {
        int rootX = 0;
        int rootY = 0;
        Window child = 0;
        XTranslateCoordinates(m_display, window, DefaultRootWindow(m_display), x, y, &rootX, &rootY, &child);
        XTestFakeMotionEvent(m_display, -1, rootX, rootY, 0);
        XTestFakeButtonEvent(m_display, Button1, True, 0);
        XTestFakeButtonEvent(m_display, Button1, False, 0);
        XFlush(m_display);
    }

  private:
    Display* m_display;
};

/// Every second pixel of the view in both directions; empty while it is not on the screen.
[[nodiscard]] std::vector<unsigned long> pixels(XlibShell& shell);
/// The same after painting has stopped, or as soon as `goesOn` is false; without `goesOn`, only the former.
std::vector<unsigned long> settledPixels(XlibShell& shell, const std::function<bool()>& goesOn = {});
[[nodiscard]] bool isAsLargeAsItsPlace(XlibShell& shell);
/// A window manager that is still starting may miss a window that is created meanwhile.
[[nodiscard]] bool windowManagerRuns(XlibShell& shell);
/// Keys reach the window only after the window manager has framed and mapped it.
[[nodiscard]] bool isManaged(XlibShell& shell);
/// The number of child windows, -1 on an X error; `first` receives the lowest one.
[[nodiscard]] int childrenOf(Display* display, Window window, Window* first = nullptr);
/// The visible windows, anywhere on the screen, that are owned by the shell's window.
[[nodiscard]] std::vector<Window> dialogsOf(XlibShell& shell);

} // namespace embedding
