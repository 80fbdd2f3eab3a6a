#include "tabs/TearOffPlacement.h"

namespace tavix {

namespace {

constexpr int kOffset = 50;

} // namespace

ScreenRect placeTearOff(const ScreenRect& view, const ScreenRect& desktop) {
    ScreenRect placed = view;
    placed.x += kOffset;
    placed.y -= kOffset;
    if (const int beyond = placed.x + placed.width - (desktop.x + desktop.width); beyond > 0)
        placed.x -= beyond;
    if (const int above = desktop.y - placed.y; above > 0)
        placed.y += above;
    return placed;
}

} // namespace tavix
