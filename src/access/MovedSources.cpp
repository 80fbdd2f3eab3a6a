#include "access/MovedSources.h"

#include "repository/BindValue.h"
#include "source/FileStamp.h"

#include <filesystem>

namespace tavix {

namespace {

using File = DrillTable::TextFile::File;
using source::FileStamp;
using source::stampAt;

bool hasSize(const File& file, const FileStamp& stamp) {
    return file.size < 0 || file.size == stamp.size;
}

bool isAsRead(const File& file, const FileStamp& stamp) {
    return file.size < 0 || (file.size == stamp.size && file.modified == stamp.modifiedTime());
}

} // namespace

void MovedSources::locate(DrillTable::TextFile& source) const {
    for (File& file : source.files)
        file.currentPath = currentPathOf(file);
}

std::string MovedSources::currentPathOf(const File& file) const {
    if (const auto told = m_told.find(file.path); told != m_told.end())
        return told->second;
    const auto stamp = stampAt(file.path);
    if (stamp && isAsRead(file, *stamp))
        return file.path;
    const repository::ReadFile read = readFile(file);
    for (const repository::MovedFile& move : m_moves)
        if (move.file == read && stampAt(move.newPath))
            return move.newPath;
    if (stamp)
        return file.path;
    for (const repository::MovedFile& move : m_moves)
        if (move.file.path == file.path && stampAt(move.newPath))
            return move.newPath;
    return besideMoved(file).value_or(file.path);
}

std::optional<std::string> MovedSources::besideMoved(const File& file) const {
    const std::filesystem::path path(file.path);
    const auto inFolderOf = [&](const std::string& oldPath, const std::string& newPath) -> std::optional<std::string> {
        const std::filesystem::path before(oldPath);
        const std::filesystem::path after(newPath);
        if (before.parent_path() != path.parent_path() || before.filename() != after.filename())
            return std::nullopt;
        std::string candidate = (after.parent_path() / path.filename()).string();
        const auto stamp = stampAt(candidate);
        return stamp && hasSize(file, *stamp) ? std::optional(std::move(candidate)) : std::nullopt;
    };
    for (const auto& [oldPath, newPath] : m_told)
        if (auto found = inFolderOf(oldPath, newPath))
            return found;
    for (const repository::MovedFile& move : m_moves)
        if (auto found = inFolderOf(move.file.path, move.newPath))
            return found;
    return std::nullopt;
}

std::string findBeside(const std::string& folder, const File& file) {
    std::filesystem::path end;
    std::filesystem::path rest(file.path);
    while (rest.has_filename()) {
        end = end.empty() ? rest.filename() : rest.filename() / end;
        const std::filesystem::path candidate = std::filesystem::path(folder) / end;
        if (const auto stamp = stampAt(candidate.string()); stamp && hasSize(file, *stamp))
            return candidate.string();
        rest = rest.parent_path();
    }
    return {};
}

repository::ReadFile readFile(const File& file) {
    if (file.size < 0)
        return {file.path, -1, -1};
    return {file.path, file.size, repository::storedTime(file.modified)};
}

} // namespace tavix
