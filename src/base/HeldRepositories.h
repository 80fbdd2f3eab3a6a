#pragma once

#include "base/Result.h"

#include <string>
#include <string_view>

/// A repository file, and the -wal, -shm and -journal files beside it, may be opened by SQLite alone: any other writer
/// destroys the repository, and on some systems merely closing one of them does. Everything that opens a file named by
/// a user calls requireNotHeld() first.
namespace tavix {

/// The file of a connection text: a path, perhaps after "sqlite:".
[[nodiscard]] std::string repositoryFile(std::string_view connection);

/// During its lifetime the file, whether it exists yet or not, is registered as a repository in use by this process.
class HeldRepository {
  public:
    explicit HeldRepository(const std::string& path);
    ~HeldRepository();
    HeldRepository(const HeldRepository&) = delete;
    HeldRepository& operator=(const HeldRepository&) = delete;

  private:
    std::string m_path;
};

/// Fails if `path` leads to a file of a repository in use, by any name or link. From any thread.
[[nodiscard]] Status requireNotHeld(const std::string& path);

} // namespace tavix
