#pragma once

#include <cstdint>

namespace tavix::source {

/// A part of a file, in bytes, from the start of a row to the end of one or of the file.
struct FileRange {
    std::int64_t begin = 0;
    std::int64_t end = 0;

    bool operator==(const FileRange&) const = default;
};

} // namespace tavix::source
