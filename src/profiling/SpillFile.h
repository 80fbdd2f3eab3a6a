#pragma once

#include "base/Result.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <span>
#include <string>

namespace tavix::profiling {

/// A temporary file without a name, so that nothing of it remains whatever happens to the process. It is created by the
/// first write. Several threads may call all functions at once.
class SpillFile {
  public:
    /// `folder`: where the file is created.
    explicit SpillFile(std::string folder) : m_folder(std::move(folder)) {}
    ~SpillFile();
    SpillFile(const SpillFile&) = delete;
    SpillFile& operator=(const SpillFile&) = delete;

    /// Returns the offset of the bytes. A full disk is an error.
    [[nodiscard]] Result<std::uint64_t> append(std::span<const std::byte> bytes);
    /// Fills `bytes` from the offset on.
    [[nodiscard]] Status read(std::uint64_t offset, std::span<std::byte> bytes) const;
    /// Returns the space to the disk where the file system can. The bytes must not be read again.
    void release(std::uint64_t offset, std::uint64_t size);

  private:
    Status open();

    std::string m_folder;
    std::mutex m_opening;
    std::atomic<int> m_file{-1};
    std::atomic<std::uint64_t> m_end{0};
};

} // namespace tavix::profiling
