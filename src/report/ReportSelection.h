#pragma once

#include "base/TableKind.h"

#include <cstdint>
#include <string>

namespace tavix {

/// The pages of the navigator. The number is the index of the page and the mode of the document.
enum class NavigatorPage { Tables = 0, Collections = 1, Analyses = 2 };

/// A table of a run with the names that identify it, its size and its definition.
struct TableIdentity {
    int id = -1;
    TableKind kind = TableKind::Plain;
    std::string dataSource;
    std::string catalog;
    std::string schema;
    std::string name;       ///< of the table; for a filter its base table
    std::string objectName; ///< of a query-based or filter-based table; empty for a plain one
    std::string baseTable;  ///< not empty for a filter-based table
    std::string query;
    std::string filter;
    std::int64_t totalRecords = 0;     ///< -1 when it is not known
    std::int64_t processedRecords = 0; ///< -1 when it is not known
    std::int64_t damagedRecords = 0;
    std::int64_t fields = 0;
    bool isSample = false; ///< its metrics are those of a sample of its rows, or of its base table's

    /// The object name, else the plain name.
    [[nodiscard]] const std::string& displayName() const { return objectName.empty() ? name : objectName; }

    bool operator==(const TableIdentity&) const = default;
};

/// The selection in the navigator.
struct ReportSelection {
    enum class Kind { Nothing, Table, Collection, Analysis };

    Kind kind = Kind::Nothing;
    TableIdentity table; ///< when kind is Table
    int id = -1;         ///< of the collection or analysis
    std::string name;    ///< of the collection or analysis
    int fieldId = -1;    ///< the selected field of the table or collection; -1 without one
    std::string fieldName;

    bool operator==(const ReportSelection&) const = default;
};

} // namespace tavix
