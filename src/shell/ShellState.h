#pragma once

#include "base/SettingsStore.h"

#include <string>
#include <vector>

namespace tavix::shell {

/// The settings that the shell keeps in a section of its own.
class ShellState {
  public:
    explicit ShellState(SettingsStore& store) : m_store(store) {}

    /// At most eight, the latest first, without duplicates.
    [[nodiscard]] std::vector<std::string> recentRepositories() const;
    void addRecentRepository(const std::string& path);
    void removeRecentRepository(const std::string& path);

    /// Size and position of the window, encoded by the window; "" the first time.
    [[nodiscard]] std::string windowGeometry() const;
    void setWindowGeometry(const std::string& geometry);

  private:
    void writeRecent(const std::vector<std::string>& paths);

    SettingsStore& m_store;
};

} // namespace tavix::shell
