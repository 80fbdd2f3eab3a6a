#pragma once

namespace tavix {

/// The shares of the window's width that the outer panes take, 0 to 1.
struct PaneRatios {
    double left = 0.25; ///< the navigator's
    double right = 0.2; ///< the table information pane's

    bool operator==(const PaneRatios&) const = default;
};

/// Up to this width, in pixels, the navigator that nobody has moved takes its share of the window; a wider window gives
/// the rest to the report.
inline constexpr int kWideWindow = 1280;
/// The navigator's ratio for a window of this width while the user has not moved its bar.
[[nodiscard]] double unmovedNavigatorRatio(int width);

/// The horizontal extent of a pane in pixels; the width is never negative.
struct PaneSpan {
    int x = 0;
    int width = 0;

    bool operator==(const PaneSpan&) const = default;
};

enum class Splitter { None, Left, Right };

inline constexpr int kSplitterWidth = 6;

/// The positions of panes and splitters for one width of the window. All panes have the window's full height.
struct PaneLayout {
    int width = 0;         ///< of the window
    bool hasInfo = false;  ///< there is a table information pane, and with it a right splitter
    int leftSplitter = 0;  ///< left edge of the bar
    int rightSplitter = 0; ///< left edge of the bar; unused without the pane
    PaneSpan navigator;
    PaneSpan report;
    PaneSpan info;

    bool operator==(const PaneLayout&) const = default;
};

[[nodiscard]] PaneLayout layOutPanes(int width, const PaneRatios& ratios, bool hasInfo);

/// The bar at x; the left one where both overlap.
[[nodiscard]] Splitter splitterAt(int x, const PaneLayout& layout);
/// The position closest to x that the middle of the bar may take.
[[nodiscard]] int clampedDrag(Splitter splitter, int x, const PaneLayout& layout);
/// The ratios after the bar was released at `dragX`, which must be clamped. The caller lays out the window with them.
[[nodiscard]] PaneRatios ratiosAfterDrag(Splitter splitter, int dragX, const PaneRatios& ratios, int width);
/// The left edge of a bar whose middle is dragged to x.
[[nodiscard]] constexpr int splitterOfDrag(int dragX) {
    return dragX - kSplitterWidth / 2;
}

} // namespace tavix
