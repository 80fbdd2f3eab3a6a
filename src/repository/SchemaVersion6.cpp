#include "repository/SchemaVersion6.h"

namespace tavix::repository {

namespace {

// The new columns are null in the rows of older runs. delimiter: the character, empty when lines were not split.
// moved_file: the file that a run read, by its path, size and time, and where it is now; size and time are -1 where
// the run does not say them.
constexpr const char* kScript = R"sql(
ALTER TABLE run_file ADD COLUMN delimiter TEXT;
ALTER TABLE run_file ADD COLUMN encoding TEXT;
ALTER TABLE run_file ADD COLUMN byte_order_mark INTEGER;
ALTER TABLE run_file ADD COLUMN size INTEGER;
ALTER TABLE run_file ADD COLUMN modified INTEGER;

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
