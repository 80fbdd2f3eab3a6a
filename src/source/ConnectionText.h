#pragma once

#include "base/Result.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavix::source {

/// How to reach a database through ODBC: settings such as "DSN=shop" or "Driver=...;Database=...".
class ConnectionText {
  public:
    /// The name of a data source, or a connection string: settings KEY=VALUE separated by semicolons. A value that
    /// contains a semicolon is in braces, with closing braces doubled.
    [[nodiscard]] static Result<ConnectionText> parse(std::string_view text);

    /// Null without such a setting. Keys ignore case.
    [[nodiscard]] const std::string* find(std::string_view key) const;
    /// Adds the setting or changes its value.
    void set(std::string_view key, std::string_view value);
    void setIfAbsent(std::string_view key, std::string_view value);

    /// Whether a setting is a password or similar, or contains one.
    [[nodiscard]] bool holdsPassword() const;
    /// The string for the driver manager.
    [[nodiscard]] std::string text() const;
    /// Without user, password and similar; may be stored and shown.
    [[nodiscard]] std::string publicText() const;
    /// Empty if it has none.
    [[nodiscard]] std::string user() const;

  private:
    struct Setting {
        std::string key;
        std::string value;
    };

    std::vector<Setting> m_settings;
};

} // namespace tavix::source
