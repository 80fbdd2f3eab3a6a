#pragma once

#include <string>

namespace tavix {

/// Asks the view to go to a figure of a table, as an alert does that watches it.
struct NavigateRequest {
    std::string dataSource;
    std::string catalog;
    std::string schema;
    std::string table;      ///< the object name of a query-based or filter-based table
    int mode = 0;           ///< kind of the data source: 0 ODBC, 4 files
    std::string metricKind; ///< the code of an alert's subject, see base/AlertRule.h
    int metricId = -1;      ///< of the metric; for a rule the rule's
    int rowId = -1;         ///< of a standard metric the field's id
};

} // namespace tavix
