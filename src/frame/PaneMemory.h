#pragma once

#include "base/SettingsStore.h"
#include "frame/PaneGeometry.h"

namespace tavix {

/// The layout that the frame keeps between sessions.
struct PaneMemory {
    PaneRatios ratios;
    bool isNavigatorMoved = false; ///< the user has chosen the navigator's ratio; else it is not stored
    bool showsInfo = false;

    bool operator==(const PaneMemory&) const = default;
};

/// A ratio that is missing or outside 0 to 1 gets its default.
[[nodiscard]] PaneMemory readPaneMemory(const SettingsStore& settings);
Status writePaneMemory(SettingsStore& settings, const PaneMemory& memory);

} // namespace tavix
