#pragma once

#include <string>

namespace tavix {

/// The font that a user chose for figures. An empty name stands for the font of the pane itself.
struct DataFont {
    std::string name;
    int charSet = 1;        ///< a number that other programs keep with the font; carried, never used
    int tenthsOfPoint = 90; ///< 90 is 9 points
    bool bold = false;
    bool italic = false;

    bool operator==(const DataFont&) const = default;
};

} // namespace tavix
