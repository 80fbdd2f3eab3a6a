#pragma once

namespace tavix {

/// Below this width of a tab there is no picture beside its list.
inline constexpr int kLeastWithPicture = 520;
inline constexpr int kLeastPicture = 240;
/// Of a closed picture, for the button that opens it.
inline constexpr int kClosedPicture = 26;

/// The width of the picture beside a list in a tab of width `total`; 0 when there is no room for it. The list keeps
/// `listNeed`, the width of its columns. `chosen` is the width that the user gave the picture, 0 without one; then the
/// list may get less. All in pixels at 96 dpi.
[[nodiscard]] int pictureWidth(int total, int listNeed, int chosen);

} // namespace tavix
