#pragma once

#include "base/Clock.h"

#include <cstdint>
#include <optional>
#include <string>

struct stat;

namespace tavix::source {

/// By which a regular file is known to be the one that was read, and unchanged: nobody sets back the time at which its
/// system noted a change.
struct FileStamp {
    std::int64_t size = 0;     ///< bytes
    std::int64_t modified = 0; ///< of the content, nanoseconds since 1970
    std::int64_t changed = 0;  ///< of the content or of what the system knows about the file, the same

    /// As a repository keeps it.
    [[nodiscard]] UtcTime modifiedTime() const;

    bool operator==(const FileStamp&) const = default;
};

[[nodiscard]] FileStamp stampOf(const struct ::stat& info);
/// Of what is at the path; nothing when that is nothing, or a folder.
[[nodiscard]] std::optional<FileStamp> stampAt(const std::string& path);

} // namespace tavix::source
