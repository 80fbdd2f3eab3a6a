#pragma once

#include <string>

namespace tavix {

/// Creates a nameless file in `folder`, open to read and write, which vanishes when it is closed, however the program
/// ends. -1, with errno, on failure.
[[nodiscard]] int openNamelessFile(const std::string& folder);

/// The folder for temporary files: $TMPDIR, else /tmp.
[[nodiscard]] std::string temporaryFolder();

} // namespace tavix
