#include "repository/SchemaVersion6.h"

namespace tavix::repository {

namespace {

// The new columns are null in the rows of older runs. delimiter: the character, empty when lines were not split.
// moved_file: the file that a run read, by its path, size and time, and where it is now; size and time are -1 where
// the run does not say them. run_file is built anew, since each column that is added to a table makes SQLite check all
// views, which is a third of the time that a new repository takes.
constexpr const char* kScript = R"sql(
CREATE TABLE run_file_before AS SELECT run, table_id, position, path, quote FROM run_file;
DROP TABLE run_file;
CREATE TABLE run_file (
    run INTEGER NOT NULL,
    table_id INTEGER NOT NULL REFERENCES profiled_table(id),
    position INTEGER NOT NULL,
    path TEXT NOT NULL,
    quote TEXT NOT NULL,
    delimiter TEXT,
    encoding TEXT,
    byte_order_mark INTEGER,
    size INTEGER,
    modified INTEGER,
    PRIMARY KEY (run, table_id, position)
) STRICT, WITHOUT ROWID;
INSERT INTO run_file(run, table_id, position, path, quote) SELECT run, table_id, position, path, quote FROM run_file_before;
DROP TABLE run_file_before;

ALTER TABLE run_table ADD COLUMN connection_user TEXT;

CREATE TABLE moved_file (
    path TEXT NOT NULL,
    size INTEGER NOT NULL,
    modified INTEGER NOT NULL,
    new_path TEXT NOT NULL,
    found INTEGER NOT NULL,
    PRIMARY KEY (path, size, modified)
) STRICT, WITHOUT ROWID;
)sql";

} // namespace

const char* const kSchemaVersion6 = kScript;

} // namespace tavix::repository
