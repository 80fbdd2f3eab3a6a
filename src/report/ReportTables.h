#pragma once

#include "base/Result.h"
#include "report/FieldRecord.h"
#include "report/ReportSelection.h"
#include "report/RunInfo.h"

#include <string>
#include <vector>

namespace tavix {

class PrViewer;

/// Runs, tables and fields as every reader of a repository gets them. Unless they return a Result, these functions
/// throw GenException when the repository fails.

/// The runs of the current job, the latest first.
[[nodiscard]] std::vector<RunInfo> readRuns(PrViewer& viewer);

inline constexpr int kAllDataSources = -1;

/// The tables of the current run in one data source. Their identity gets `dataSourceName`, which may be empty
/// when it is not needed.
[[nodiscard]] std::vector<TableIdentity> readTables(PrViewer& viewer, int dataSource,
                                                    const std::string& dataSourceName);
/// All tables of the current run, data source by data source.
[[nodiscard]] std::vector<TableIdentity> readTables(PrViewer& viewer);
/// The table with that id in the current run; an error when the run does not have it.
[[nodiscard]] Result<TableIdentity> findTable(PrViewer& viewer, int tableId, const std::string& dataSourceName);
/// The table that a filtered table of the same list filters; null if the list does not have it. Borrowed.
[[nodiscard]] const TableIdentity* findBaseTable(const std::vector<TableIdentity>& tables,
                                                 const TableIdentity& filtered);
/// The table of a field in the run that the field's metrics come from, which for a field of a collection may be one of
/// another report; its id is -1 when no run has the field.
[[nodiscard]] TableIdentity readTableOfField(PrViewer& viewer, int fieldId, const std::string& dataSourceName);

struct NamedField {
    int id = -1;
    std::string name;
    std::string typeCode;
};

/// The fields of a table of the current run by name, which is quicker than with their metrics.
[[nodiscard]] std::vector<NamedField> readFieldNames(PrViewer& viewer, int tableId);
/// The fields of a table of the current run.
[[nodiscard]] std::vector<FieldRecord> readFields(PrViewer& viewer, int tableId);
/// The fields of a collection that a run has.
[[nodiscard]] std::vector<FieldRecord> readCollectionFields(PrViewer& viewer, int collectionId);

} // namespace tavix
