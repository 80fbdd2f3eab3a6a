#include "profiling/SpillFile.h"

#include "base/NamelessFile.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace tavix::profiling {

namespace {

Error failure(const std::string& folder, const char* what, int code) {
    return Error{
        fmt::format("The temporary file in \"{}\" cannot be {}: {}. Give the run more memory (--memory) or set "
                    "TMPDIR to a folder with more space.",
                    folder, what, std::generic_category().message(code))};
}

} // namespace

SpillFile::~SpillFile() {
    if (m_file >= 0)
        ::close(m_file);
}

Status SpillFile::open() {
    const std::lock_guard lock(m_opening);
    if (m_file >= 0)
        return {};
    const int file = openNamelessFile(m_folder);
    if (file < 0)
        return failure(m_folder, "made", errno);
    m_file = file;
    return {};
}

Result<std::uint64_t> SpillFile::append(std::span<const std::byte> bytes) {
    if (m_file < 0)
        if (Status status = open(); !status)
            return status.error();
    const std::uint64_t offset = m_end.fetch_add(bytes.size());
    std::uint64_t at = offset;
    while (!bytes.empty()) {
        const ssize_t done = ::pwrite(m_file, bytes.data(), bytes.size(), static_cast<off_t>(at));
        if (done < 0 && errno == EINTR)
            continue;
        if (done <= 0)
            return failure(m_folder, "written", done < 0 ? errno : ENOSPC);
        at += static_cast<std::uint64_t>(done);
        bytes = bytes.subspan(static_cast<std::size_t>(done));
    }
    return offset;
}

Status SpillFile::read(std::uint64_t offset, std::span<std::byte> bytes) const {
    while (!bytes.empty()) {
        const ssize_t done = ::pread(m_file, bytes.data(), bytes.size(), static_cast<off_t>(offset));
        if (done < 0 && errno == EINTR)
            continue;
        if (done <= 0)
            return failure(m_folder, "read", done < 0 ? errno : EIO);
        offset += static_cast<std::uint64_t>(done);
        bytes = bytes.subspan(static_cast<std::size_t>(done));
    }
    return {};
}

void SpillFile::release(std::uint64_t offset, std::uint64_t size) {
    // Where the file system cannot punch holes, the space is freed when the file is closed.
    (void)::fallocate(m_file, FALLOC_FL_PUNCH_HOLE | FALLOC_FL_KEEP_SIZE, static_cast<off_t>(offset),
                      static_cast<off_t>(size));
}

} // namespace tavix::profiling
