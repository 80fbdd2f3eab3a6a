#pragma once

#include "base/KvbDatavar.h"
#include "base/LibraryDate.h"

namespace tavix::cli {

/// "2026-11-21 08:15:00" in local time; null for an empty date.
[[nodiscard]] KvbDatavar shownDate(LibraryDate date);

} // namespace tavix::cli
