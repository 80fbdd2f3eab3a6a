#pragma once

#include "base/SettingsStore.h"

namespace tavix {

/// Whether figures are displayed with signs for the characters that are not seen otherwise.
[[nodiscard]] bool readShowsInvisible(const SettingsStore& settings);
Status writeShowsInvisible(SettingsStore& settings, bool shows);

} // namespace tavix
