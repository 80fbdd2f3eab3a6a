#pragma once

#include <string>
#include <string_view>

/// What to write here in place of what other languages have. Empty when there is nothing to say.
namespace tavix::expression {

/// For a function that does not exist: "write length".
[[nodiscard]] std::string_view hintForFunction(std::string_view name);
/// For a word where a value ended: "write isnull(...)".
[[nodiscard]] std::string_view hintForWord(std::string_view word);

/// For a word where a value should stand: "write the date ...".
[[nodiscard]] std::string_view hintForName(std::string_view name);

inline constexpr std::string_view kCommentHint = "comments stand between /* and */";

/// "there is no function len; write length". `written` may be in any case.
[[nodiscard]] std::string noFunction(std::string_view written);

/// "; write length", or nothing.
[[nodiscard]] std::string behindSemicolon(std::string_view hint);

} // namespace tavix::expression
