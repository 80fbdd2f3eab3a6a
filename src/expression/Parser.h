#pragma once

#include "expression/ExpressionError.h"
#include "expression/Syntax.h"

#include <memory>
#include <optional>
#include <string_view>

namespace tavix::expression {

/// Limits the nesting, so that no text can exhaust the stack.
inline constexpr int kDeepestNesting = 200;
/// The most values that a chain of + - * / % joins. They nest to the left, as does the evaluation.
inline constexpr int kLongestChain = 1000;

struct Parsed {
    std::unique_ptr<Syntax> tree; ///< null when there is an error
    std::optional<ExpressionError> error;
};

/// Parses the text by the grammar of docs/expressions.md.
[[nodiscard]] Parsed parse(std::string_view text);

} // namespace tavix::expression
