#pragma once

#include "base/Result.h"
#include "profiling/StopSignal.h"

#include <functional>
#include <span>

namespace tavix::profiling {

using Task = std::function<Status()>;

/// Does the tasks, which must not depend on each other, by up to `threads` threads, of which the caller is one. They
/// are begun in their order. After a failure no further one is begun, and the first failure is returned. The tasks have
/// to heed `stop` themselves; the caller asks it while it waits for the others.
[[nodiscard]] Status doTogether(std::span<const Task> tasks, unsigned threads, StopSignal& stop);

} // namespace tavix::profiling
