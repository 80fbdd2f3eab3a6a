#pragma once

#include "doc/CTavixDoc.h"
#include "report/RunInfo.h"

#include <locale>
#include <string>
#include <vector>

namespace tavix {

/// The delete-history dialog without its window: which runs are deleted, and which run is shown afterwards. The newest
/// run always stays.
class DeleteHistoryModel {
  public:
    DeleteHistoryModel(std::vector<RunInfo> runs, int currentRun);

    /// Newest first.
    [[nodiscard]] const std::vector<RunInfo>& Runs() const { return m_runs; }
    [[nodiscard]] int CurrentRun() const { return m_currentRun; }

    /// Whether the run in this row can be deleted together with all older ones.
    [[nodiscard]] bool CanDeleteFrom(int row) const { return row > 0 && row < static_cast<int>(m_runs.size()); }
    /// Chooses it; a row that cannot be deleted means that nothing is.
    void DeleteFrom(int row);
    [[nodiscard]] bool IsDeleted(int row) const { return m_first > 0 && row >= m_first; }
    [[nodiscard]] bool DeletesAnything() const { return m_first > 0; }
    [[nodiscard]] bool DeletesCurrent() const;

    /// How many runs stay; they are the first rows.
    [[nodiscard]] int StayingCount() const;
    /// A run to be shown afterwards; one that does not stay is not taken. While the current run stays it is that one.
    void ShowAfterwards(int runId);

    /// Only to be asked when something is deleted.
    [[nodiscard]] HistoryDeletion Deletion() const;
    /// A sentence that says how many runs of which time are deleted.
    [[nodiscard]] std::string Summary(const std::locale& locale) const;

  private:
    std::vector<RunInfo> m_runs;
    int m_currentRun;
    int m_first = 0; ///< the first row that is deleted; 0 for none
    int m_wanted = -1;
};

} // namespace tavix
