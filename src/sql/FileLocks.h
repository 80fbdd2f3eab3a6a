#pragma once

namespace tavix::sql {

/// Lets SQLite lock files through their open descriptions rather than through the process, where the system can. POSIX
/// locks belong to the process, and all of them vanish when any descriptor of the file is closed: a file dialog that
/// peeks into a repository would take away the locks of the session, and another program could then remove the log of
/// a writer. The first call decides for the process.
void useDescriptionLocks();

} // namespace tavix::sql
