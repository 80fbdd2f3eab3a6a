#include "source/TextInput.h"

#include "base/HeldRepositories.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <system_error>
#include <utility>

namespace tavix::source {

namespace {

constexpr std::size_t kChunk = std::size_t{1} << 18;

std::string systemText(int code) {
    return std::generic_category().message(code);
}

} // namespace

TextInput::TextInput(std::string path, int file) : m_path(std::move(path)), m_file(file) {}

TextInput::~TextInput() {
    ::close(m_file);
}

Error TextInput::failure(std::string_view what) const {
    return Error{fmt::format("\"{}\" {}", m_path, what)};
}

Result<std::unique_ptr<TextInput>> TextInput::open(const std::string& path, const CEncoding* encoding,
                                                   std::size_t beginning, bool isPreview, KeepGoing keepGoing) {
    if (Status free = requireNotHeld(path); !free)
        return free.error();
    // Opening a named pipe would otherwise block, uninterruptibly, until somebody writes to it.
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (file < 0)
        return Error{fmt::format("\"{}\" cannot be opened: {}", path, systemText(errno))};
    std::unique_ptr<TextInput> input(new TextInput(path, file));
    input->m_keepGoing = std::move(keepGoing);
    if (Status status = input->begin(encoding, beginning, isPreview); !status)
        return status.error();
    return input;
}

Status TextInput::begin(const CEncoding* encoding, std::size_t beginning, bool isPreview) {
    struct stat info {};
    if (::fstat(m_file, &info) != 0)
        return failure("cannot be read: " + systemText(errno));
    if (S_ISDIR(info.st_mode))
        return failure("is a folder, not a text file");
    // Virtual files report size 0.
    m_size = S_ISREG(info.st_mode) ? static_cast<std::int64_t>(info.st_size) : 0;
    m_mayWait = !S_ISREG(info.st_mode);
    m_stamp = stampOf(info);
    m_modified = m_stamp.modifiedTime();
    ::posix_fadvise(m_file, 0, 0, POSIX_FADV_SEQUENTIAL);
    const std::size_t wanted = encoding ? std::min(beginning, kSample) : kSample;
    const auto got = readBeginning(wanted);
    if (!got)
        return got.error();
    m_isFileDone = *got < m_chunk.size();
    m_isCut = isPreview && !m_isFileDone;
    m_raw = std::string_view(m_chunk).substr(0, *got);
    m_encoding = encoding ? stateEncoding(*encoding, m_raw) : detectEncoding(m_raw, m_isFileDone);
    m_isFileDone = m_isFileDone || m_isCut;
    if (m_encoding.encoding == &encodingUtf8())
        return {};
    auto decoder = TextDecoder::open(*m_encoding.encoding);
    if (!decoder)
        return failure("cannot be read: " + decoder.error().text);
    m_decoder = std::move(*decoder);
    return {};
}

Status TextInput::checkUnchanged() const {
    struct stat info {};
    if (m_size == 0)
        return {};
    if (m_bytesRead != m_size)
        return failure("changed its size while it was read");
    if (::fstat(m_file, &info) == 0 && stampOf(info).modifiedTime() != m_modified)
        return failure("was changed while it was read");
    return {};
}

Status TextInput::waitForBytes() const {
    constexpr int kPatience = 50; // milliseconds
    for (;;) {
        if (m_keepGoing && !m_keepGoing())
            return Error{kCancelled};
        pollfd waited{m_file, POLLIN, 0};
        const int ready = ::poll(&waited, 1, kPatience);
        if (ready > 0)
            return {};
        if (ready < 0 && errno != EINTR)
            return failure("cannot be read: " + systemText(errno));
    }
}

Result<std::size_t> TextInput::readBytes(char* target, std::size_t size) {
    std::size_t filled = 0;
    while (filled < size) {
        if (m_mayWait)
            if (Status status = waitForBytes(); !status)
                return status.error();
        const ssize_t got = ::read(m_file, target + filled, size - filled);
        if (got < 0) {
            if (errno == EINTR || errno == EAGAIN)
                continue;
            return failure("cannot be read: " + systemText(errno));
        }
        filled += static_cast<std::size_t>(got);
        m_bytesRead += got;
        // Reading a file that grows as fast as it is read would never end.
        if (got == 0 || (m_size > 0 && m_bytesRead > m_size)) {
            if (Status status = checkUnchanged(); !status)
                return status.error();
            break;
        }
    }
    return filled;
}

Result<std::size_t> TextInput::readContent(char* target, std::size_t size) {
    return m_unpacker ? m_unpacker->read(target, size) : readBytes(target, size);
}

Result<std::size_t> TextInput::readBeginning(std::size_t wanted) {
    m_chunk.resize(std::min(kPackingMark, wanted));
    auto got = readBytes(m_chunk.data(), m_chunk.size());
    if (!got)
        return got;
    const std::string start = m_chunk.substr(0, *got);
    if (const Packing packing = packingOf(start); packing != Packing::None) {
        m_unpacker = std::make_unique<Unpacker>(
            packing, m_path, start, [this](char* target, std::size_t size) { return readBytes(target, size); });
        m_chunk.resize(wanted);
        return m_unpacker->read(m_chunk.data(), m_chunk.size());
    }
    if (*got < m_chunk.size())
        return got;
    m_chunk.resize(m_size > 0 ? std::clamp(static_cast<std::size_t>(m_size) + 1, *got, wanted) : wanted);
    auto rest = readBytes(m_chunk.data() + *got, m_chunk.size() - *got);
    return rest ? Result<std::size_t>(*got + *rest) : rest;
}

Status TextInput::readChunk() {
    m_chunk.resize(kChunk);
    const auto got = readContent(m_chunk.data(), m_chunk.size());
    if (!got)
        return got.error();
    m_isFileDone = *got < m_chunk.size();
    m_raw = std::string_view(m_chunk).substr(0, *got);
    return {};
}

Result<std::size_t> TextInput::readDecoded(char* target, std::size_t size) {
    std::size_t filled = 0;
    for (;;) {
        const std::size_t taken = std::min(size - filled, m_text.size());
        if (taken > 0)
            std::memcpy(target + filled, m_text.data(), taken);
        filled += taken;
        m_text.remove_prefix(taken);
        if (filled == size)
            return filled;
        if (m_raw.empty() && !m_decoder->hasMore()) {
            if (m_isFileDone)
                return filled;
            if (Status status = readChunk(); !status)
                return status.error();
        }
        const std::size_t before = m_raw.size();
        m_text = m_decoder->decode(m_raw, m_isFileDone);
        m_rawTaken += static_cast<std::int64_t>(before - m_raw.size());
    }
}

Result<std::size_t> TextInput::read(char* target, std::size_t size) {
    if (m_decoder) {
        auto got = readDecoded(target, size);
        if (got)
            m_handedOut += static_cast<std::int64_t>(*got);
        return got;
    }
    const std::size_t first = std::min(size, m_raw.size());
    if (first > 0)
        std::memcpy(target, m_raw.data(), first);
    m_raw.remove_prefix(first);
    std::size_t filled = first;
    if (filled < size && !m_isFileDone) {
        m_chunk = std::string(); // its last byte was consumed
        const auto got = readContent(target + filled, size - filled);
        if (!got)
            return got.error();
        m_isFileDone = *got < size - filled;
        filled += *got;
    }
    m_rawTaken += static_cast<std::int64_t>(filled);
    m_handedOut += static_cast<std::int64_t>(filled);
    return filled;
}

std::int64_t TextInput::position(std::size_t rest) const {
    const auto kept = static_cast<std::int64_t>(rest);
    if (m_handedOut == 0)
        return 0;
    if (!m_decoder && !m_unpacker)
        return m_rawTaken - kept;
    double share = 1.0 - static_cast<double>(kept) / static_cast<double>(m_handedOut);
    if (!m_unpacker)
        return static_cast<std::int64_t>(static_cast<double>(m_rawTaken) * share);
    share *= static_cast<double>(m_rawTaken) / static_cast<double>(m_unpacker->unpackedBytes());
    return static_cast<std::int64_t>(static_cast<double>(m_unpacker->packedBytes()) * share);
}

} // namespace tavix::source
