#pragma once

#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace tavix::testing {

/// During its lifetime, SQLite finds a disk on which the files of a folder may have at most so many bytes.
class FullDisk {
  public:
    FullDisk(const std::filesystem::path& folder, std::uintmax_t bytes) {
        limit = bytes;
        watched = folder;
        replace("pwrite", reinterpret_cast<sqlite3_syscall_ptr>(&FullDisk::pwriteCall));
        replace("pwrite64", reinterpret_cast<sqlite3_syscall_ptr>(&FullDisk::pwriteCall));
        replace("write", reinterpret_cast<sqlite3_syscall_ptr>(&FullDisk::writeCall));
    }
    ~FullDisk() {
        for (const auto& [name, call] : m_replaced)
            m_system->xSetSystemCall(m_system, name, call);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

    /// The size of the folder's files.
    static std::uintmax_t used() {
        std::uintmax_t sum = 0;
        std::error_code ignored;
        for (const auto& entry : std::filesystem::directory_iterator(watched))
            sum += std::max(entry.file_size(ignored), std::uintmax_t{0});
        return sum;
    }

  private:
    void replace(const char* name, sqlite3_syscall_ptr call) {
        sqlite3_syscall_ptr before = m_system->xGetSystemCall(m_system, name);
        if (!before)
            return;
        m_replaced.emplace_back(name, before);
        m_system->xSetSystemCall(m_system, name, call);
    }

    static bool hasRoom(int file, off_t end) {
        struct stat info {};
        if (::fstat(file, &info) != 0 || end <= info.st_size)
            return true;
        if (used() + static_cast<std::uintmax_t>(end - info.st_size) <= limit)
            return true;
        errno = ENOSPC;
        return false;
    }
    static ssize_t pwriteCall(int file, const void* data, std::size_t size, off_t at) {
        return hasRoom(file, at + static_cast<off_t>(size)) ? ::pwrite(file, data, size, at) : -1;
    }
    static ssize_t writeCall(int file, const void* data, std::size_t size) {
        const off_t at = ::lseek(file, 0, SEEK_CUR);
        return hasRoom(file, at + static_cast<off_t>(size)) ? ::write(file, data, size) : -1;
    }

    static inline std::uintmax_t limit = 0;
    static inline std::filesystem::path watched;
    sqlite3_vfs* m_system = sqlite3_vfs_find(nullptr);
    std::vector<std::pair<const char*, sqlite3_syscall_ptr>> m_replaced;
};

} // namespace tavix::testing
