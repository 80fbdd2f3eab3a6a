#pragma once

#include "base/Result.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace tavix::source {

/// How a file is compressed, detected by its first bytes, whatever its name.
enum class Packing { None, Gzip, Bzip2, Xz, Zstd };

/// Enough of a file for packingOf().
inline constexpr std::size_t kPackingMark = 16;

/// "none", "gzip", ...
[[nodiscard]] std::string_view nameOf(Packing packing);

[[nodiscard]] Packing packingOf(std::string_view start);

/// The content of a compressed file, in bounded memory. Concatenated parts are read as one, and zero bytes after the
/// last part are padding. Checksums are verified.
class Unpacker {
  public:
    /// Fills the bytes with the next ones of the file; fewer only at its end.
    using ReadFile = std::function<Result<std::size_t>(char* target, std::size_t size)>;

    /// `start` is what was already read from the file; `path` is for errors. Not for Packing::None.
    Unpacker(Packing packing, std::string path, std::string start, ReadFile readFile);
    ~Unpacker();
    Unpacker(const Unpacker&) = delete;
    Unpacker& operator=(const Unpacker&) = delete;

    /// Fills `target` and returns the size, less than `size` only at the end. Damaged or truncated data, and data that
    /// needs more than 512 MB of memory to unpack, are errors.
    [[nodiscard]] Result<std::size_t> read(char* target, std::size_t size);

    [[nodiscard]] Packing packing() const { return m_packing; }
    /// Bytes of the file consumed.
    [[nodiscard]] std::int64_t packedBytes() const { return m_packedBytes; }
    [[nodiscard]] std::int64_t unpackedBytes() const { return m_unpackedBytes; }

  private:
    class Decoder;
    class GzipDecoder;
    class Bzip2Decoder;
    class XzDecoder;
    class ZstdDecoder;

    /// Reads the next bytes of the file once all were consumed.
    [[nodiscard]] Status refill();
    /// Whether another part follows.
    [[nodiscard]] Result<bool> beginPart();
    [[nodiscard]] Error failure(std::string_view what) const;

    Packing m_packing;
    std::string m_path;
    std::string m_chunk;
    std::string_view m_input; ///< the part of m_chunk not consumed yet
    ReadFile m_readFile;
    std::unique_ptr<Decoder> m_decoder;
    bool m_isFileDone = false;
    bool m_isBetweenParts = false;
    bool m_isDone = false;
    std::int64_t m_packedBytes = 0;
    std::int64_t m_unpackedBytes = 0;
};

} // namespace tavix::source
