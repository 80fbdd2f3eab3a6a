#include "source/FileStamp.h"

#include <sys/stat.h>

namespace tavix::source {

namespace {

std::int64_t nanoseconds(const timespec& time) {
    return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

} // namespace

FileStamp stampOf(const struct ::stat& info) {
    return {static_cast<std::int64_t>(info.st_size), nanoseconds(info.st_mtim), nanoseconds(info.st_ctim)};
}

UtcTime FileStamp::modifiedTime() const {
    return UtcTime(std::chrono::floor<std::chrono::milliseconds>(std::chrono::nanoseconds(modified)));
}

std::optional<FileStamp> stampAt(const std::string& path) {
    struct stat info {};
    if (path.empty() || ::stat(path.c_str(), &info) != 0 || S_ISDIR(info.st_mode))
        return std::nullopt;
    return stampOf(info);
}

} // namespace tavix::source
