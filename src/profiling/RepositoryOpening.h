#pragma once

#include "base/Result.h"
#include "repository/Schema.h"

#include <future>
#include <memory>
#include <optional>
#include <string>

namespace tavix::profiling {

/// Opens the repository of a run while the run begins to read: creating one takes as long as reading a small table. It
/// stays open until the object is destroyed.
class RepositoryOpening {
  public:
    explicit RepositoryOpening(std::string path);
    RepositoryOpening(const RepositoryOpening&) = delete;
    RepositoryOpening& operator=(const RepositoryOpening&) = delete;

    /// Whether opening has failed by now; finish() says why.
    [[nodiscard]] bool hasFailed() const;
    /// Waits until it is open.
    [[nodiscard]] Status finish() const;

  private:
    std::unique_ptr<sql::Connection> m_connection;
    std::optional<Error> m_failure;
    std::future<void> m_opening; ///< sets the members above
};

} // namespace tavix::profiling
