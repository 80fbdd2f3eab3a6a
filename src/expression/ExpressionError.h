#pragma once

#include <string>

namespace tavix::expression {

/// A position in an expression's text: lines and columns count from 1, columns in code points.
struct Position {
    int line = 1;
    int column = 1;

    bool operator==(const Position&) const = default;
};

/// Why a text is not a valid expression, in words for its author.
struct ExpressionError {
    std::string message;
    int line = 1;
    int column = 1;

    bool operator==(const ExpressionError&) const = default;
};

/// "line 2, column 5: there is no field `Vlaue`".
[[nodiscard]] std::string describe(const ExpressionError& error);

} // namespace tavix::expression
