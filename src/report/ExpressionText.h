#pragma once

#include <string>
#include <string_view>

/// Parts of the expression language as text: docs/expressions.md.
namespace tavix {

/// A field, in grave accents.
[[nodiscard]] std::string fieldText(std::string_view name);

/// An expression whose value is this text, in single quotes. A text that ends in backslashes becomes a call, because a
/// text in quotes cannot.
[[nodiscard]] std::string literalText(std::string_view text);

/// A regular expression that matches this character and no other.
[[nodiscard]] std::string regularText(std::string_view character);

} // namespace tavix
