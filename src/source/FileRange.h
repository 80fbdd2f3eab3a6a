#pragma once

#include <cstdint>

namespace tavix::source {

/// A part of a file, in bytes. It begins where a row does and ends where one does, or the file.
struct FileRange {
    std::int64_t begin = 0;
    std::int64_t end = 0;

    bool operator==(const FileRange&) const = default;
};

} // namespace tavix::source
