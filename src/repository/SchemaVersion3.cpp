#include "repository/SchemaVersion3.h"

namespace tavix::repository {

namespace {

// Null when the table was not read from a database. What tells who someone is never stands in it.
constexpr const char* kScript = R"sql(
ALTER TABLE run_table ADD COLUMN connection TEXT;
)sql";

} // namespace

const char* const kSchemaVersion3 = kScript;

} // namespace tavix::repository
