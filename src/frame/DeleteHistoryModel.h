#pragma once

#include "doc/CTavixDoc.h"
#include "report/RunInfo.h"

#include <locale>
#include <string>
#include <vector>

namespace tavix {

/// The delete-history dialog without its window: which runs are deleted, and which run is shown afterwards. The newest
/// run is never deleted.
class DeleteHistoryModel {
  public:
    DeleteHistoryModel(std::vector<RunInfo> runs, int currentRun);

    /// Newest first.
    [[nodiscard]] const std::vector<RunInfo>& Runs() const { return m_runs; }
    [[nodiscard]] int CurrentRun() const { return m_currentRun; }

    /// Whether the run in this row can be deleted together with all older ones.
    [[nodiscard]] bool CanDeleteFrom(int row) const { return row > 0 && row < static_cast<int>(m_runs.size()); }
    /// Chooses this run and all older ones. A row that cannot be deleted clears the choice.
    void DeleteFrom(int row);
    [[nodiscard]] bool IsDeleted(int row) const { return m_first > 0 && row >= m_first; }
    [[nodiscard]] bool DeletesAnything() const { return m_first > 0; }
    [[nodiscard]] bool DeletesCurrent() const;

    /// How many runs are kept; they are the first rows.
    [[nodiscard]] int StayingCount() const;
    /// The run to show afterwards. Ignored if that run is deleted, and as long as the current run is kept.
    void ShowAfterwards(int runId);

    /// Only valid when something is deleted.
    [[nodiscard]] HistoryDeletion Deletion() const;
    /// A sentence that says how many runs are deleted, and from which dates.
    [[nodiscard]] std::string Summary(const std::locale& locale) const;

  private:
    std::vector<RunInfo> m_runs;
    int m_currentRun;
    int m_first = 0; ///< the first row that is deleted; 0 for none
    int m_wanted = -1;
};

} // namespace tavix
