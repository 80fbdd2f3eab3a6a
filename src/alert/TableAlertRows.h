#pragma once

#include "alert/AlertRows.h"
#include "base/LibraryDate.h"
#include "report/ReportSelection.h"

#include <string>
#include <vector>

namespace tavix {

/// The alerts of one table, of all jobs, by the names of data source, catalog, schema and table: those of other jobs
/// are judged for the latest run of their job.
class TableAlertRows final : public AlertRows {
  public:
    explicit TableAlertRows(const std::locale& locale = userLocale());

    /// `ofReport` are the alerts of the current job, `job`. False when the repository fails: the rows are then
    /// unchanged, and GetErrorText() is the message.
    bool Fill(PrViewer& viewer, const TableIdentity& table, int job, const std::vector<AlertState>& ofReport);
    /// The same when the alerts of the current job could not be read for this reason.
    bool FailToRead(const std::string& reason);
    void Clear() override;

    /// How many are raised.
    [[nodiscard]] ListBase GetBase() const override;
    [[nodiscard]] std::string GetToolTip(int column, std::int64_t row) const override;

  private:
    int m_job = -1;
};

} // namespace tavix
