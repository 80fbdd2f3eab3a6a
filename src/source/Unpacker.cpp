#include "source/Unpacker.h"

#include "base/NumberText.h"

#include <bzlib.h>
#include <fmt/format.h>
#include <lzma.h>
#include <zlib.h>
#include <zstd.h>
#include <zstd_errors.h>

#include <algorithm>
#include <array>
#include <new>
#include <type_traits>
#include <utility>

namespace tavix::source {

namespace {

using std::string_view_literals::operator""sv;

constexpr std::size_t kChunk = std::size_t{1} << 18;
/// Some libraries count in 32 bits.
constexpr std::size_t kMostAtOnce = std::size_t{1} << 30;
constexpr std::size_t kMostMemory = std::size_t{512} << 20;
constexpr int kZstdWindowBits = 29; ///< kMostMemory

bool beginsZstd(std::string_view start) {
    const bool isSkippable = start.size() >= 4 && (static_cast<unsigned char>(start[0]) & 0xF0u) == 0x50;
    return start.starts_with("\x28\xB5\x2F\xFD") || (isSkippable && start.substr(1).starts_with("\x2A\x4D\x18"));
}

bool beginsBzip2(std::string_view start) {
    if (start.size() < 10 || !start.starts_with("BZh") || start[3] < '1' || start[3] > '9')
        return false;
    start.remove_prefix(4);
    // The first block, or the end if there is none.
    return start.starts_with("\x31\x41\x59\x26\x53\x59") || start.starts_with("\x17\x72\x45\x38\x50\x90");
}

} // namespace

std::string_view nameOf(Packing packing) {
    constexpr std::array<std::string_view, 5> kNames = {"none", "gzip", "bzip2", "xz", "zstd"};
    return kNames.at(static_cast<std::size_t>(packing));
}

Packing packingOf(std::string_view start) {
    if (start.starts_with("\x1F\x8B\x08"))
        return Packing::Gzip;
    if (beginsBzip2(start))
        return Packing::Bzip2;
    if (start.starts_with("\xFD\x37\x7A\x58\x5A\0"sv))
        return Packing::Xz;
    return beginsZstd(start) ? Packing::Zstd : Packing::None;
}

/// Unpacks one part after another. std::bad_alloc if a library lacks memory.
class Unpacker::Decoder {
  public:
    enum class Outcome { GoesOn, PartIsOver, IsDamaged, NeedsMemory };

    Decoder() = default;
    virtual ~Decoder() = default;
    Decoder(const Decoder&) = delete;
    Decoder& operator=(const Decoder&) = delete;

    virtual void beginPart() = 0;
    /// Consumes from the front of `input`, fills `size` bytes from `target` on, and advances all three. No progress is
    /// not an error.
    virtual Outcome step(std::string_view& input, char*& target, std::size_t& size) = 0;
    /// The damage, in the words of the library.
    [[nodiscard]] std::string_view damage() const { return m_damage; }

  protected:
    Outcome damaged(const char* what) {
        m_damage = what ? what : "wrong data";
        return Outcome::IsDamaged;
    }
    static void check(bool isReady) {
        if (!isReady)
            throw std::bad_alloc();
    }
    /// Calls `run` on a stream of the form that three of the libraries share.
    template <typename Byte, typename Stream, typename Run>
    static auto drive(Stream& stream, std::string_view& input, char*& target, std::size_t& size, Run run) {
        const std::size_t given = std::min(input.size(), kMostAtOnce);
        const std::size_t room = std::min(size, kMostAtOnce);
        stream.next_in = reinterpret_cast<Byte*>(const_cast<char*>(input.data()));
        stream.avail_in = static_cast<decltype(stream.avail_in)>(given);
        stream.next_out = reinterpret_cast<std::remove_reference_t<decltype(*stream.next_out)>*>(target);
        stream.avail_out = static_cast<decltype(stream.avail_out)>(room);
        const auto code = run();
        input.remove_prefix(given - stream.avail_in);
        target += room - stream.avail_out;
        size -= room - stream.avail_out;
        return code;
    }

