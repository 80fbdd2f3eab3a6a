#include "base/FileWriter.h"

#include "base/HeldRepositories.h"
#include "base/NamelessFile.h"
#include "base/NumberText.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>

namespace tavix {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kBufferBytes = std::size_t{64} << 10u;
constexpr int kMostLinks = 40; ///< the number that the system follows
constexpr int kMostNames = 100;
constexpr mode_t kNewFile = 0666; ///< less the umask
constexpr mode_t kOwnersAlone = 0600;

Error reason(int code) {
    return {std::generic_category().message(code)};
}

void closeOnce(int& descriptor) {
    if (descriptor >= 0)
        ::close(descriptor);
    descriptor = -1;
}

fs::path folderOf(const fs::path& path) {
    return path.has_parent_path() ? path.parent_path() : fs::path(".");
}

/// The descriptor of this process that a path such as /proc/self/fd/1 names. The path reads as a link, but writing to
/// the descriptor continues after its content.
std::optional<int> ownDescriptor(const fs::path& path) {
    std::error_code error;
    if (fs::canonical(folderOf(path), error) != fmt::format("/proc/{}/fd", ::getpid()) || error)
        return std::nullopt;
    const auto number = parseInteger(path.filename().string());
    return number && *number >= 0 && *number <= INT32_MAX ? std::optional(static_cast<int>(*number)) : std::nullopt;
}

bool exists(const std::string& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0;
}

/// SQLite keeps recent changes beside a database that is open, or whose program was killed. Only the names are
/// examined: opening and closing such a file would drop this process's locks on it.
bool isOpenDatabase(const std::string& path) {
    if (exists(path + "-wal"))
        return true;
    const bool isPartOfOne = path.ends_with("-wal") || path.ends_with("-shm");
    return isPartOfOne && exists(path.substr(0, path.size() - 4));
}

bool hasAccessList(const std::string& path) {
    return ::getxattr(path.c_str(), "system.posix_acl_access", nullptr, 0) > 0;
}

/// -1 with errno.
ssize_t writeSome(int file, std::string_view bytes) {
    const ssize_t count = ::write(file, bytes.data(), bytes.size());
    if (count == 0 && !bytes.empty())
        errno = ENOSPC;
    return count == 0 ? -1 : count;
}

/// An errno, 0 on success, also for what cannot be synced, such as a pipe.
int bringToDisk(int file) {
    return ::fsync(file) == 0 || errno == EINVAL || errno == EROFS || errno == ENOTSUP ? 0 : errno;
}

std::string randomName() {
    std::uint64_t number = 0;
    return ::getentropy(&number, sizeof number) == 0 ? fmt::format(".tavix-{:016x}", number) : std::string();
}

} // namespace

Result<std::unique_ptr<FileWriter>> FileWriter::open(const std::string& path, Reader reader) {
    std::unique_ptr<FileWriter> writer(new FileWriter);
    if (const Status opened = writer->openTarget(path, reader); !opened)
        return opened.error();
    return writer;
}

FileWriter::~FileWriter() {
    closeOnce(m_file);
    closeOnce(m_target);
    dropBeside();
}

void FileWriter::dropBeside() {
    if (!m_temporary.empty())
        ::unlinkat(m_folder, m_temporary.c_str(), 0);
    m_temporary.clear();
    closeOnce(m_folder);
}

Status FileWriter::openTarget(const std::string& path, Reader reader) {
    if (path.empty() || path.find('\0') != std::string::npos)
        return reason(ENOENT);
    fs::path target = path;
    for (int links = 0;; ++links) {
        if (const auto descriptor = ownDescriptor(target))
            return openThrough(::fcntl(*descriptor, F_DUPFD_CLOEXEC, 0));
        std::error_code noLink;
        const fs::path next = fs::read_symlink(target, noLink);
        if (noLink)
            break;
        if (links == kMostLinks)
            return reason(ELOOP);
        target = folderOf(target) / next;
    }
    m_path = target.string();
    if (Status free = requireNotHeld(m_path); !free)
        return free;

    struct stat old {};
    if (::stat(m_path.c_str(), &old) != 0) {
        if (errno != ENOENT)
            return reason(errno);
        if (!target.has_filename())
            return reason(EISDIR);
        const int failure = openBeside(kNewFile);
        return failure == 0 ? Status() : reason(failure);
    }
    if (S_ISDIR(old.st_mode))
        return reason(EISDIR);
    if (S_ISREG(old.st_mode))
        return openOver(old);
    const bool mayWait = reader == Reader::Await || !S_ISFIFO(old.st_mode);
    const int file = ::open(m_path.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY | (mayWait ? 0 : O_NONBLOCK));
    if (file >= 0 && !mayWait)
        ::fcntl(file, F_SETFL, 0);
    return openThrough(file);
}

Status FileWriter::openThrough(int descriptor) {
    if (descriptor < 0)
        return reason(errno);
    m_file = descriptor;
    return {};
}

Status FileWriter::openOver(const struct stat& old) {
    if (isOpenDatabase(m_path))
        return Error{"it belongs to a database that is open"};
    if (::faccessat(AT_FDCWD, m_path.c_str(), W_OK, AT_EACCESS) != 0)
        return reason(errno);
    if (old.st_nlink > 1 || hasAccessList(m_path))
        return openCopy();
    const int failure = openBeside(kOwnersAlone);
    if (failure == EACCES || failure == EPERM || failure == EROFS)
        return openCopy();
    if (failure != 0)
        return reason(failure);
    if (takesOver(old))
        return {};
    closeOnce(m_file);
    dropBeside();
    return openCopy();
}

