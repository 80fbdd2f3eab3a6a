#pragma once

#include "base/Clock.h"

#include <cstdint>
#include <optional>
#include <string>

struct stat;

namespace tavix::source {

/// Identifies a regular file and its state: the time at which its system noted a change cannot be set back.
struct FileStamp {
    std::int64_t size = 0;     ///< bytes
    std::int64_t modified = 0; ///< of the content, nanoseconds since 1970
    std::int64_t changed = 0;  ///< of the content or the attributes, likewise

    /// As stored in a repository.
    [[nodiscard]] UtcTime modifiedTime() const;

    bool operator==(const FileStamp&) const = default;
};

[[nodiscard]] FileStamp stampOf(const struct ::stat& info);
/// Of the file at the path; nothing if there is none, or a folder.
[[nodiscard]] std::optional<FileStamp> stampAt(const std::string& path);

} // namespace tavix::source
