#include "sql/FileLocks.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <mutex>
#include <vector>

namespace tavix::sql {

namespace {

#ifdef F_OFD_SETLK

using CloseCall = int (*)(int);
using FcntlCall = int (*)(int, int, ...);

/// SQLite counts the locks of its connections by file and takes or drops a system lock for all of them at once, through
/// any of the connections. So all locks of a file use one descriptor here, too: that of the first lock, which SQLite
/// does not close while a lock is held.
class LockedFiles {
  public:
    LockedFiles(FcntlCall fcntlCall, CloseCall closeCall) : m_fcntl(fcntlCall), m_close(closeCall) {}

    int lock(int descriptor, int command, struct flock& wanted) {
        struct stat info {};
        if (::fstat(descriptor, &info) != 0)
            return -1;
        const std::lock_guard guard(m_mutex);
        auto file = find(info);
        if (command == F_GETLK && file == m_files.end()) {
            bool byDescription = true;
            return callOrFallBack(descriptor, byDescription, F_GETLK, wanted);
        }
        if (command == F_GETLK)
            return call(file->descriptor, file->byDescription, F_GETLK, wanted);
        if (wanted.l_type == F_UNLCK)
            return unlock(file, descriptor, wanted);
        if (file == m_files.end())
            file = m_files.insert(file, {info.st_dev, info.st_ino, descriptor});
        return callOrFallBack(file->descriptor, file->byDescription, command, wanted);
    }

    int close(int descriptor) {
        {
            const std::lock_guard guard(m_mutex);
            std::erase_if(m_files, [=](const File& file) { return file.descriptor == descriptor; });
        }
        return m_close(descriptor);
    }

    int passOn(int descriptor, int command, int argument) const { return m_fcntl(descriptor, command, argument); }

  private:
    struct File {
        dev_t device = 0;
        ino_t inode = 0;
        int descriptor = -1;
        bool byDescription = true;
    };
    using Files = std::vector<File>;

    Files::iterator find(const struct stat& info) {
        return std::find_if(m_files.begin(), m_files.end(),
                            [&](const File& file) { return file.device == info.st_dev && file.inode == info.st_ino; });
    }

    int unlock(Files::iterator file, int descriptor, struct flock& wanted) {
        const bool isAll = wanted.l_start == 0 && wanted.l_len == 0;
        int done = 0;
        if (file != m_files.end()) {
            done = call(file->descriptor, file->byDescription, F_SETLK, wanted);
            if (isAll)
                m_files.erase(file);
        }
        // Another user of SQLite may have locked the file before the first call of useDescriptionLocks().
        return done == 0 && isAll ? call(descriptor, false, F_SETLK, wanted) : done;
    }

    /// Some systems do not support such locks. Then none is used for the file.
    int callOrFallBack(int descriptor, bool& byDescription, int command, struct flock& wanted) const {
        const int done = call(descriptor, byDescription, command, wanted);
        if (done == 0 || errno != EINVAL || !byDescription)
            return done;
        byDescription = false;
        return call(descriptor, false, command, wanted);
    }

    int call(int descriptor, bool byDescription, int command, struct flock& wanted) const {
        if (!byDescription)
            return m_fcntl(descriptor, command, &wanted);
        wanted.l_pid = 0; // Required by the system, and SQLite leaves it unset.
        return m_fcntl(descriptor, command == F_GETLK ? F_OFD_GETLK : F_OFD_SETLK, &wanted);
    }

    const FcntlCall m_fcntl;
    const CloseCall m_close;
    std::mutex m_mutex;
    Files m_files;
};

LockedFiles* lockedFiles = nullptr;

int closeFile(int descriptor) {
    return lockedFiles->close(descriptor);
}

// SQLite always gives a third argument.
int controlFile(int descriptor, int command, ...) {
    std::va_list arguments;
    va_start(arguments, command);
    const bool isLock = command == F_SETLK || command == F_GETLK;
    const int done = isLock ? lockedFiles->lock(descriptor, command, *va_arg(arguments, struct flock*))
                            : lockedFiles->passOn(descriptor, command, va_arg(arguments, int));
    va_end(arguments);
    return done;
}

template <typename Call>
Call originalCall(sqlite3_vfs& system, const char* name) {
    return reinterpret_cast<Call>(system.xGetSystemCall(&system, name));
}

void replaceCalls() {
    sqlite3_vfs* system = sqlite3_vfs_find("unix");
    if (!system || system->iVersion < 3)
        return;
    const auto fcntlCall = originalCall<FcntlCall>(*system, "fcntl");
    const auto closeCall = originalCall<CloseCall>(*system, "close");
    if (!fcntlCall || !closeCall)
        return;
    // Never destroyed: a database may be closed later than any of our objects.
    static auto* files = new LockedFiles(fcntlCall, closeCall);
    lockedFiles = files;
    system->xSetSystemCall(system, "close", reinterpret_cast<sqlite3_syscall_ptr>(closeFile));
    system->xSetSystemCall(system, "fcntl", reinterpret_cast<sqlite3_syscall_ptr>(controlFile));
}

#else

void replaceCalls() {}

#endif

} // namespace

void useDescriptionLocks() {
    static std::once_flag once;
    std::call_once(once, replaceCalls);
}

} // namespace tavix::sql
