#pragma once

#include <string>
#include <string_view>

/// Texts as parts of a YAML document.
namespace tavix {

/// A scalar that every parser reads as this text, in one line: plain, in single quotes, or, with characters that are
/// not printable, in double quotes. The text must be UTF-8 without a zero byte.
[[nodiscard]] std::string yamlScalar(std::string_view text);

/// The text as it may stand in a comment, in one line: characters that are not printable are written as escapes.
[[nodiscard]] std::string yamlComment(std::string_view text);

/// Whether yamlScalar() can write it.
[[nodiscard]] bool isYamlText(std::string_view text);

} // namespace tavix
