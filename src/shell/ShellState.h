#pragma once

#include "base/SettingsStore.h"

#include <string>
#include <vector>

namespace tavix::shell {

/// What the shell remembers between two starts, in a section of its own.
class ShellState {
  public:
    explicit ShellState(SettingsStore& store) : m_store(store) {}

    /// Latest first, without doubles, at most eight.
    [[nodiscard]] std::vector<std::string> recentRepositories() const;
    void addRecentRepository(const std::string& path);
    void removeRecentRepository(const std::string& path);

    /// The window's size and place in a form that only the window understands; "" the first time.
    [[nodiscard]] std::string windowGeometry() const;
    void setWindowGeometry(const std::string& geometry);

  private:
    void writeRecent(const std::vector<std::string>& paths);

    SettingsStore& m_store;
};

} // namespace tavix::shell