Status FileWriter::openCopy() {
    m_way = Way::Copy;
    m_target = ::open(m_path.c_str(), O_WRONLY | O_CLOEXEC);
    if (m_target < 0)
        return reason(errno);
    const std::string folder = temporaryFolder();
    m_file = openNamelessFile(folder);
    if (m_file < 0)
        return Error{fmt::format("{} (in {})", reason(errno).text, folder)};
    return {};
}

int FileWriter::openBeside(unsigned mode) {
    m_way = Way::Replace;
    m_folder = ::open(folderOf(m_path).c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    if (m_folder < 0)
        return errno;
    for (int tries = 0; tries < kMostNames; ++tries) {
        std::string name = randomName();
        if (name.empty())
            return errno;
        m_file = ::openat(m_folder, name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, mode);
        if (m_file >= 0)
            m_temporary = std::move(name);
        if (m_file >= 0 || errno != EEXIST)
            break;
    }
    const int failure = m_file >= 0 ? 0 : errno;
    if (failure != 0)
        closeOnce(m_folder);
    return failure;
}

bool FileWriter::takesOver(const struct stat& old) const {
    struct stat fresh {};
    if (::fstat(m_file, &fresh) != 0)
        return false;
    const bool isSameOwner = fresh.st_uid == old.st_uid && fresh.st_gid == old.st_gid;
    return (isSameOwner || ::fchown(m_file, old.st_uid, old.st_gid) == 0) &&
           ::fchmod(m_file, old.st_mode & 07777u) == 0;
}

Status FileWriter::fail(int code) {
    if (m_status) {
        m_status =
            m_way == Way::Copy ? Error{fmt::format("{} (in {})", reason(code).text, temporaryFolder())} : reason(code);
        m_hasReaderLeft = code == EPIPE;
    }
    return m_status;
}

Status FileWriter::write(std::string_view bytes) {
    if (m_buffer.size() + bytes.size() < kBufferBytes) {
        m_buffer += bytes;
        return m_status;
    }
    if (Status flushed = put(m_buffer); !flushed)
        return flushed;
    m_buffer.clear();
    return put(bytes);
}

Status FileWriter::put(std::string_view bytes) {
    while (m_status && !bytes.empty()) {
        const ssize_t count = writeSome(m_file, bytes);
        if (count >= 0)
            bytes.remove_prefix(static_cast<std::size_t>(count));
        // A pipe that nobody reads must not keep the program from ending.
        else if (errno != EINTR || m_way == Way::Through)
            return fail(errno);
    }
    return m_status;
}

Status FileWriter::commit() {
    if (Status flushed = put(m_buffer); !flushed)
        return flushed;
    m_buffer.clear();
    if (m_way == Way::Copy)
        return m_status = copyOver(m_file);
    if (const int failure = bringToDisk(m_file); failure != 0)
        return fail(failure);
    if (::close(std::exchange(m_file, -1)) != 0 && errno != EINTR)
        return fail(errno);
    return m_way == Way::Replace ? m_status = replace() : Status();
}

Status FileWriter::replace() {
    if (::renameat(m_folder, m_temporary.c_str(), AT_FDCWD, m_path.c_str()) == 0) {
        m_temporary.clear();
        return {};
    }
    const int failure = errno;
    // A mount point, or another user's file in a folder in which only owners may rename.
    if (failure != EBUSY && failure != EPERM && failure != EACCES && failure != EXDEV)
        return reason(failure);
    m_target = ::open(m_path.c_str(), O_WRONLY | O_CLOEXEC);
    m_file = ::openat(m_folder, m_temporary.c_str(), O_RDONLY | O_CLOEXEC);
    return m_target < 0 || m_file < 0 ? reason(failure) : copyOver(m_file);
}

Status FileWriter::copyOver(int from) {
    struct stat fresh {};
    struct stat old {};
    if (::fstat(from, &fresh) != 0 || ::fstat(m_target, &old) != 0)
        return reason(errno);
    const bool isReserved = fresh.st_size == 0 || ::fallocate(m_target, 0, 0, fresh.st_size) == 0;
    if (!isReserved && errno != EOPNOTSUPP && errno != ENOSYS) {
        const int failure = errno;
        // Some of it may have been copied.
        static_cast<void>(::ftruncate(m_target, old.st_size) == 0);
        return reason(failure);
    }
    m_buffer.resize(kBufferBytes);
    for (off_t done = 0; done < fresh.st_size;) {
        const ssize_t count = ::pread(from, m_buffer.data(), m_buffer.size(), done);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return reason(count < 0 ? errno : EIO);
        std::string_view bytes(m_buffer.data(), static_cast<std::size_t>(count));
        while (!bytes.empty()) {
            const ssize_t written = writeSome(m_target, bytes);
            if (written < 0 && errno != EINTR)
                return reason(errno);
            bytes.remove_prefix(written < 0 ? 0 : static_cast<std::size_t>(written));
        }
        done += count;
    }
    if (::ftruncate(m_target, fresh.st_size) != 0)
        return reason(errno);
    if (const int failure = bringToDisk(m_target); failure != 0)
        return reason(failure);
    return ::close(std::exchange(m_target, -1)) == 0 || errno == EINTR ? Status() : reason(errno);
}

} // namespace tavix
