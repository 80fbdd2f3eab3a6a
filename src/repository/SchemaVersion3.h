#pragma once

namespace tavix::repository {

/// The script that leads from version 2 to version 3: how a table of a database was reached.
extern const char* const kSchemaVersion3;

} // namespace tavix::repository
