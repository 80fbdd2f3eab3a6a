#pragma once

#include "source/EncodingDetector.h"

#include <optional>
#include <string_view>

namespace tavix::source {

/// Content of a file that is not text.
struct ForeignContent {
    std::string_view name;   ///< such as "a PNG image"
    std::string_view advice; ///< how to profile its content; "" without advice

    bool operator==(const ForeignContent&) const = default;
};

/// Judges by the first bytes, ideally a MiB, and by how their encoding was found. A few control characters, or some as
/// delimiters, do not make a text something else.
[[nodiscard]] std::optional<ForeignContent> foreignContent(std::string_view start, EncodingReason reason);

} // namespace tavix::source
