#pragma once

namespace tavix::sql {

/// Makes SQLite lock files through open file descriptions instead of the process, where the system supports it. POSIX
/// locks belong to the process, and closing any descriptor of the file drops all of them: a file dialog that looks into
/// a repository would drop the session's locks, and another program could then delete a writer's log. The first call
/// decides for the process.
void useDescriptionLocks();

} // namespace tavix::sql
