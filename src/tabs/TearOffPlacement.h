#pragma once

namespace tavix {

/// In pixels of the desktop.
struct ScreenRect {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    bool operator==(const ScreenRect&) const = default;
};

/// Where the window goes into which a view is detached: a little to the right of the view and above it, moved inside
/// the right and the upper edge of the desktop. The size is the view's.
[[nodiscard]] ScreenRect placeTearOff(const ScreenRect& view, const ScreenRect& desktop);

} // namespace tavix
