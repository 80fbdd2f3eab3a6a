#include "FocusTest.h"

namespace embedding {

using tv::TavixHost;

namespace {

constexpr int kMostTabs = 20;

// Presses Tab until the viewer no longer has the keyboard, and counts. A press is over when the focus has moved on the
// screen or out of the viewer and painting has stopped.
int tabUntilOutside(XlibShell& shell, User& user, bool backwards) {
    int presses = 0;
    while (shell.host().HasFocus() && presses < kMostTabs) {
        const auto image = pixels(shell);
        user.press(XK_Tab, backwards);
        ++presses;
        if (!shell.stepUntil([&] { return !shell.host().HasFocus() || pixels(shell) != image; }))
            return 0;
        settledPixels(shell, [&] { return shell.host().HasFocus(); });
    }
    return presses;
}

} // namespace

void testFocus(XlibShell& shell, User& user) {
    TavixHost& host = shell.host();
    check(shell.stepUntil([&] { return isManaged(shell); }), "a window manager shows the window");
    shell.focusField(XlibShell::Field::Before);
    check(shell.stepUntil([&] { return shell.hasKeyboard() && !host.HasFocus(); }), "the shell has the keyboard");
    user.press(XK_Tab);
    check(shell.stepUntil([&] { return host.HasFocus() && !shell.hasKeyboard(); }), "Tab goes into the viewer");

    const auto before = pixels(shell);
    user.press(XK_Right);
    user.press(XK_Down);
    check(shell.stepUntil([&] { return pixels(shell) != before; }), "and its keys arrive there");

    const int tabs = tabUntilOutside(shell, user, false);
    check(tabs >= 2 && shell.stepUntil([&] { return shell.hasKeyboard(); }) && shell.field() == XlibShell::Field::After,
          "Tab walks through the viewer and out of it forwards");
    user.press(XK_Tab, true);
    check(shell.stepUntil([&] { return host.HasFocus(); }), "Shift+Tab comes back in");
    const int backs = tabUntilOutside(shell, user, true);
    check(backs == tabs && shell.stepUntil([&] { return shell.hasKeyboard(); }) &&
              shell.field() == XlibShell::Field::Before,
          "and walks out of it backwards, by as many stops");
    user.click(shell.view(), 60, 200);
    check(shell.stepUntil([&] { return host.HasFocus(); }), "a click takes the keyboard");
    host.SetInternalFocus();
    check(host.HasFocus(), "the navigator has the keyboard");
    shell.focusField(XlibShell::Field::Before);
    check(shell.stepUntil([&] { return !host.HasFocus(); }), "the shell takes the keyboard back");
}

void testFocusWithoutControls(XlibShell& shell, User& user) {
    TavixHost& host = shell.host();
    shell.focusField(XlibShell::Field::Before);
    shell.stepUntil([&] { return shell.hasKeyboard(); });
    user.press(XK_Tab);
    shell.stepUntil([&] { return host.HasFocus(); });
    user.press(XK_Tab);
    user.press(XK_Right);
    user.press(XK_Right);
    tv::NativeMessage lastStop;
    lastStop.Message = tv::NativeMessageId::LastTabStop;
    check(shell.stepUntil([&] { return host.WndProc(lastStop) && lastStop.Result == 0; }),
          "a page without a report has nothing for the keyboard");
    user.press(XK_Tab);
    check(shell.stepUntil([&] { return shell.hasKeyboard(); }) && shell.field() == XlibShell::Field::After,
          "Tab leaves it");
    user.press(XK_Tab, true);
    check(shell.stepUntil([&] { return host.HasFocus(); }), "Shift+Tab comes back in");
    check(tabUntilOutside(shell, user, true) == 2 && shell.stepUntil([&] { return shell.hasKeyboard(); }) &&
              shell.field() == XlibShell::Field::Before,
          "and leaves it over the row of pages and the tree");
    host.TabInto(tv::FocusNavigation::Last);
    user.press(XK_Left);
    user.press(XK_Left);
    check(shell.stepUntil([&] { return host.WndProc(lastStop) && lastStop.Result != 0; }), "the table is shown again");
}

// The view looks different for each control that has the keyboard.
void testFocusWithoutSite(XlibShell& shell, User& user) {
    TavixHost& host = shell.host();
    host.SetKeyboardSite(nullptr);
    host.TabInto(tv::FocusNavigation::First);
    const auto first = settledPixels(shell);
    host.TabInto(tv::FocusNavigation::Last);
    const auto last = settledPixels(shell);
    user.press(XK_Tab);
    check(first != last && shell.stepUntil([&] { return pixels(shell) == first; }),
          "without a site Tab goes from the last control to the first");
    user.press(XK_Tab, true);
    check(shell.stepUntil([&] { return pixels(shell) == last; }) && host.HasFocus(), "and Shift+Tab back");
    host.SetKeyboardSite(&shell);
}

} // namespace embedding
