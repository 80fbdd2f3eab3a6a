#include "base/HeldRepositories.h"

#include <fmt/format.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <mutex>
#include <set>
#include <system_error>

namespace tavix {

namespace {

constexpr std::string_view kScheme = "sqlite:";

struct Held {
    std::mutex mutex;
    std::multiset<std::string> paths;
};

Held& held() {
    // Never destroyed: objects with static storage may still close connections.
    static auto* all = new Held;
    return *all;
}

/// The program may change its working folder later.
std::string absolute(const std::string& path) {
    std::error_code error;
    const std::filesystem::path whole = std::filesystem::absolute(path, error);
    return error ? path : whole.string();
}

std::string resolved(const std::string& path) {
    std::error_code error;
    const std::filesystem::path whole = std::filesystem::weakly_canonical(path, error);
    return error ? std::filesystem::path(path).lexically_normal().string() : whole.string();
}

bool isSameFile(const std::string& left, const std::string& right) {
    struct stat leftInfo {};
    struct stat rightInfo {};
    const bool isLeft = ::stat(left.c_str(), &leftInfo) == 0;
    const bool isRight = ::stat(right.c_str(), &rightInfo) == 0;
    if (isLeft && isRight)
        return leftInfo.st_dev == rightInfo.st_dev && leftInfo.st_ino == rightInfo.st_ino;
    return isLeft == isRight && resolved(left) == resolved(right);
}

} // namespace

std::string repositoryFile(std::string_view connection) {
    return std::string(connection.starts_with(kScheme) ? connection.substr(kScheme.size()) : connection);
}

HeldRepository::HeldRepository(const std::string& path) : m_path(absolute(path)) {
    const std::lock_guard guard(held().mutex);
    held().paths.insert(m_path);
}

HeldRepository::~HeldRepository() {
    const std::lock_guard guard(held().mutex);
    held().paths.erase(held().paths.find(m_path));
}

Status requireNotHeld(const std::string& path) {
    const std::lock_guard guard(held().mutex);
    for (const std::string& repository : held().paths)
        for (const char* ending : {"", "-wal", "-shm", "-journal"})
            if (isSameFile(path, repository + ending))
                return Error{
                    fmt::format("\"{}\" belongs to the repository \"{}\", which is in use. Choose another file.", path,
                                repository)};
    return {};
}

} // namespace tavix
