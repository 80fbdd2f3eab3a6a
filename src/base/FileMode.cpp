#include "base/FileMode.h"

#include <sys/stat.h>

namespace tavix {

mode_t modeOfReplaced(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) == 0)
        return status.st_mode & 0777;
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return 0666 & ~mask;
}

} // namespace tavix
