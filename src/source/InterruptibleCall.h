#pragma once

#include "source/Credentials.h"

#include <functional>

namespace tavix::source {

/// Runs `work` on another thread while this one asks `keepGoing`; after a false, calls `interrupt` repeatedly until the
/// work has ended. Returns whether it was interrupted. Without `keepGoing`, runs the work on this thread.
bool runInterruptibly(const std::function<void()>& work, const KeepGoing& keepGoing,
                      const std::function<void()>& interrupt);

} // namespace tavix::source
