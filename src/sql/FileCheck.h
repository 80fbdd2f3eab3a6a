#pragma once

#include "sql/Connection.h"

#include <string>

namespace tavix::sql {

/// The checks of Connection::openFile() before it opens the file.
[[nodiscard]] Status checkRepositoryFile(const std::string& path, OpenMode mode);

} // namespace tavix::sql
