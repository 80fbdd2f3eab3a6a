#pragma once

#include "access/DrillSource.h"
#include "repository/MovedFiles.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace tavix {

/// Finds where the files of a run are now: by what users said, and by the moves of files beside them.
class MovedSources {
  public:
    /// `told`: new path by old path, as the user said in this session; takes precedence over the stored `moves`.
    MovedSources(std::map<std::string, std::string> told, std::vector<repository::MovedFile> moves)
        : m_told(std::move(told)), m_moves(std::move(moves)) {}

    /// Sets the current path of every file: its own path unless it is known to be elsewhere. A file that is unchanged
    /// at its old path is taken from there. A missing one beside a moved file is taken to have moved along, if a file
    /// of its name and size is there.
    void locate(DrillTable::TextFile& source) const;

  private:
    [[nodiscard]] std::string currentPathOf(const DrillTable::TextFile::File& file) const;
    [[nodiscard]] std::optional<std::string> besideMoved(const DrillTable::TextFile::File& file) const;

    std::map<std::string, std::string> m_told;
    std::vector<repository::MovedFile> m_moves; ///< the newest first
};

/// A file of this name and size in or below the folder, at a path that ends as the file's path does; "" for none.
/// Tries a few paths only.
[[nodiscard]] std::string findBeside(const std::string& folder, const DrillTable::TextFile::File& file);

/// The file's identity in the repository.
[[nodiscard]] repository::ReadFile readFile(const DrillTable::TextFile::File& file);

} // namespace tavix
