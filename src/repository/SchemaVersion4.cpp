#include "repository/SchemaVersion4.h"

namespace tavix::repository {

namespace {

// quote: the character, empty when quotes meant nothing. As below every run, no foreign key to it.
constexpr const char* kScript = R"sql(
CREATE TABLE run_file (
    run INTEGER NOT NULL,
    table_id INTEGER NOT NULL REFERENCES profiled_table(id),
    position INTEGER NOT NULL,
    path TEXT NOT NULL,
    quote TEXT NOT NULL,
    PRIMARY KEY (run, table_id, position)
) STRICT, WITHOUT ROWID;
)sql";

} // namespace

const char* const kSchemaVersion4 = kScript;

} // namespace tavix::repository
