#pragma once

#include "base/KvbDatavar.h"
#include "base/LibraryDate.h"

namespace tavix::cli {

/// "2026-11-21 08:15:00", local time; null for a date that is none.
[[nodiscard]] KvbDatavar dateText(LibraryDate date);

} // namespace tavix::cli
