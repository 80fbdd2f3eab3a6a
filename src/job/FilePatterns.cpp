#include "job/FilePatterns.h"

#include "base/Ascii.h"

#include <fmt/format.h>
#include <glob.h>

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace tavix::job {

namespace {

constexpr std::size_t kMostFiles = 100'000;
constexpr std::size_t kLongestJoined = 1000;

Error tooMany(const std::string& path) {
    return Error{fmt::format("\"{}\" matches more than {} files.", path, kMostFiles)};
}

/// Frees the result of glob().
struct Matches {
    glob_t found{};
    Matches() = default;
    ~Matches() { ::globfree(&found); }
    Matches(const Matches&) = delete;
    Matches& operator=(const Matches&) = delete;
};

} // namespace

bool isPattern(const std::string& path) {
    std::error_code failure;
    return path.find_first_of("*?[") != std::string::npos && !std::filesystem::exists(path, failure);
}

Result<std::vector<std::string>> matchingFiles(const std::string& path) {
    if (!isPattern(path))
        return std::vector<std::string>{path};
    Matches matches;
    // Sorted below, since glob() would sort by the locale.
    const int code = ::glob(path.c_str(), GLOB_NOSORT | GLOB_NOESCAPE, nullptr, &matches.found);
    if (code != 0 && code != GLOB_NOMATCH)
        return Error{fmt::format("The files of \"{}\" cannot be listed.", path)};
    std::vector<std::string> files;
    for (std::size_t i = 0; i < matches.found.gl_pathc; ++i) {
        std::error_code failure;
        if (!std::filesystem::is_directory(matches.found.gl_pathv[i], failure))
            files.emplace_back(matches.found.gl_pathv[i]);
        if (files.size() > kMostFiles)
            return tooMany(path);
    }
    if (files.empty())
        return Error{fmt::format("No file matches \"{}\".", path)};
    std::sort(files.begin(), files.end());
    return files;
}

Result<std::vector<std::string>> filesOfFolder(const std::string& folder) {
    std::error_code failure;
    std::vector<std::string> files;
    std::filesystem::directory_iterator entry(folder, failure);
    for (; !failure && entry != std::filesystem::directory_iterator(); entry.increment(failure)) {
        std::error_code ignored;
        if (!entry->path().filename().string().starts_with('.') && entry->is_regular_file(ignored))
            files.push_back(entry->path().string());
        if (files.size() > kMostFiles)
            return tooMany(folder);
    }
    if (failure)
        return Error{fmt::format("The folder \"{}\" cannot be read: {}", folder, failure.message())};
    if (files.empty())
        return Error{fmt::format("The folder \"{}\" has no files.", folder)};
    std::sort(files.begin(), files.end());
    return files;
}

std::string tableNameOf(const std::string& path) {
    std::filesystem::path name = std::filesystem::path(path).filename();
    const std::string ending = asciiLower(name.extension().string());
    if (ending == ".gz" || ending == ".bz2" || ending == ".xz" || ending == ".zst")
        name = name.stem();
    return name.stem().string();
}

std::string joinedPaths(std::span<const std::string> paths) {
    std::string text;
    for (const std::string& path : paths) {
        if (!text.empty() && text.size() + path.size() > kLongestJoined)
            return text + "; ...";
        text += (text.empty() ? "" : "; ") + path;
    }
    return text;
}

} // namespace tavix::job
