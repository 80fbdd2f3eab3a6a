#include "source/TextInput.h"

#include <fcntl.h>
#include <fmt/format.h>
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
                                                   std::size_t beginning, bool isPreview) {
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0)
        return Error{fmt::format("\"{}\" cannot be opened: {}", path, systemText(errno))};
    std::unique_ptr<TextInput> input(new TextInput(path, file));
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
    // Files that the system makes up say 0.
    m_size = S_ISREG(info.st_mode) ? static_cast<std::int64_t>(info.st_size) : 0;
    m_stamp = stampOf(info);
    m_modified = m_stamp.modifiedTime();
    ::posix_fadvise(m_file, 0, 0, POSIX_FADV_SEQUENTIAL);
    const std::size_t wanted = encoding ? std::min(beginning, kSample) : kSample;
    m_chunk.resize(m_size > 0 ? std::min(wanted, static_cast<std::size_t>(m_size) + 1) : wanted);
    const auto got = readBytes(m_chunk.data(), m_chunk.size());
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

Result<std::size_t> TextInput::readBytes(char* target, std::size_t size) {
    std::size_t filled = 0;
    while (filled < size) {
        const ssize_t got = ::read(m_file, target + filled, size - filled);
        if (got < 0) {
            if (errno == EINTR)
                continue;
            return failure("cannot be read: " + systemText(errno));
        }
        filled += static_cast<std::size_t>(got);
        m_bytesRead += got;
        // A file that grows as fast as it is read would have no end.
        if (got == 0 || (m_size > 0 && m_bytesRead > m_size)) {
            if (Status status = checkUnchanged(); !status)
                return status.error();
            break;
        }
    }
    return filled;
}

Status TextInput::readChunk() {
    m_chunk.resize(kChunk);
    const auto got = readBytes(m_chunk.data(), m_chunk.size());
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
        m_chunk = std::string(); // its last was taken
        const auto got = readBytes(target + filled, size - filled);
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
    if (!m_decoder)
        return m_rawTaken - kept;
    const double share = 1.0 - static_cast<double>(kept) / static_cast<double>(m_handedOut);
    return static_cast<std::int64_t>(static_cast<double>(m_rawTaken) * share);
}

} // namespace tavix::source
