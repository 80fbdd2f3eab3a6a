#include "repository/SchemaVersion5.h"

namespace tavix::repository {

namespace {

// Both for one file of a table and aids only: without them the file is searched from its beginning. The times of the
// file are nanoseconds. As below every run, no foreign key to it.
constexpr const char* kScript = R"sql(
CREATE TABLE file_place (
    id INTEGER PRIMARY KEY,
    run INTEGER NOT NULL,
    table_id INTEGER NOT NULL REFERENCES profiled_table(id),
    file_size INTEGER NOT NULL,
    file_modified INTEGER NOT NULL,
    file_changed INTEGER NOT NULL,
    seed_1 INTEGER NOT NULL,
    seed_2 INTEGER NOT NULL,
    probe INTEGER NOT NULL,
    offsets BLOB NOT NULL,
    UNIQUE (run, table_id)
) STRICT;

CREATE TABLE value_place (
    id INTEGER PRIMARY KEY,
    run INTEGER NOT NULL,
    field INTEGER NOT NULL,
    first_bucket INTEGER NOT NULL,
    ranges BLOB NOT NULL,
    UNIQUE (run, field, first_bucket)
) STRICT;
)sql";

} // namespace

const char* const kSchemaVersion5 = kScript;

} // namespace tavix::repository