  private:
    std::string m_damage;
};

class Unpacker::GzipDecoder final : public Decoder {
  public:
    GzipDecoder() {
        constexpr int kGzipAlone = 16;
        check(::inflateInit2(&m_stream, MAX_WBITS + kGzipAlone) == Z_OK);
    }
    ~GzipDecoder() override { ::inflateEnd(&m_stream); }

    void beginPart() override { ::inflateReset(&m_stream); }
    Outcome step(std::string_view& input, char*& target, std::size_t& size) override {
        const int code =
            drive<Bytef>(m_stream, input, target, size, [this] { return ::inflate(&m_stream, Z_NO_FLUSH); });
        check(code != Z_MEM_ERROR);
        if (code == Z_STREAM_END)
            return Outcome::PartIsOver;
        return code == Z_OK || code == Z_BUF_ERROR ? Outcome::GoesOn : damaged(m_stream.msg);
    }

  private:
    z_stream m_stream{};
};

class Unpacker::Bzip2Decoder final : public Decoder {
  public:
    Bzip2Decoder() { check(::BZ2_bzDecompressInit(&m_stream, 0, 0) == BZ_OK); }
    ~Bzip2Decoder() override { ::BZ2_bzDecompressEnd(&m_stream); }

    void beginPart() override {
        ::BZ2_bzDecompressEnd(&m_stream);
        m_stream = {};
        check(::BZ2_bzDecompressInit(&m_stream, 0, 0) == BZ_OK);
    }
    Outcome step(std::string_view& input, char*& target, std::size_t& size) override {
        const int code = drive<char>(m_stream, input, target, size, [this] { return ::BZ2_bzDecompress(&m_stream); });
        check(code != BZ_MEM_ERROR);
        if (code == BZ_STREAM_END)
            return Outcome::PartIsOver;
        return code == BZ_OK ? Outcome::GoesOn
                             : damaged(code == BZ_DATA_ERROR_MAGIC ? "incorrect header check" : "incorrect data");
    }

  private:
    bz_stream m_stream{};
};

class Unpacker::XzDecoder final : public Decoder {
  public:
    XzDecoder() { begin(); }
    ~XzDecoder() override { ::lzma_end(&m_stream); }

    void beginPart() override { begin(); }
    Outcome step(std::string_view& input, char*& target, std::size_t& size) override {
        const lzma_ret code = drive<const std::uint8_t>(m_stream, input, target, size,
                                                        [this] { return ::lzma_code(&m_stream, LZMA_RUN); });
        switch (code) {
        case LZMA_OK:
        case LZMA_BUF_ERROR:
            return Outcome::GoesOn;
        case LZMA_STREAM_END:
            return Outcome::PartIsOver;
        case LZMA_MEMLIMIT_ERROR:
            return Outcome::NeedsMemory;
        case LZMA_MEM_ERROR:
            throw std::bad_alloc();
        case LZMA_FORMAT_ERROR:
            return damaged("incorrect header check");
        case LZMA_OPTIONS_ERROR:
            return damaged("unknown options");
        default:
            return damaged("incorrect data");
        }
    }

  private:
    void begin() { check(::lzma_stream_decoder(&m_stream, kMostMemory, 0) == LZMA_OK); }

    lzma_stream m_stream = LZMA_STREAM_INIT;
};

class Unpacker::ZstdDecoder final : public Decoder {
  public:
    ZstdDecoder() : m_context(::ZSTD_createDCtx()) {
        check(m_context != nullptr);
        ::ZSTD_DCtx_setParameter(m_context, ZSTD_d_windowLogMax, kZstdWindowBits);
    }
    ~ZstdDecoder() override { ::ZSTD_freeDCtx(m_context); }

