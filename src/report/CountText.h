#pragma once

#include "base/NumberText.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace tavix {

/// A count in groups of three digits: "1,234,567".
[[nodiscard]] inline std::string groupedCount(std::int64_t count) {
    return formatGrouped(count);
}

/// A count with its noun: "1 table", "3 tables".
[[nodiscard]] inline std::string countOf(std::int64_t count, std::string_view noun) {
    std::string text = groupedCount(count);
    text += ' ';
    text += noun;
    if (count != 1)
        text += 's';
    return text;
}

} // namespace tavix
