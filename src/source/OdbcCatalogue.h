#pragma once

#include "base/Result.h"
#include "source/DatabaseTable.h"

#include <string>
#include <vector>

namespace tavix::source {

/// The tables and views made by users.
[[nodiscard]] Result<std::vector<TableRequest>> listTables(const OdbcConnection& connection);

struct CatalogueEntry {
    TableRequest address;
    std::vector<DeclaredColumn> columns;
};

/// The table with exactly this name, its columns in their order and its key. Fails if there is none, naming similar
/// ones, or more than one.
[[nodiscard]] Result<CatalogueEntry> findTable(const OdbcConnection& connection, const TableRequest& request);

} // namespace tavix::source
