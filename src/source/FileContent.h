#pragma once

#include "source/EncodingDetector.h"

#include <optional>
#include <string_view>

namespace tavix::source {

/// Something other than text that a file was found to hold.
struct ForeignContent {
    std::string_view name;   ///< as "a PNG image"
    std::string_view advice; ///< how to profile what is in it; "" when there is nothing to say

    bool operator==(const ForeignContent&) const = default;
};

/// Judges by the first bytes, at best a MiB of them, and by how their encoding was found. Text with a few control
/// characters is text still, and so is one that uses some as delimiters.
[[nodiscard]] std::optional<ForeignContent> foreignContent(std::string_view start, EncodingReason reason);

} // namespace tavix::source
