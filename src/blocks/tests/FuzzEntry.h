#pragma once

#include <string_view>

namespace tavix::expression {

/// Compiles the text both ways and evaluates it for a few rows, by row and by block; aborts when these do not agree.
void fuzzExpression(std::string_view text);

} // namespace tavix::expression
