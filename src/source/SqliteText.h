#pragma once

#include <optional>
#include <string>
#include <string_view>

/// Values of SQLite as texts. Whatever its declaration, each row of a column may hold a value of another type.
namespace tavix::source {

/// The SQL of a value's text: numbers as the engine writes them, bytes as hexadecimal digits. `name` is quoted. Drivers
/// end a text at its first NUL, so a text with NULs is encoded; decodedNulText() decodes it.
[[nodiscard]] std::string sqliteTextOf(const std::string& name);

/// The text encoded so; nothing for any other text.
[[nodiscard]] std::optional<std::string> decodedNulText(std::string_view text);

/// A condition that every value with this text meets, whatever its type and its column's, and that an index on the
/// column serves: equality with all values that are written so. One `?` for the text; empty if there is no such
/// condition.
[[nodiscard]] std::string sqliteIndexCondition(const std::string& name, std::string_view text);

/// Whether a driver passes the text to the engine, and an equal one back, unchanged.
[[nodiscard]] bool isSentUnchanged(std::string_view text);

} // namespace tavix::source
