#include "worksheet/Spool.h"

#include "base/NamelessFile.h"
#include "worksheet/Limits.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace tavix::worksheet {

namespace {

constexpr std::size_t kChunkBytes = std::size_t{256} << 10u;

Error temporaryFileError(int code) {
    return {fmt::format("Unable to keep the worksheet in a temporary file: {}", std::generic_category().message(code))};
}

} // namespace

SpoolStore::~SpoolStore() {
    if (m_file >= 0)
        ::close(m_file);
}

SpoolStore::Chunk SpoolStore::keep(std::string& bytes) {
    Chunk chunk;
    chunk.size = bytes.size();
    m_bytes += static_cast<std::int64_t>(bytes.size());
    if (m_status && m_bytes > kMaxBytes)
        m_status = Error{"The worksheets exceed 2 GB, the most that a file of this format can hold"};
    if (m_status && m_memoryLeft >= bytes.size()) {
        m_memoryLeft -= bytes.size();
        chunk.bytes.swap(bytes);
        return chunk;
    }
    chunk.position = m_fileBytes;
    if (m_status)
        m_status = writeToFile(bytes);
    bytes.clear();
    return chunk;
}

Status SpoolStore::openFile() {
    m_file = openNamelessFile(temporaryFolder());
    if (m_file < 0)
        return temporaryFileError(errno);
    return {};
}

Status SpoolStore::writeToFile(std::string_view bytes) {
    if (m_file < 0)
        if (Status opened = openFile(); !opened)
            return opened;
    while (!bytes.empty()) {
        const ssize_t written = ::pwrite(m_file, bytes.data(), bytes.size(), m_fileBytes);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return temporaryFileError(written < 0 ? errno : ENOSPC);
        m_fileBytes += written;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return {};
}

Result<std::string_view> SpoolStore::read(const Chunk& chunk, std::string& buffer) const {
    if (chunk.position < 0)
        return std::string_view(chunk.bytes);
    buffer.resize(chunk.size);
    std::size_t done = 0;
    while (done < chunk.size) {
        const ssize_t count =
            ::pread(m_file, buffer.data() + done, chunk.size - done, chunk.position + static_cast<std::int64_t>(done));
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return temporaryFileError(count < 0 ? errno : EIO);
        done += static_cast<std::size_t>(count);
    }
    return std::string_view(buffer);
}

void Spool::append(std::string_view bytes) {
    m_tail += bytes;
    if (m_tail.size() < kChunkBytes)
        return;
    m_kept += static_cast<std::int64_t>(m_tail.size());
    m_chunks.push_back(m_store->keep(m_tail));
}

Status Spool::copyTo(const Sink& sink) const {
    std::string buffer;
    for (const SpoolStore::Chunk& chunk : m_chunks) {
        Result<std::string_view> bytes = m_store->read(chunk, buffer);
        if (!bytes)
            return bytes.error();
        if (Status written = sink(*bytes); !written)
            return written;
    }
    return sink(m_tail);
}

} // namespace tavix::worksheet
