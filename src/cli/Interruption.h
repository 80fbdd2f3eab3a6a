#pragma once

namespace tavix::cli {

/// From now on the first SIGINT or SIGTERM is only remembered; a second one ends the process at once, which harms no
/// repository.
void watchForInterruption();
/// True once such a signal came.
[[nodiscard]] bool isInterrupted();
/// Throws CommandError with ExitCode::Cancelled once such a signal came.
void stopIfInterrupted();

} // namespace tavix::cli
