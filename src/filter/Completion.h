#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Function names that are offered while an expression is written.
namespace tavix {

/// The beginning of a name at the end of `written`, the text before the caret. Empty inside a quoted text, a field's
/// name, a comment or a number, and for a complete word of the language such as "if".
[[nodiscard]] std::string_view NameBeingWritten(std::string_view written);

/// Whether the `count` names that begin with the prefix are offered, of which `first` is the first. `wasAskedFor`: by a
/// key, else because a character was typed.
[[nodiscard]] bool OffersNames(std::string_view prefix, bool wasAskedFor, std::size_t count, std::string_view first);

/// What replaces the prefix: the name with a parenthesis, unless one follows already.
[[nodiscard]] std::string CompletedName(std::string_view name, bool isBeforeParenthesis);

} // namespace tavix
