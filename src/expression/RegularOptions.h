#pragma once

#include "base/Result.h"

#include <fmt/format.h>
#include <re2/re2.h>

#include <cstdint>
#include <string_view>

namespace tavix::expression {

/// How all regular expressions of the language are compiled. `memory`: bytes, including those while one matches.
[[nodiscard]] inline re2::RE2::Options regularOptions(std::int64_t memory) {
    re2::RE2::Options made;
    made.set_log_errors(false);
    made.set_max_mem(memory);
    made.set_dot_nl(true);
    return made;
}

[[nodiscard]] inline re2::StringPiece pieceOf(std::string_view text) {
    return {text.data(), text.size()};
}

/// The message for the author of a pattern that RE2 refuses.
[[nodiscard]] inline Error notARegularExpression(const re2::RE2& pattern) {
    return Error{fmt::format("this is not a regular expression: {}", pattern.error())};
}

} // namespace tavix::expression
