#pragma once

namespace tavix::cli {

/// Records the first SIGINT or SIGTERM instead of ending the process. A second one ends it at once, which is safe for
/// every repository.
void watchSignals();
/// Whether such a signal has arrived.
[[nodiscard]] bool isInterrupted();
/// Throws CommandError with ExitCode::Cancelled once such a signal has arrived.
void stopIfInterrupted();

} // namespace tavix::cli
