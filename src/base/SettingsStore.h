#pragma once

#include "base/Result.h"

#include <memory>
#include <string>
#include <string_view>

namespace tavix {

/// Text values by section and key. The case of sections and keys is not significant.
class SettingsStore {
  public:
    virtual ~SettingsStore() = default;

    /// The value; "" without one.
    [[nodiscard]] virtual std::string read(std::string_view section, std::string_view key) const = 0;
    /// read() returns the new value from now on, even when it could not be stored.
    virtual Status write(std::string_view section, std::string_view key, std::string_view value) = 0;
};

/// A store in an INI-like UTF-8 file, which several stores and processes may share: a read sees what others have
/// written, and a write changes one value of the current file under a lock (PATH.lock). The file is replaced as a
/// whole, so a crash leaves either the old or the new one. A missing file is an empty store. A file that cannot be
/// read, is binary or is larger than 4 MiB is an error and stays unchanged.
[[nodiscard]] Result<std::unique_ptr<SettingsStore>> openSettingsFile(const std::string& path);

/// The path of the user's settings file: $TAVIX_SETTINGS, else $XDG_CONFIG_HOME/tavix/settings.ini, else
/// ~/.config/tavix/settings.ini.
[[nodiscard]] std::string defaultSettingsPath();

/// A store in memory only.
[[nodiscard]] std::unique_ptr<SettingsStore> makeMemorySettings();

} // namespace tavix
