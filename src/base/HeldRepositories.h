#pragma once

#include "base/Result.h"

#include <string>
#include <string_view>

/// A repository file, and the -wal, -shm and -journal files beside it, are opened by SQLite alone: whoever else writes
/// there destroys the repository, and on some systems to close one of them is enough. Everything that opens a file
/// whose name came from outside asks requireNotHeld() first.
namespace tavix {

/// The file of a connection text: a path, perhaps behind "sqlite:".
[[nodiscard]] std::string repositoryFile(std::string_view connection);

/// As long as it lives the file is known as a repository that this process uses, whether it exists yet or not.
class HeldRepository {
  public:
    explicit HeldRepository(const std::string& path);
    ~HeldRepository();
    HeldRepository(const HeldRepository&) = delete;
    HeldRepository& operator=(const HeldRepository&) = delete;

  private:
    std::string m_path;
};

/// An error when `path` leads to a file of a repository in use, by whichever name or link. From any thread.
[[nodiscard]] Status requireNotHeld(const std::string& path);

} // namespace tavix
