#pragma once

#include "base/Result.h"
#include "profiling/SpillFile.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace tavix::profiling {

/// Keeps byte sequences until a run is written: in memory as long as there is room, then in a file. Several threads may
/// use it at once, but not the same piece.
class ByteStore {
  public:
    class Piece {
        friend class ByteStore;
        std::unique_ptr<std::byte[]> m_bytes; ///< when null, the piece is in the file
        std::uint64_t m_offset = 0;
        std::uint32_t m_size = 0;
    };

    ByteStore(SpillFile& file, std::size_t memory) : m_file(file), m_memory(memory) {}

    [[nodiscard]] Result<Piece> keep(std::span<const std::byte> bytes);
    /// The bytes of a piece. They live as long as the piece is kept and `buffer` is not touched.
    [[nodiscard]] Result<std::span<const std::byte>> read(const Piece& piece, std::vector<std::byte>& buffer) const;
    void drop(Piece& piece);

  private:
    SpillFile& m_file;
    std::size_t m_memory;
    std::atomic<std::size_t> m_inUse{0};
};

} // namespace tavix::profiling
