#pragma once

namespace tavix {

/// What fraction of the window's width the outer panes take, 0 to 1.
struct PaneRatios {
    double left = 0.25; ///< the navigator's
    double right = 0.2; ///< the table information pane's

    bool operator==(const PaneRatios&) const = default;
};

/// A pane from left to right, in pixels; the width is never negative.
struct PaneSpan {
    int x = 0;
    int width = 0;

    bool operator==(const PaneSpan&) const = default;
};

enum class Splitter { None, Left, Right };

inline constexpr int kSplitterWidth = 6;

/// Where everything stands in a window of some width. All panes have the window's full height.
struct PaneLayout {
    int width = 0;         ///< of the window
    bool hasInfo = false;  ///< there is a table information pane, and with it a right splitter
    int leftSplitter = 0;  ///< left edge of the bar
    int rightSplitter = 0; ///< left edge of the bar; means nothing without the pane
    PaneSpan navigator;
    PaneSpan report;
    PaneSpan info;

    bool operator==(const PaneLayout&) const = default;
};

[[nodiscard]] PaneLayout layOutPanes(int width, const PaneRatios& ratios, bool hasInfo);

/// The bar below x; where both lie over each other, the left one.
[[nodiscard]] Splitter splitterAt(int x, const PaneLayout& layout);
/// How far the middle of the bar may follow the mouse at x.
[[nodiscard]] int clampedDrag(Splitter splitter, int x, const PaneLayout& layout);
/// The ratios after the bar was let go at a clamped x; the window is to be laid out anew with them.
[[nodiscard]] PaneRatios ratiosAfterDrag(Splitter splitter, int dragX, const PaneRatios& ratios, int width);
/// The left edge of a bar whose middle is dragged to x.
[[nodiscard]] constexpr int splitterOfDrag(int dragX) {
    return dragX - kSplitterWidth / 2;
}

} // namespace tavix
