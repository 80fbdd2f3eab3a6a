#pragma once

#include "base/Result.h"

#include <functional>
#include <span>

namespace tavix::profiling {

using Task = std::function<Status()>;

/// Does the tasks, which must not depend on each other, by up to `threads` threads, of which the caller is one. They
/// are begun in their order. After a failure no further one is begun, and the first failure is returned.
[[nodiscard]] Status doTogether(std::span<const Task> tasks, unsigned threads);

} // namespace tavix::profiling
