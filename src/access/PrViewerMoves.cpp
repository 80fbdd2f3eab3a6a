#include "access/MovedSources.h"
#include "access/PrViewerImpl.h"
#include "base/NumberText.h"
#include "source/FileStamp.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <utility>

namespace tavix {

namespace {

std::string absolutePath(const std::string& path) {
    std::error_code ignored;
    const std::filesystem::path absolute = std::filesystem::absolute(path, ignored);
    return absolute.empty() ? path : absolute.lexically_normal().string();
}

/// Opening such a file outside SQLite would drop SQLite's locks on it.
bool isOfRepository(const std::string& path, const std::string& repository) {
    std::error_code ignored;
    for (const char* end : {"", "-wal", "-shm", "-journal"})
        if (std::filesystem::equivalent(path, repository + end, ignored))
            return true;
    return false;
}

} // namespace

std::string PrViewer::Impl::filePath() const {
    constexpr std::string_view kScheme = "sqlite:";
    return path.starts_with(kScheme) ? path.substr(kScheme.size()) : path;
}

Status PrViewer::Impl::placeFiles(DrillTable::TextFile& source) const {
    auto known = repository::readMovedFiles(connection());
    if (!known)
        return known.error();
    MovedSources(moves, std::move(*known)).locate(source);
    return {};
}

std::optional<MissingFile> PrViewer::Impl::missingFile(const DrillTable::TextFile& source) const {
    for (const DrillTable::TextFile::File& file : source.files) {
        std::error_code ignored;
        if (std::filesystem::exists(file.currentPath, ignored))
            continue;
        const std::string folder = std::filesystem::path(absolutePath(filePath())).parent_path().string();
        return MissingFile{file.path, findBeside(folder, file)};
    }
    return std::nullopt;
}

std::optional<MissingFile> PrViewer::getMissingFile() const {
    return m_impl->missingSource;
}

bool PrViewer::relocateFile(const KvbString& oldPath, const KvbString& newPath, KvbString& remark) {
    remark = KvbString();
    if (Status ready = m_impl->requireSession(); !ready)
        return m_impl->fail(ready.error());
    auto files = repository::filesReadAt(m_impl->connection(), oldPath.str());
    if (files && files->empty())
        files = repository::filesReadAt(m_impl->connection(), absolutePath(oldPath.str()));
    if (!files)
        return m_impl->fail(files.error());
    if (files->empty())
        return m_impl->fail({fmt::format("No run has read \"{}\".", oldPath.view())});
    const std::string before = files->front().path;
    std::string after = absolutePath(newPath.str());
    std::error_code ignored;
    if (std::filesystem::is_directory(after, ignored))
        after = (std::filesystem::path(after) / std::filesystem::path(before).filename()).string();
    const auto stamp = source::stampAt(after);
    if (!stamp || !std::filesystem::is_regular_file(after, ignored))
        return m_impl->fail({fmt::format("\"{}\" is not a file.", after)});
    if (isOfRepository(after, m_impl->filePath()))
        return m_impl->fail({fmt::format("\"{}\" is the repository.", after)});
    m_impl->moves[before] = after;

    const std::int64_t inRun = files->front().size;
    std::erase_if(*files, [&](const repository::ReadFile& file) { return file.size >= 0 && file.size != stamp->size; });
    if (files->empty()) {
        remark = KvbString(fmt::format("\"{}\" has {} bytes where the run read {}. Its place is not kept.", after,
                                       formatGrouped(stamp->size), formatGrouped(inRun)));
        return true;
    }
    const UtcTime now = m_impl->clock ? m_impl->clock->now() : m_impl->systemClock.now();
    const KvbString error = m_impl->error;
    const bool isKept = m_impl->change([&](sql::Connection& connection) -> Status {
        for (const repository::ReadFile& file : *files)
            if (Status stored = repository::storeMovedFile(connection, {file, after}, now); !stored)
                return stored;
        return {};
    });
    if (!isKept)
        remark = KvbString(
            fmt::format("The place of \"{}\" is not kept: {}", after, std::exchange(m_impl->error, error).view()));
    return true;
}

} // namespace tavix
