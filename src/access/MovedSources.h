#pragma once

#include "access/DrillSource.h"
#include "repository/MovedFiles.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace tavix {

/// Where the files of a run are now, as far as anybody has said it or their neighbours tell.
class MovedSources {
  public:
    /// `told`: what the user said in this session, new place by old path; it goes before what the repository knows.
    MovedSources(std::map<std::string, std::string> told, std::vector<repository::MovedFile> moves)
        : m_told(std::move(told)), m_moves(std::move(moves)) {}

    /// Sets the place of every file: its own path unless it is known to be elsewhere. A file that is there as the run
    /// read it stays where it is; one that lies beside a moved file and has the size is taken to have moved with it.
    void place(DrillTable::TextFile& source) const;

  private:
    [[nodiscard]] std::string placeOf(const DrillTable::TextFile::File& file) const;
    [[nodiscard]] std::optional<std::string> besideMoved(const DrillTable::TextFile::File& file) const;

    std::map<std::string, std::string> m_told;
    std::vector<repository::MovedFile> m_moves; ///< the newest first
};

/// A file of this name and size in or below the folder, at a place that ends as the file's path does; "" for none.
/// Looks at a few places only.
[[nodiscard]] std::string findBeside(const std::string& folder, const DrillTable::TextFile::File& file);

/// How the library names the file of a run.
[[nodiscard]] repository::ReadFile readFile(const DrillTable::TextFile::File& file);

} // namespace tavix
