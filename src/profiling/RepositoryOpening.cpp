#include "profiling/RepositoryOpening.h"

#include <chrono>
#include <utility>

namespace tavix::profiling {

RepositoryOpening::RepositoryOpening(std::string path)
    : m_opening(std::async(std::launch::async, [this, path = std::move(path)] {
          auto opened = repository::openRepository(path, sql::OpenMode::Create);
          if (opened)
              m_connection = std::move(*opened);
          else
              m_failure = opened.error();
      })) {}

bool RepositoryOpening::hasFailed() const {
    return m_opening.wait_for(std::chrono::seconds(0)) == std::future_status::ready && m_failure;
}

Status RepositoryOpening::finish() const {
    m_opening.wait();
    return m_failure ? Status{*m_failure} : Status{};
}

} // namespace tavix::profiling
