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

/// Where the window of a detached view opens: offset to the right of the view and above it, but within the right and
/// the upper edge of the desktop. It has the view's size.
[[nodiscard]] ScreenRect placeTearOff(const ScreenRect& view, const ScreenRect& desktop);

} // namespace tavix
