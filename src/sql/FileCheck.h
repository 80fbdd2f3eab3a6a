#pragma once

#include "sql/Connection.h"

#include <string>

namespace tavix::sql {

/// What Connection::openFile() would find wrong with the file before it opens it.
[[nodiscard]] Status checkRepositoryFile(const std::string& path, OpenMode mode);

} // namespace tavix::sql
