#pragma once

#include <bitset>
#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

namespace tavix::expression {

using AsciiSet = std::bitset<128>;

/// A regular expression as a tree.
struct PatternPart {
    enum class Kind { Bytes, Sequence, Choice, Repeat };
    static constexpr int kUnlimited = -1;

    Kind kind = Kind::Sequence;
    AsciiSet bytes;                 ///< of Bytes: one of these
    std::vector<PatternPart> parts; ///< Repeat has one
    int least = 0;
    int most = kUnlimited;
};

/// Parses a valid regular expression that must match whole texts. None when it needs more than PatternPart can express.
[[nodiscard]] std::optional<PatternPart> parseSimplePattern(std::string_view pattern);

} // namespace tavix::expression
