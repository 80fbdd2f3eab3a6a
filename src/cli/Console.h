#pragma once

#include <string_view>

/// What is said to the user beside the result: on standard error.
namespace tavix::cli {

/// A line "tavix: TEXT".
void say(std::string_view text);
/// A line as it stands, controls made harmless.
void sayPlain(std::string_view line);

/// Asks on the terminal; anything but y or yes is no. False too when the user interrupts or ends the input.
[[nodiscard]] bool askYesNo(std::string_view question);
/// There is someone to ask.
[[nodiscard]] bool canAsk();

} // namespace tavix::cli
