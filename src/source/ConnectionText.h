#pragma once

#include "base/Result.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavix::source {

/// How a database is reached through ODBC: settings as "DSN=shop" or "Driver=...;Database=...".
class ConnectionText {
  public:
    /// The name of a data source, or a connection string: settings KEY=VALUE separated by semicolons, a value with a
    /// semicolon in it in braces, a closing brace in those doubled.
    [[nodiscard]] static Result<ConnectionText> parse(std::string_view text);

    /// Null when there is no such setting. Keys are the same in any case.
    [[nodiscard]] const std::string* find(std::string_view key) const;
    /// Adds the setting, or gives it another value.
    void set(std::string_view key, std::string_view value);
    void setIfAbsent(std::string_view key, std::string_view value);

    /// Whether one of the settings is a password or the like, or contains one.
    [[nodiscard]] bool holdsPassword() const;
    /// The string for the driver manager.
    [[nodiscard]] std::string text() const;
    /// Without user, password and the like: what may be stored and shown.
    [[nodiscard]] std::string publicText() const;
    /// Empty when it names none.
    [[nodiscard]] std::string user() const;

  private:
    struct Setting {
        std::string key;
        std::string value;
    };

    std::vector<Setting> m_settings;
};

} // namespace tavix::source
