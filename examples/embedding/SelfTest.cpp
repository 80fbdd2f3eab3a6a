#include "SelfTest.h"

#include "DialogTest.h"
#include "FocusTest.h"
#include "Screen.h"

#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <set>
#include <vector>

namespace embedding {

namespace {

using tv::TavixCommandConstants;
using tv::TavixHost;

constexpr int kNoJob = 123456;
constexpr int kWarmUpRounds = 30;
// A window of the viewer costs megabytes; one kept a round would show after a few rounds.
#ifdef __SANITIZE_ADDRESS__
constexpr long kGrowthAllowedKilobytes = 16L * 1024; // the sanitizer keeps books of its own, and finds leaks itself
#else
constexpr long kGrowthAllowedKilobytes = 4L * 1024;
#endif

int xErrors = 0;

int countXError(Display* display, XErrorEvent* error) {
    char text[200];
    XGetErrorText(display, error->error_code, text, sizeof text);
    std::printf("X error: %s, request %d\n", text, error->request_code);
    ++xErrors;
    return 0;
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
        testFocusWithoutControls(shell, user);
        testFocusWithoutSite(shell, user);
        testDialogs(shell, loop, sample, job);
        testOwnedWindows(shell);
        testDestroying(shell, sample, job);
    }
    check(xErrors == 0, "no X error");
    std::printf("%d failures\n", failedChecks());
    return failedChecks() == 0;
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
