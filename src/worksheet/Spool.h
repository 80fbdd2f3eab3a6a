#pragma once

#include "base/Result.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace tavix::worksheet {

/// Receives the bytes of a file in order.
using Sink = std::function<Status(std::string_view)>;

/// Keeps what was written until the save: up to `memoryBytes` in memory, the rest in one nameless temporary file.
class SpoolStore {
  public:
    static constexpr std::size_t kDefaultMemoryBytes = std::size_t{32} << 20u;

    explicit SpoolStore(std::size_t memoryBytes = kDefaultMemoryBytes) : m_memoryLeft(memoryBytes) {}
    ~SpoolStore();
    SpoolStore(const SpoolStore&) = delete;
    SpoolStore& operator=(const SpoolStore&) = delete;

    /// The first failure of this store, such as a full disk; data spooled since is lost.
    [[nodiscard]] const Status& status() const { return m_status; }

  private:
    friend class Spool;
    struct Chunk {
        std::string bytes;          ///< empty if they are in the file
        std::int64_t position = -1; ///< in the file
        std::size_t size = 0;
    };

    [[nodiscard]] Chunk keep(std::string& bytes);
    [[nodiscard]] Status writeToFile(std::string_view bytes);
    [[nodiscard]] Status openFile();
    /// The bytes of a chunk, its own or read into `buffer`.
    [[nodiscard]] Result<std::string_view> read(const Chunk& chunk, std::string& buffer) const;

    std::size_t m_memoryLeft;
    std::int64_t m_bytes = 0;
    int m_file = -1;
    std::int64_t m_fileBytes = 0;
    Status m_status;
};

/// A sequence of bytes that grows at its end and is read as a whole. A store serves many and must outlive them.
class Spool {
  public:
    explicit Spool(SpoolStore& store) : m_store(&store) {}

    /// A failure appears in the store's status.
    void append(std::string_view bytes);
    [[nodiscard]] std::int64_t size() const { return m_kept + static_cast<std::int64_t>(m_tail.size()); }
    Status copyTo(const Sink& sink) const;

  private:
    SpoolStore* m_store;
    std::vector<SpoolStore::Chunk> m_chunks;
    std::int64_t m_kept = 0; ///< bytes in m_chunks
    std::string m_tail;
};

} // namespace tavix::worksheet