    void beginPart() override { ::ZSTD_DCtx_reset(m_context, ZSTD_reset_session_only); }
    Outcome step(std::string_view& input, char*& target, std::size_t& size) override {
        ZSTD_inBuffer in{input.data(), input.size(), 0};
        ZSTD_outBuffer out{target, size, 0};
        const std::size_t code = ::ZSTD_decompressStream(m_context, &out, &in);
        input.remove_prefix(in.pos);
        target += out.pos;
        size -= out.pos;
        if (::ZSTD_isError(code) == 0)
            return code == 0 ? Outcome::PartIsOver : Outcome::GoesOn;
        switch (::ZSTD_getErrorCode(code)) {
        case ZSTD_error_memory_allocation:
            throw std::bad_alloc();
        case ZSTD_error_frameParameter_windowTooLarge:
            return Outcome::NeedsMemory;
        default:
            return damaged(::ZSTD_getErrorName(code));
        }
    }

  private:
    ZSTD_DCtx* m_context;
};

Unpacker::Unpacker(Packing packing, std::string path, std::string start, ReadFile readFile)
    : m_packing(packing),
      m_path(std::move(path)),
      m_chunk(std::move(start)),
      m_input(m_chunk),
      m_readFile(std::move(readFile)) {
    switch (packing) {
    case Packing::Gzip:
        m_decoder = std::make_unique<GzipDecoder>();
        break;
    case Packing::Bzip2:
        m_decoder = std::make_unique<Bzip2Decoder>();
        break;
    case Packing::Xz:
        m_decoder = std::make_unique<XzDecoder>();
        break;
    case Packing::Zstd:
    case Packing::None:
        m_decoder = std::make_unique<ZstdDecoder>();
        break;
    }
}

Unpacker::~Unpacker() = default;

Error Unpacker::failure(std::string_view what) const {
    return Error{fmt::format("\"{}\" {}", m_path, what)};
}

Status Unpacker::refill() {
    if (!m_input.empty() || m_isFileDone)
        return {};
    m_chunk.resize(kChunk);
    const auto got = m_readFile(m_chunk.data(), m_chunk.size());
    if (!got)
        return got.error();
    m_isFileDone = *got < m_chunk.size();
    m_input = std::string_view(m_chunk).substr(0, *got);
    return {};
}

Result<bool> Unpacker::beginPart() {
    for (;;) {
        if (Status status = refill(); !status)
            return status.error();
        const std::size_t padding = std::min(m_input.find_first_not_of('\0'), m_input.size());
        m_input.remove_prefix(padding);
        m_packedBytes += static_cast<std::int64_t>(padding);
        if (!m_input.empty())
            break;
        if (m_isFileDone)
            return false;
    }
    m_decoder->beginPart();
    return true;
}

Result<std::size_t> Unpacker::read(char* target, std::size_t size) {
    const std::size_t wanted = size;
    while (size > 0 && !m_isDone) {
        if (m_isBetweenParts) {
            const auto another = beginPart();
            if (!another)
                return another.error();
            m_isDone = !*another;
            m_isBetweenParts = false;
            continue;
        }
        if (Status status = refill(); !status)
            return status.error();
        const std::size_t inputBefore = m_input.size();
        const std::size_t sizeBefore = size;
        const Decoder::Outcome outcome = m_decoder->step(m_input, target, size);
        m_packedBytes += static_cast<std::int64_t>(inputBefore - m_input.size());
        m_unpackedBytes += static_cast<std::int64_t>(sizeBefore - size);
        switch (outcome) {
        case Decoder::Outcome::GoesOn:
            if (size == sizeBefore && inputBefore == m_input.size() && m_isFileDone)
                return failure(fmt::format("is cut short: its {} data ends after {} unpacked bytes, in the middle",
                                           nameOf(m_packing), formatGrouped(m_unpackedBytes)));
            break;
        case Decoder::Outcome::PartIsOver:
            m_isBetweenParts = true;
            break;
        case Decoder::Outcome::IsDamaged:
            return failure(fmt::format("is damaged: its {} data is wrong after {} unpacked bytes ({})",
                                       nameOf(m_packing), formatGrouped(m_unpackedBytes), m_decoder->damage()));
        case Decoder::Outcome::NeedsMemory:
            return failure("needs more than 512 MB of memory to be unpacked");
        }
    }
    return wanted - size;
}

} // namespace tavix::source
