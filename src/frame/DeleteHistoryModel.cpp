#include "frame/DeleteHistoryModel.h"

#include <fmt/format.h>

#include <algorithm>

namespace tavix {

DeleteHistoryModel::DeleteHistoryModel(std::vector<RunInfo> runs, int currentRun)
    : m_runs(std::move(runs)), m_currentRun(currentRun) {
    // Sorted by id and not by date, because the bound of a deletion is an id.
    std::sort(m_runs.begin(), m_runs.end(), [](const RunInfo& a, const RunInfo& b) { return a.id > b.id; });
}

void DeleteHistoryModel::DeleteFrom(int row) {
    m_first = CanDeleteFrom(row) ? row : 0;
}

bool DeleteHistoryModel::DeletesCurrent() const {
    return DeletesAnything() && m_runs[static_cast<std::size_t>(m_first)].id >= m_currentRun;
}

int DeleteHistoryModel::StayingCount() const {
    return DeletesAnything() ? m_first : static_cast<int>(m_runs.size());
}

void DeleteHistoryModel::ShowAfterwards(int runId) {
    m_wanted = runId;
}

HistoryDeletion DeleteHistoryModel::Deletion() const {
    HistoryDeletion deletion;
    if (!DeletesAnything())
        return deletion;
    deletion.bound = m_runs[static_cast<std::size_t>(m_first)].id;
    deletion.runAfter = m_currentRun;
    if (DeletesCurrent()) {
        const auto end = m_runs.begin() + m_first;
        const auto wanted = std::find_if(m_runs.begin(), end, [this](const RunInfo& r) { return r.id == m_wanted; });
        deletion.runAfter = wanted == end ? m_runs.front().id : m_wanted;
    }
    return deletion;
}

std::string DeleteHistoryModel::Summary(const std::locale& locale) const {
    if (m_runs.size() < 2)
        return "There is nothing to delete: a report keeps at least one run.";
    if (!DeletesAnything())
        return "Select the newest run to delete. It is deleted together with all older runs.";
    const RunInfo& newest = m_runs[static_cast<std::size_t>(m_first)];
    const std::size_t count = m_runs.size() - static_cast<std::size_t>(m_first);
    if (count == 1)
        return fmt::format("1 run of {} will be deleted.", newest.DateText(locale));
    return fmt::format("{} runs from {} to {} will be deleted.", count, m_runs.back().DateText(locale),
                       newest.DateText(locale));
}

} // namespace tavix
