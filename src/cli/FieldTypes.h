#pragma once

#include <string_view>

namespace tavix::cli {

/// The word for a field's type code (S, I, R, D, B) in lists; "" for a field without a type.
[[nodiscard]] constexpr std::string_view fieldTypeName(char code) {
    switch (code) {
    case 'S':
        return "text";
    case 'I':
        return "integer";
    case 'R':
        return "real";
    case 'D':
        return "date/time";
    case 'B':
        return "boolean";
    default:
        return "";
    }
}

[[nodiscard]] constexpr bool isNumericTypeCode(char code) {
    return code == 'I' || code == 'R';
}

} // namespace tavix::cli
