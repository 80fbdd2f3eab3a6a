#pragma once

namespace tavix::repository {

/// The script that leads from version 4 to version 5: where in its file the values of a field stand.
extern const char* const kSchemaVersion5;

} // namespace tavix::repository
