#pragma once

namespace tavix::repository {

/// The script that leads from version 3 to version 4: the files of a table, so that its rows can be read again.
extern const char* const kSchemaVersion4;

} // namespace tavix::repository
