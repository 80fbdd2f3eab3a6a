#pragma once

#include "base/Result.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <span>
#include <string>

namespace tavix::profiling {

/// A temporary file without a name: whatever happens to the process, nothing of it stays behind. It is made when the
/// first bytes come. All functions may be called by several threads at once.
class SpillFile {
  public:
    /// `folder` is where it lies, though not where it can be found.
    explicit SpillFile(std::string folder) : m_folder(std::move(folder)) {}
    ~SpillFile();
    SpillFile(const SpillFile&) = delete;
    SpillFile& operator=(const SpillFile&) = delete;

    /// Where the bytes stand now. A full disk is an error.
    [[nodiscard]] Result<std::uint64_t> append(std::span<const std::byte> bytes);
    /// Fills `bytes` from the place on.
    [[nodiscard]] Status read(std::uint64_t offset, std::span<std::byte> bytes) const;
    /// Gives the space back to the disk, where the file system can; the bytes are not read again.
    void release(std::uint64_t offset, std::uint64_t size);

    /// Bytes that were ever written.
    [[nodiscard]] std::uint64_t written() const { return m_end; }

  private:
    Status open();

    std::string m_folder;
    std::mutex m_opening;
    std::atomic<int> m_file{-1};
    std::atomic<std::uint64_t> m_end{0};
};

} // namespace tavix::profiling
