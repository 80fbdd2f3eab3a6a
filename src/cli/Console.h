#pragma once

#include <string_view>

/// Messages to the user, which go to standard error to keep them apart from the result.
namespace tavix::cli {

/// A line "tavix: TEXT".
void say(std::string_view text);
/// A line without a prefix. Control characters are escaped.
void sayPlain(std::string_view line);

/// Asks on the terminal. True for y or yes; false for any other answer, an interruption and the end of the input.
[[nodiscard]] bool askYesNo(std::string_view question);
/// Whether standard input and standard error are a terminal.
[[nodiscard]] bool canAsk();

} // namespace tavix::cli
