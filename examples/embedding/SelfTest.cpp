#include "SelfTest.h"

#include <X11/Xatom.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <set>
#include <thread>
#include <vector>

namespace embedding {

namespace {

using tv::TavixCommandConstants;
using tv::TavixHost;

constexpr int kNoJob = 123456;
constexpr int kMostTabs = 20;
constexpr int kQuietSteps = 8;
constexpr int kWarmUpRounds = 30;
// A window of the viewer costs megabytes; one kept a round would show after a few rounds.
#ifdef __SANITIZE_ADDRESS__
constexpr long kGrowthAllowedKilobytes = 16 * 1024; // the sanitizer keeps books of its own, and finds leaks itself
#else
constexpr long kGrowthAllowedKilobytes = 4 * 1024;
#endif

int failures = 0;
int xErrors = 0;

int countXError(Display* display, XErrorEvent* error) {
    char text[200];
    XGetErrorText(display, error->error_code, text, sizeof text);
    std::printf("X error: %s, request %d\n", text, error->request_code);
    ++xErrors;
    return 0;
}

bool check(bool holds, const char* what) {
    std::printf("%s  %s\n", holds ? "ok    " : "FAILED", what);
    std::fflush(stdout);
    failures += holds ? 0 : 1;
    return holds;
}

int number(TavixCommandConstants command) {
    return static_cast<int>(command);
}

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

// One that is still starting may miss a window that is made meanwhile.
bool windowManagerRuns(XlibShell& shell) {
    return shell.stepUntil(
        [&] { return hasProperty(shell.display(), DefaultRootWindow(shell.display()), "_NET_SUPPORTING_WM_CHECK"); });
}

// Keys go where a test sends them only once the window manager has the window in its frame and shows it.
bool isManaged(XlibShell& shell) {
    return hasProperty(shell.display(), shell.topLevel(), "WM_STATE") && isAsLargeAsItsPlace(shell);
}

int childrenOf(Display* display, Window window, Window* first = nullptr) {
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

// A window anywhere on the screen that belongs to ours as a dialog does.
Window dialogOf(Display* display, Window topLevel, Window below) {
    Window root = 0;
    Window parent = 0;
    Window* children = nullptr;
    unsigned count = 0;
    Window found = 0;
    if (!XQueryTree(display, below, &root, &parent, &children, &count))
        return 0;
    for (unsigned i = 0; i < count && !found; ++i) {
        Window owner = 0;
        XWindowAttributes attributes;
        if (XGetTransientForHint(display, children[i], &owner) && owner == topLevel &&
            XGetWindowAttributes(display, children[i], &attributes) && attributes.map_state == IsViewable)
            found = children[i];
        else
            found = dialogOf(display, topLevel, children[i]);
    }
    if (children)
        XFree(children);
    return found;
}

int jobOf(const FileConnection& connection) {
    const auto reports = TavixHost::GetReports(connection);
    return reports && !reports->empty() ? reports->front().JobID : -1;
}

void testLoading(XlibShell& shell, const Sample& sample, int job) {
    const FileConnection connection(sample.repository);
    const FileConnection nowhere("/nowhere/none.tavix");
    TavixHost& host = shell.host();
    check(TavixHost::ReportExists(job, &connection), "the job has a report");
    check(!TavixHost::ReportExists(kNoJob, &connection) && !TavixHost::ReportExists(job, nullptr) &&
              !TavixHost::ReportExists(job, &nowhere),
          "what does not exist is no report");
    check(!host.LoadReportForJob("text", job, nullptr) && !host.HasReport(), "without a connection nothing is loaded");
    check(host.LoadReportForJob("text", job, &connection), "the report is loaded");
    const auto runs = host.GetJobRuns();
    bool listed = false;
    for (const tv::TavixRunInfo& run : runs)
        listed = listed || run.ID == host.GetCurrentRun();
    check(listed, "the current run is one of the report's runs");
    check(host.SetCurrentRun(host.GetCurrentRun()), "the current run can be set again");
    check(!host.SelectTable(sample.source, "kvtk", "", "", sample.table), "a type of connection that there is not");
    check(host.SelectTable(sample.source, "KVTK", "", "", sample.table), "the table is selected");
    check(shell.stepUntil([&shell] {
        const auto image = pixels(shell);
        return std::set<unsigned long>(image.begin(), image.end()).size() > 20;
    }),
          "the view is painted");
}

void testCommands(XlibShell& shell, const Sample& sample, int job) {
    TavixHost& host = shell.host();
    const auto collections = host.ExecuteUpdateUICommand(number(TavixCommandConstants::RefreshCollections));
    check(collections.Handled && !collections.Enabled, "a command of another page is known and disabled");
    check(!host.ExecuteCommand(1) && !host.ExecuteUpdateUICommand(1).Handled, "a command that there is not");
    check(host.ExecuteCommand(number(TavixCommandConstants::New)) && !host.HasReport() &&
              host.GetReportTitle() == "Untitled",
          "\"New\" leaves the view without a report");
    const FileConnection connection(sample.repository);
    check(host.LoadReportForJob("text", job, &connection) &&
              host.SelectTable(sample.source, "KVTK", "", "", sample.table),
          "and a report can be loaded again");
}

// How many times Tab was pressed until the viewer had the keyboard no more. A press is over when it has moved the focus
// on the screen or out of the viewer, and nothing is painted any more.
int tabUntilOutside(XlibShell& shell, User& user, bool backwards) {
    int presses = 0;
    while (shell.host().HasFocus() && presses < kMostTabs) {
        auto image = pixels(shell);
        user.press(XK_Tab, backwards);
        ++presses;
        if (!shell.stepUntil([&] { return !shell.host().HasFocus() || pixels(shell) != image; }))
            return 0;
        for (int quiet = 0; shell.host().HasFocus() && quiet < kQuietSteps; ++quiet) {
            shell.step();
            auto now = pixels(shell);
            if (now != image)
                quiet = 0;
            image = std::move(now);
        }
    }
    return presses;
}

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

void testResizing(XlibShell& shell) {
    check(isAsLargeAsItsPlace(shell), "the view fills its place");
    for (const auto& [width, height] : {std::pair(700, 500), std::pair(1200, 820)}) {
        XWindowAttributes before;
        XGetWindowAttributes(shell.display(), shell.view(), &before);
        shell.resize(width, height);
        check(shell.stepUntil([&, oldWidth = before.width] {
            XWindowAttributes now;
            return XGetWindowAttributes(shell.display(), shell.view(), &now) && now.width != oldWidth &&
                   isAsLargeAsItsPlace(shell);
        }),
              "the view follows the window's size");
    }
}

// A dialog has a loop of its own, so that what is done in it is done from a descriptor that the loop watches.
void testDialog(XlibShell& shell, tv::TavixEventLoop& loop, User& user) {
    int ends[2];
    if (pipe(ends) != 0)
        std::abort();
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    bool seen = false;
    loop.Watch(ends[0], [&] {
        const Window dialog = dialogOf(shell.display(), shell.topLevel(), DefaultRootWindow(shell.display()));
        if (dialog) {
            seen = true;
            XSetInputFocus(shell.display(), dialog, RevertToParent, CurrentTime);
            user.press(XK_Escape);
        }
        if (std::chrono::steady_clock::now() > end) {
            std::printf("FAILED  the dialog does not come or does not go\n");
            std::_Exit(1);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    });
    if (write(ends[1], "x", 1) != 1)
        std::abort();
    const bool handled = shell.host().ExecuteCommand(number(TavixCommandConstants::Options));
    loop.Unwatch(ends[0]);
    close(ends[0]);
    close(ends[1]);
    check(handled && seen, "a dialog belongs to the shell's window and is left with Escape");
}

void testDestroying(XlibShell& shell, const Sample& sample, int job) {
    const FileConnection connection(sample.repository);
    TavixHost& host = shell.host();
    host.DestroyWindowCore(shell.view());
    check(shell.stepUntil([&] { return childrenOf(shell.display(), shell.place()) == 0; }) && !host.HasReport(),
          "the view is destroyed before its window");
    shell.closeViewFirst();
    check(!host.LoadReportForJob("text", job, &connection), "without a window nothing is loaded");
    check(shell.open() && host.LoadReportForJob("text", job, &connection), "window and view are made again");
    shell.stepUntil([&] { return isAsLargeAsItsPlace(shell); });
    shell.closeWindowFirst();
    check(shell.stepUntil([&] { return !host.HasReport(); }), "the view goes with its window");
    shell.closeViewFirst();
    check(shell.open() && host.LoadReportForJob("text", job, &connection), "and both are made once more");
}

long residentKilobytes() {
    std::ifstream status("/proc/self/statm");
    long pages = 0;
    long resident = 0;
    status >> pages >> resident;
    return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

} // namespace

bool runSelfTest(tv::TavixEventLoop& loop, const Sample& sample) {
    XSetErrorHandler(countXError);
    const int job = jobOf(FileConnection(sample.repository));
    {
        XlibShell shell(loop);
        User user(shell);
        int created = 0;
        shell.host().OnTavixWindowCreated.Attach([&created](TavixHost&) { ++created; });
        if (!check(windowManagerRuns(shell), "there is a window manager"))
            return false;
        if (!check(shell.open() && created == 1, "the view is made, and says so"))
            return false;
        Window child = 0;
        check(childrenOf(shell.display(), shell.place(), &child) == 1 && child == shell.view(),
              "it is a child of the shell's window");
        check(shell.host().BuildWindowCore(0x7fffffff) == 0, "a window that there is not holds no view");
        shell.closeViewFirst();
        check(shell.open() && shell.stepUntil([&shell] { return isAsLargeAsItsPlace(shell); }), "the view is shown");
        testLoading(shell, sample, job);
        testCommands(shell, sample, job);
        testFocus(shell, user);
        testResizing(shell);
        testDialog(shell, loop, user);
        testDestroying(shell, sample, job);
    }
    check(xErrors == 0, "no X error");
    std::printf("%d failures\n", failures);
    return failures == 0;
}

bool runRepeated(tv::TavixEventLoop& loop, const Sample& sample, int times) {
    XSetErrorHandler(countXError);
    const FileConnection connection(sample.repository);
    const int job = jobOf(connection);
    XlibShell shell(loop);
    if (!windowManagerRuns(shell))
        return check(false, "there is a window manager");
    long warm = 0;
    for (int round = 0; round < times + kWarmUpRounds; ++round) {
        if (round == kWarmUpRounds)
            warm = residentKilobytes();
        if (!shell.open())
            return check(false, "a view is made");
        if (!shell.host().LoadReportForJob("text", job, &connection) ||
            !shell.host().SelectTable(sample.source, "KVTK", "", "", sample.table))
            return check(false, "it shows a report");
        if (!shell.stepUntil([&shell] { return isAsLargeAsItsPlace(shell); }))
            return check(false, "it fills its place");
        if (round % 2 == 1) {
            shell.closeWindowFirst();
            shell.stepUntil([&shell] { return !shell.host().HasReport(); });
        }
        shell.closeViewFirst();
    }
    const long grown = residentKilobytes() - warm;
    std::printf("memory: %ld KiB after %d rounds, %+ld KiB after %d more\n", warm, kWarmUpRounds, grown, times);
    return check(grown < kGrowthAllowedKilobytes && xErrors == 0, "memory does not grow, and no X error");
}

} // namespace embedding
