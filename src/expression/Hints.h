#pragma once

#include <string>
#include <string_view>

/// Hints on what to write instead of constructs of other languages. Empty when there is none.
namespace tavix::expression {

/// For a function that does not exist: "write length".
[[nodiscard]] std::string_view hintForFunction(std::string_view name);
/// For a word after a complete value: "write isnull(...)".
[[nodiscard]] std::string_view hintForWord(std::string_view word);

/// For a word where a value is expected: "write the date ...".
[[nodiscard]] std::string_view hintForName(std::string_view name);

inline constexpr std::string_view kCommentHint = "write comments between /* and */";

/// "there is no function len; write length". `written` may be in any case.
[[nodiscard]] std::string noFunction(std::string_view written);

/// "; write length", or nothing.
[[nodiscard]] std::string afterSemicolon(std::string_view hint);

} // namespace tavix::expression
