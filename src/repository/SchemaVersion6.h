#pragma once

namespace tavix::repository {

/// The script that leads from version 5 to version 6: how each file of a table was read, where files went that were
/// moved, and the user of a database.
extern const char* const kSchemaVersion6;

} // namespace tavix::repository
