#include "frame/PaneGeometry.h"

#include <algorithm>

namespace tavix {

namespace {

// A pane begins one pixel right of its left bar.
constexpr int kBarAndGap = kSplitterWidth + 1;

PaneSpan between(int from, int to) {
    return {from, std::max(0, to - from)};
}

int share(int width, double ratio) {
    return static_cast<int>(width * ratio);
}

bool covers(int splitter, int x) {
    return x >= splitter && x < splitter + kSplitterWidth;
}

} // namespace

double unmovedNavigatorRatio(int width) {
    const double preset = PaneRatios().left;
    // Half a pixel more, so that the product with the width is not truncated to one less.
    return width <= kWideWindow ? preset : (kWideWindow * preset + 0.5) / width;
}

PaneLayout layOutPanes(int width, const PaneRatios& ratios, bool hasInfo) {
    PaneLayout layout;
    layout.width = width;
    layout.hasInfo = hasInfo;
    layout.leftSplitter = share(width, ratios.left) - 2;
    layout.navigator = between(0, layout.leftSplitter);
    int reportEnd = width;
    if (hasInfo) {
        const int infoStart = width - share(width, ratios.right) + 3;
        layout.rightSplitter = reportEnd = infoStart - kBarAndGap;
        layout.info = between(infoStart, width);
    }
    layout.report = between(layout.leftSplitter + kBarAndGap, reportEnd);
    return layout;
}

Splitter splitterAt(int x, const PaneLayout& layout) {
    if (covers(layout.leftSplitter, x))
        return Splitter::Left;
    return layout.hasInfo && covers(layout.rightSplitter, x) ? Splitter::Right : Splitter::None;
}

int clampedDrag(Splitter splitter, int x, const PaneLayout& layout) {
    constexpr int kHalf = kSplitterWidth / 2;
    if (splitter == Splitter::Left) {
        if (x - kHalf < 0)
            return kHalf;
        // The bar may touch the window's edge but not the other bar.
        const int limit = layout.hasInfo ? layout.rightSplitter : layout.width;
        const bool isTooFar = layout.hasInfo ? x + kHalf >= limit : x + kHalf > limit;
        return isTooFar ? limit - 4 : x;
    }
    if (x - kHalf <= layout.leftSplitter + kSplitterWidth)
        return layout.leftSplitter + 10;
    return x + kHalf > layout.width ? layout.width - 4 : x;
}

PaneRatios ratiosAfterDrag(Splitter splitter, int dragX, const PaneRatios& ratios, int width) {
    PaneRatios after = ratios;
    if (width <= 0)
        return after;
    const double place = std::clamp(static_cast<double>(dragX) / width, 0.0, 1.0);
    if (splitter == Splitter::Left)
        after.left = place;
    else if (splitter == Splitter::Right)
        after.right = 1 - place;
    return after;
}

} // namespace tavix
