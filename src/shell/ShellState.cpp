#include "shell/ShellState.h"

#include "base/NumberText.h"

#include <algorithm>

namespace tavix::shell {

namespace {

constexpr std::string_view kSection = "SHELL";
constexpr std::size_t kMostRecent = 8;

std::string recentKey(std::size_t index) {
    return "Recent" + formatInteger(static_cast<std::int64_t>(index));
}

} // namespace

std::vector<std::string> ShellState::recentRepositories() const {
    std::vector<std::string> paths;
    for (std::size_t i = 0; i < kMostRecent; ++i) {
        std::string path = m_store.read(kSection, recentKey(i));
        if (!path.empty() && std::find(paths.begin(), paths.end(), path) == paths.end())
            paths.push_back(std::move(path));
    }
    return paths;
}

void ShellState::addRecentRepository(const std::string& path) {
    std::vector<std::string> paths = recentRepositories();
    if (!paths.empty() && paths.front() == path)
        return;
    paths.erase(std::remove(paths.begin(), paths.end(), path), paths.end());
    paths.insert(paths.begin(), path);
    writeRecent(paths);
}

void ShellState::removeRecentRepository(const std::string& path) {
    std::vector<std::string> paths = recentRepositories();
    if (std::find(paths.begin(), paths.end(), path) == paths.end())
        return;
    paths.erase(std::remove(paths.begin(), paths.end(), path), paths.end());
    writeRecent(paths);
}

// A failure is not reported here: a settings file that cannot be written is reported at the start.
void ShellState::writeRecent(const std::vector<std::string>& paths) {
    for (std::size_t i = 0; i < kMostRecent; ++i)
        static_cast<void>(m_store.write(kSection, recentKey(i), i < paths.size() ? paths[i] : std::string()));
}

std::string ShellState::windowGeometry() const {
    return m_store.read(kSection, "WindowGeometry");
}

void ShellState::setWindowGeometry(const std::string& geometry) {
    if (geometry != windowGeometry())
        static_cast<void>(m_store.write(kSection, "WindowGeometry", geometry));
}

} // namespace tavix::shell
