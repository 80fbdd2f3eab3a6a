#include "DialogTest.h"

#include "Screen.h"

#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <thread>
#include <vector>

namespace embedding {

using tv::TavixCommandConstants;
using tv::TavixHost;

namespace {

// A dialog runs a loop of its own, so `act` is called from a watched descriptor. It may open another dialog; all are
// closed with Escape. False when no dialog was opened.
bool inDialog(XlibShell& shell, tv::TavixEventLoop& loop, TavixCommandConstants command,
              const std::function<void()>& act) {
    int ends[2];
    if (pipe(ends) != 0)
        std::abort();
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    bool seen = false;
    std::size_t turn = 0;
    User user(shell);
    loop.Watch(ends[0], [&] {
        const std::vector<Window> dialogs = dialogsOf(shell);
        if (!dialogs.empty() && !seen && shell.host().IsDialogOpen()) {
            seen = true;
            act();
        } else if (!dialogs.empty()) {
            XSetInputFocus(shell.display(), dialogs[turn++ % dialogs.size()], RevertToParent, CurrentTime);
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
    const bool handled = shell.host().ExecuteCommand(number(command));
    loop.Unwatch(ends[0]);
    close(ends[0]);
    close(ends[1]);
    return handled && seen;
}

// Opens the report in a window, with a field and its values selected.
bool openField(XlibShell& shell, const Sample& sample, int job) {
    const FileConnection connection(sample.repository);
    if (shell.topLevel() == 0 && !shell.open())
        return false;
    TavixHost& host = shell.host();
    if (!host.LoadReportForJob("text", job, &connection) ||
        !host.SelectTable(sample.source, "KVTK", "", "", sample.table))
        return false;
    const auto key = [&host](std::uintptr_t number, std::uint32_t modifiers = 0) {
        tv::NativeMessage message;
        message.Message = tv::NativeMessageId::KeyDown;
        message.WParam = number;
        message.Modifiers = modifiers;
        host.TranslateAccelerator(message);
    };
    host.SetInternalFocus();
    key(tv::NativeKey::Right);
    key(tv::NativeKey::Down);
    key(tv::NativeKey::PageDown, tv::NativeModifier::Control);
    return shell.stepUntil([&] { return isManaged(shell); }) &&
           host.ExecuteUpdateUICommand(number(TavixCommandConstants::Filter)).Enabled;
}

} // namespace

void testDialogs(XlibShell& shell, tv::TavixEventLoop& loop, const Sample& sample, int job) {
    struct Dialog {
        TavixCommandConstants command;
        const char* name;
    };
    constexpr Dialog kDialogs[] = {{TavixCommandConstants::Options, "Options"},
                                   {TavixCommandConstants::DeleteHistory, "Delete History"},
                                   {TavixCommandConstants::NoteCategories, "Note Categories"},
                                   {TavixCommandConstants::AddFieldNote, "Add Note"},
                                   {TavixCommandConstants::Filter, "Report Filter"}};
    const FileConnection connection(sample.repository);
    std::vector<bool> told;
    const auto token = shell.host().DialogEvent.Attach([&told](TavixHost&, bool isOpen) { told.push_back(isOpen); });
    for (const Dialog& dialog : kDialogs) {
        std::printf("%s\n", dialog.name);
        if (!check(openField(shell, sample, job), "a field is shown"))
            continue;
        TavixHost& host = shell.host();
        // The end of the previous round's last dialog is reported from the event loop.
        shell.stepUntil([&told] { return told.empty() || !told.back(); });
        told.clear();
        check(inDialog(shell, loop, dialog.command, [] {}) && !host.IsDialogOpen(),
              "belongs to the shell's window and is left with Escape");
        check(shell.stepUntil([&] { return told == std::vector<bool>{true, false}; }), "the shell is told of both");
        bool refused = false;
        check(inDialog(shell, loop, dialog.command,
                       [&] {
                           refused = host.ExecuteCommand(number(TavixCommandConstants::New)) &&
                                     !host.LoadReportForJob("text", job, &connection) &&
                                     !host.SetCurrentRun(host.GetCurrentRun() - 1);
                       }) &&
                  refused && host.HasReport(),
              "keeps the report from being closed or changed");
        check(inDialog(shell, loop, dialog.command, [&] { shell.closeViewFirst(); }) && !host.HasReport(),
              "goes when the view is destroyed");
        if (!check(openField(shell, sample, job), "and the field is shown again"))
            continue;
        check(inDialog(shell, loop, dialog.command, [&] { shell.closeWindowFirst(); }) &&
                  shell.stepUntil([&] { return !host.HasReport(); }),
              "goes with the shell's window");
        shell.closeViewFirst();
    }
    shell.host().DialogEvent.Detach(token);
    check(openField(shell, sample, job), "a field is shown");
}

void testOwnedWindows(XlibShell& shell) {
    User user(shell);
    check(shell.host().ExecuteCommand(number(TavixCommandConstants::DetachTabs)) &&
              shell.stepUntil([&] { return dialogsOf(shell).size() == 1; }),
          "a detached view belongs to the shell's window");
    const std::vector<Window> windows = dialogsOf(shell);
    if (windows.empty())
        return;
    XSetInputFocus(shell.display(), windows.front(), RevertToParent, CurrentTime);
    user.press(XK_Escape);
    check(shell.stepUntil([&] { return dialogsOf(shell).empty(); }), "and Escape closes it");
    // The picture is the last control; the list of the field's values comes before it and its button.
    shell.host().TabInto(tv::FocusNavigation::Last);
    tv::NativeMessage back;
    back.Message = tv::NativeMessageId::KeyDown;
    back.WParam = tv::NativeKey::Tab;
    back.Modifiers = tv::NativeModifier::Shift;
    shell.host().TranslateAccelerator(back);
    shell.host().TranslateAccelerator(back);
    tv::NativeMessage enter;
    enter.Message = tv::NativeMessageId::KeyDown;
    enter.WParam = tv::NativeKey::Down;
    shell.host().TranslateAccelerator(enter);
    enter.WParam = tv::NativeKey::Return;
    shell.host().TranslateAccelerator(enter);
    check(shell.stepUntil([&] { return dialogsOf(shell).size() == 1; }),
          "a window with the rows of a value belongs to the shell's window");
}

} // namespace embedding
