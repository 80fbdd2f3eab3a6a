#pragma once

#include "base/Result.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace tavix::source {

/// How a file is compressed; its first bytes tell, whatever its name is.
enum class Packing { None, Gzip, Bzip2, Xz, Zstd };

/// Enough of a file for packingOf().
inline constexpr std::size_t kPackingMark = 16;

/// "none", "gzip", ...
[[nodiscard]] std::string_view nameOf(Packing packing);

[[nodiscard]] Packing packingOf(std::string_view start);

/// The content of a compressed file, in memory that does not grow with it. Parts that were compressed one by one and
/// joined are read as one, and zero bytes after the last part are padding. The checksums are verified.
class Unpacker {
  public:
    /// Fills the bytes with what follows in the file: fewer at its end only.
    using ReadFile = std::function<Result<std::size_t>(char* target, std::size_t size)>;

    /// `start` is what was already read of the file; `path` is for errors. Not for Packing::None.
    Unpacker(Packing packing, std::string path, std::string start, ReadFile readFile);
    ~Unpacker();
    Unpacker(const Unpacker&) = delete;
    Unpacker& operator=(const Unpacker&) = delete;

    /// Fills `target` and returns how much that is: less than `size` at the end only. Damaged data, data without an
    /// end, and data that needs more than 512 MB of memory to be unpacked are errors.
    [[nodiscard]] Result<std::size_t> read(char* target, std::size_t size);

    [[nodiscard]] Packing packing() const { return m_packing; }
    /// Bytes of the file that were used.
    [[nodiscard]] std::int64_t packedBytes() const { return m_packedBytes; }
    [[nodiscard]] std::int64_t unpackedBytes() const { return m_unpackedBytes; }

  private:
    class Decoder;
    class GzipDecoder;
    class Bzip2Decoder;
    class XzDecoder;
    class ZstdDecoder;

    /// The next bytes of the file, when all were used.
    [[nodiscard]] Status refill();
    /// Whether another part follows.
    [[nodiscard]] Result<bool> beginPart();
    [[nodiscard]] Error failure(std::string_view what) const;

    Packing m_packing;
    std::string m_path;
    std::string m_chunk;
    std::string_view m_input; ///< what was not used of m_chunk
    ReadFile m_readFile;
    std::unique_ptr<Decoder> m_decoder;
    bool m_isFileDone = false;
    bool m_isBetweenParts = false;
    bool m_isDone = false;
    std::int64_t m_packedBytes = 0;
    std::int64_t m_unpackedBytes = 0;
};

} // namespace tavix::source
