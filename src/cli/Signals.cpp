#include "cli/Signals.h"

#include "cli/CommandError.h"

#include <csignal>

namespace tavix::cli {

namespace {

volatile std::sig_atomic_t g_interrupted = 0;

void remember(int) {
    g_interrupted = 1;
}

} // namespace

void watchSignals() {
    struct sigaction action {};
    action.sa_handler = remember;
    // Without SA_RESTART a signal also ends a read from the terminal.
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    ::sigaction(SIGINT, &action, nullptr);
    ::sigaction(SIGTERM, &action, nullptr);
}

bool isInterrupted() {
    return g_interrupted != 0;
}

void stopIfInterrupted() {
    if (isInterrupted())
        throw CommandError(ExitCode::Cancelled, "cancelled");
}

} // namespace tavix::cli
