#pragma once

#include "base/SettingsStore.h"
#include "frame/PaneGeometry.h"

namespace tavix {

/// What the frame remembers from one start to the next.
struct PaneMemory {
    PaneRatios ratios;
    bool showsInfo = false;

    bool operator==(const PaneMemory&) const = default;
};

/// A ratio that is missing or outside 0 to 1 takes its default.
[[nodiscard]] PaneMemory readPaneMemory(const SettingsStore& settings);
Status writePaneMemory(SettingsStore& settings, const PaneMemory& memory);

} // namespace tavix
