#include "profiling/RunSettings.h"

#include "base/DateTicks.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <thread>

namespace tavix::profiling {

namespace {

/// Bytes; half of the machine's memory when nothing is stated.
std::size_t memoryOf(const RunOptions& options) {
    if (options.memory > 0)
        return options.memory;
    const auto pages = ::sysconf(_SC_PHYS_PAGES);
    const auto pageSize = ::sysconf(_SC_PAGE_SIZE);
    constexpr std::size_t kWhenUnknown = std::size_t{1} << 30;
    return pages > 0 && pageSize > 0 ? static_cast<std::size_t>(pages) / 2 * static_cast<std::size_t>(pageSize)
                                     : kWhenUnknown;
}

std::string spillFolderOf(const RunOptions& options, const std::string& repositoryPath) {
    if (!options.spillFolder.empty())
        return options.spillFolder;
    if (const char* const folder = std::getenv("TMPDIR"); folder && *folder)
        return folder;
    const std::filesystem::path parent = std::filesystem::path(repositoryPath).parent_path();
    return parent.empty() ? "." : parent.string();
}

} // namespace

RunEngine::Settings engineSettings(const RunOptions& options, const std::string& repositoryPath, UtcTime now) {
    const unsigned threads = options.threads > 0 ? options.threads : std::max(1U, std::thread::hardware_concurrency());
    return {threads, memoryOf(options), spillFolderOf(options, repositoryPath), ticksOf(now)};
}

} // namespace tavix::profiling
