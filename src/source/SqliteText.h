#pragma once

#include <optional>
#include <string>
#include <string_view>

/// The values of SQLite as texts. A column there may hold a value of any type in each of its rows, whatever its
/// declaration says.
namespace tavix::source {

/// The SQL of a value's text: numbers as the engine writes them, bytes as hexadecimal digits. `name` is quoted. Drivers
/// end a text at its first NUL, so a text with one comes in a form that decodedNulText() takes back.
[[nodiscard]] std::string sqliteTextOf(const std::string& name);

/// The text behind that form; nothing for any other text.
[[nodiscard]] std::optional<std::string> decodedNulText(std::string_view text);

/// A condition that every value with this text meets, of whatever type it and its column are, and that an index on the
/// column serves: all values that are written so. One `?` for the text; empty when there is no such condition.
[[nodiscard]] std::string sqliteIndexCondition(const std::string& name, std::string_view text);

/// Whether a driver passes the text to the engine, and an equal one back, unchanged.
[[nodiscard]] bool isSentUnchanged(std::string_view text);

} // namespace tavix::source
