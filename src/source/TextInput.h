#pragma once

#include "base/Clock.h"
#include "base/Result.h"
#include "source/Credentials.h"
#include "source/EncodingDetector.h"
#include "source/FileStamp.h"
#include "source/TextDecoder.h"
#include "source/Unpacker.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace tavix::source {

/// A text file from its first byte to its last as UTF-8, whatever its encoding and compression (Unpacker.h). Damage
/// remains as bytes that are not UTF-8.
class TextInput {
  public:
    /// How much of a file is examined before it is read; a preview has no more than that.
    static constexpr std::size_t kSample = std::size_t{1} << 20;

    /// Opens the file and examines its first MiB for the encoding; a stated `encoding` needs only `beginning` bytes of
    /// it. Fails for a file that cannot be read and for a folder. While a pipe has no data, `keepGoing` is asked
    /// repeatedly; a false is an error.
    [[nodiscard]] static Result<std::unique_ptr<TextInput>> open(const std::string& path, const CEncoding* encoding,
                                                                 std::size_t beginning, bool isPreview = false,
                                                                 KeepGoing keepGoing = {});
    ~TextInput();
    TextInput(const TextInput&) = delete;
    TextInput& operator=(const TextInput&) = delete;

    /// Fills `target` with the text that follows and returns its size, less than `size` only at the end of the file.
    /// Fails if the file was changed since it was opened.
    [[nodiscard]] Result<std::size_t> read(char* target, std::size_t size);

    [[nodiscard]] const std::string& path() const { return m_path; }
    [[nodiscard]] const FoundEncoding& encoding() const { return m_encoding; }
    /// A preview that leaves something out.
    [[nodiscard]] bool isCut() const { return m_isCut; }
    /// Its first bytes, not decoded, as far as open() examined them. Valid before the first read().
    [[nodiscard]] std::string_view beginning() const { return m_raw; }
    [[nodiscard]] bool isPacked() const { return m_unpacker != nullptr; }
    [[nodiscard]] Packing packing() const { return m_unpacker ? m_unpacker->packing() : Packing::None; }
    /// The size of the file as it is, compressed or not; 0 if unknown, as for a pipe.
    [[nodiscard]] std::int64_t size() const { return m_size; }
    [[nodiscard]] UtcTime modified() const { return m_modified; }
    [[nodiscard]] const FileStamp& stamp() const { return m_stamp; }
    /// The offset in the file of what was read, except for its last `rest` bytes; approximate if it was decoded or
    /// unpacked.
    [[nodiscard]] std::int64_t position(std::size_t rest) const;
    [[nodiscard]] Error failure(std::string_view what) const;

  private:
    TextInput(std::string path, int file);
    Status begin(const CEncoding* encoding, std::size_t beginning, bool isPreview);
    Status waitForBytes() const;
    /// Of the file as it is, compressed or not.
    Result<std::size_t> readBytes(char* target, std::size_t size);
    /// Of its content.
    Result<std::size_t> readContent(char* target, std::size_t size);
    /// Reads into m_chunk so many bytes of the content, or fewer if it has less room.
    Result<std::size_t> readBeginning(std::size_t wanted);
    Result<std::size_t> readDecoded(char* target, std::size_t size);
    Status readChunk();
    Status checkUnchanged() const;

    std::string m_path;
    int m_file;
    KeepGoing m_keepGoing;
    bool m_mayWait = false; ///< such as a pipe, which may have no data for a while
    std::int64_t m_size = 0;
    UtcTime m_modified{};
    FileStamp m_stamp;
    std::int64_t m_bytesRead = 0;
    FoundEncoding m_encoding;

    std::unique_ptr<Unpacker> m_unpacker; ///< null for an uncompressed file
    std::string m_chunk;                  ///< of the content: first its beginning, later what is to be decoded
    std::string_view m_raw;               ///< the part of m_chunk not consumed yet
    std::string_view m_text;              ///< decoded and not consumed yet
    bool m_isFileDone = false;            ///< m_raw is the end of it
    bool m_isCut = false;
    std::int64_t m_rawTaken = 0; ///< of the content
    std::int64_t m_handedOut = 0;
    std::unique_ptr<TextDecoder> m_decoder; ///< null for UTF-8
};

} // namespace tavix::source
