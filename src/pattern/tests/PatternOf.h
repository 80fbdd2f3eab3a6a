#pragma once

#include "pattern/CharacterPattern.h"

#include <string>
#include <string_view>

namespace tavix::testing {

inline std::string patternOf(std::string_view utf8) {
    std::string pattern;
    pattern::appendCharacterPattern(pattern, utf8);
    return pattern;
}

} // namespace tavix::testing
