#pragma once

#include "source/Credentials.h"

#include <functional>

namespace tavix::source {

/// Runs `work` on a thread of its own while this one asks `keepGoing`; after a false it calls `interrupt` again and
/// again until the work has ended. Whether it was interrupted. Without `keepGoing` the work is simply done.
bool runInterruptibly(const std::function<void()>& work, const KeepGoing& keepGoing,
                      const std::function<void()>& interrupt);

} // namespace tavix::source
