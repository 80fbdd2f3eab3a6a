#pragma once

#include <string>

namespace tavix {

/// A file without a name in `folder`, open to read and write, which is gone when it is closed, however the program
/// ends. -1, with errno, when the folder does not let one be made.
[[nodiscard]] int openNamelessFile(const std::string& folder);

/// Where temporary files go: $TMPDIR, else /tmp.
[[nodiscard]] std::string temporaryFolder();

} // namespace tavix
