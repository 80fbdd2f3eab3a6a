#pragma once

#include "expression/ExpressionError.h"
#include "expression/Syntax.h"

#include <memory>
#include <optional>
#include <string_view>

namespace tavix::expression {

/// Deeper nesting is refused, so that no text can exhaust the stack.
inline constexpr int kDeepestNesting = 200;
/// Values that + - * / % join one after the other. They nest to the left, as the evaluation does.
inline constexpr int kLongestChain = 1000;

struct Parsed {
    std::unique_ptr<Syntax> tree; ///< null when there is an error
    std::optional<ExpressionError> error;
};

/// Reads the text as the grammar of docs/expressions.md has it.
[[nodiscard]] Parsed parse(std::string_view text);

} // namespace tavix::expression
