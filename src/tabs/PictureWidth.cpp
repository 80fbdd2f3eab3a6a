#include "tabs/PictureWidth.h"

#include <algorithm>

namespace tavix {

namespace {

/// The most of the tab that a picture takes by itself.
constexpr double kMostShare = 0.62;
constexpr int kLeastList = 240;

} // namespace

int pictureWidth(int total, int listNeed, int chosen) {
    if (total < kLeastWithPicture)
        return 0;
    if (chosen > 0)
        return std::clamp(chosen, kLeastPicture, total - kLeastList);
    const int rest = total - std::max(listNeed, kLeastList);
    return rest < kLeastPicture ? 0 : std::min(rest, static_cast<int>(total * kMostShare));
}

} // namespace tavix
