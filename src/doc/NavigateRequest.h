#pragma once

#include <string>

namespace tavix {

/// A request to show a metric or rule of a table, for example the one that an alert watches.
struct NavigateRequest {
    std::string dataSource;
    std::string catalog;
    std::string schema;
    std::string table;      ///< the object name of a query-based or filter-based table
    int mode = 0;           ///< kind of the data source: 0 ODBC, 4 files
    std::string metricKind; ///< the code of an alert's subject, see base/AlertRule.h
    int metricId = -1;      ///< of the metric or rule
    int rowId = -1;         ///< for a standard metric, the id of its field
    int tableId = -1;       ///< if it is known; the names and the mode are then not read
    int report = -1;        ///< the job of the report to open first; -1: the one that is open
    std::string reportName = {};
    int run = -1; ///< of the report; -1: the one that is shown
};

} // namespace tavix
