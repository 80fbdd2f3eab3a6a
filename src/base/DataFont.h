#pragma once

#include <string>

namespace tavix {

/// The font that a user chose for figures. An empty name means the pane's own font.
struct DataFont {
    std::string name;
    int charSet = 1;        ///< a number that other programs store with the font; kept, never used
    int tenthsOfPoint = 90; ///< tenths of a point: 90 is 9 points
    bool bold = false;
    bool italic = false;

    bool operator==(const DataFont&) const = default;
};

} // namespace tavix
