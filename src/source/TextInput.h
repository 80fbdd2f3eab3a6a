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

/// A text file from its first byte to its last as UTF-8, whatever encoding it is in, and however it is compressed
/// (Unpacker.h). Damage stays in it as bytes that are no UTF-8.
class TextInput {
  public:
    /// How much of a file is looked at before it is read, and all that there is of it in a preview.
    static constexpr std::size_t kSample = std::size_t{1} << 20;

    /// Opens the file and looks at its first MiB, where the encoding is found; a stated `encoding` needs no more than
    /// `beginning` bytes of it. An error for a file that cannot be read and for a folder.
    /// While a pipe has nothing to read, `keepGoing` is asked again and again; a false is an error.
    [[nodiscard]] static Result<std::unique_ptr<TextInput>> open(const std::string& path, const CEncoding* encoding,
                                                                 std::size_t beginning, bool isPreview = false,
                                                                 KeepGoing keepGoing = {});
    ~TextInput();
    TextInput(const TextInput&) = delete;
    TextInput& operator=(const TextInput&) = delete;

    /// Fills `target` with what follows and returns how much that is: less than `size` at the end of the file only. An
    /// error when the file turns out to have been changed since it was opened.
    [[nodiscard]] Result<std::size_t> read(char* target, std::size_t size);

    [[nodiscard]] const std::string& path() const { return m_path; }
    [[nodiscard]] const FoundEncoding& encoding() const { return m_encoding; }
    /// A preview that leaves something out.
    [[nodiscard]] bool isCut() const { return m_isCut; }
    /// Its first bytes, not decoded, as far as open() looked at them. To be asked before the first read().
    [[nodiscard]] std::string_view beginning() const { return m_raw; }
    [[nodiscard]] bool isPacked() const { return m_unpacker != nullptr; }
    [[nodiscard]] Packing packing() const { return m_unpacker ? m_unpacker->packing() : Packing::None; }
    /// Bytes of the file, packed as it is; 0 when it does not say, as a pipe does not.
    [[nodiscard]] std::int64_t size() const { return m_size; }
    [[nodiscard]] UtcTime modified() const { return m_modified; }
    [[nodiscard]] const FileStamp& stamp() const { return m_stamp; }
    /// Bytes of the file that what was read takes, save for its last `rest` bytes; about so many when it
    /// was decoded or unpacked.
    [[nodiscard]] std::int64_t position(std::size_t rest) const;
    [[nodiscard]] Error failure(std::string_view what) const;

  private:
    TextInput(std::string path, int file);
    Status begin(const CEncoding* encoding, std::size_t beginning, bool isPreview);
    Status waitForBytes() const;
    /// Of the file as it is.
    Result<std::size_t> readBytes(char* target, std::size_t size);
    /// Of what is in it.
    Result<std::size_t> readContent(char* target, std::size_t size);
    /// Into m_chunk, so many bytes of the content or less than it has room for.
    Result<std::size_t> readBeginning(std::size_t wanted);
    Result<std::size_t> readDecoded(char* target, std::size_t size);
    Status readChunk();
    Status checkUnchanged() const;

    std::string m_path;
    int m_file;
    KeepGoing m_keepGoing;
    bool m_mayWait = false; ///< as of a pipe, which may have nothing to read for a while
    std::int64_t m_size = 0;
    UtcTime m_modified{};
    FileStamp m_stamp;
    std::int64_t m_bytesRead = 0;
    FoundEncoding m_encoding;

    std::unique_ptr<Unpacker> m_unpacker; ///< null for a file that is not compressed
    std::string m_chunk;                  ///< of the content: its beginning at first, later what is to be decoded
    std::string_view m_raw;               ///< what was not taken of m_chunk
    std::string_view m_text;              ///< decoded and not taken
    bool m_isFileDone = false;            ///< m_raw is the last of it
    bool m_isCut = false;
    std::int64_t m_rawTaken = 0; ///< of the content
    std::int64_t m_handedOut = 0;
    std::unique_ptr<TextDecoder> m_decoder; ///< null for UTF-8
};

} // namespace tavix::source
