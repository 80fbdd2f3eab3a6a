#pragma once

namespace tavix::repository {

/// The script that leads from version 6 to version 7: checksums of runs, and views of all that a repository holds.
extern const char* const kSchemaVersion7;

} // namespace tavix::repository
