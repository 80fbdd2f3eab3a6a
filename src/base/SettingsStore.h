#pragma once

#include "base/Result.h"

#include <memory>
#include <string>
#include <string_view>

namespace tavix {

/// Text values by section and key, both compared ignoring case.
class SettingsStore {
  public:
    virtual ~SettingsStore() = default;

    /// The value; "" without one.
    [[nodiscard]] virtual std::string read(std::string_view section, std::string_view key) const = 0;
    /// This store reads the new value back at once, even if saving it fails.
    virtual Status write(std::string_view section, std::string_view key, std::string_view value) = 0;
};

/// A store in one INI-like UTF-8 file that several stores and processes may share: reads see what others have written,
/// and a write changes one value of the current file under a lock (PATH.lock). The file is replaced as a whole, so that
/// a crash leaves the old or the new one. A missing file is an empty store; one that cannot be read, is binary, or is
/// larger than 4 MiB is an error and is not changed.
[[nodiscard]] Result<std::unique_ptr<SettingsStore>> openSettingsFile(const std::string& path);

/// The path of the user's settings file: $TAVIX_SETTINGS, else $XDG_CONFIG_HOME/tavix/settings.ini, else
/// ~/.config/tavix/settings.ini.
[[nodiscard]] std::string defaultSettingsPath();

/// A store in memory only.
[[nodiscard]] std::unique_ptr<SettingsStore> makeMemorySettings();

} // namespace tavix
