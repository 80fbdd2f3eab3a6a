#pragma once

#include "base/AlertRule.h"

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace tavix {

class ProfileCursor;

/// The figure in the row of getAlertFigures or getWatchedFigures; none if the run does not have one that is a number.
/// `ofFailedPercent`: of a business rule, the percentage of the rows that violate it.
[[nodiscard]] std::optional<double> alertFigureAt(const ProfileCursor& row, bool ofFailedPercent);

/// What an alert watches, run by run, and how its rule judges each run by those before it.
class FigureHistory {
  public:
    struct Run {
        std::optional<double> figure;
        int weekday = 1; ///< 1 Monday to 7 Sunday
    };

    /// The latest run first.
    void addEarlier(const Run& run);
    [[nodiscard]] std::size_t size() const { return m_runs.size(); }

    /// `run` counts from the latest.
    [[nodiscard]] AlertVerdict judge(const AlertRule& rule, std::size_t run) const;
    /// Whether runs that are not here yet, since they are still earlier, could change that verdict.
    [[nodiscard]] bool needsMore(const AlertRule& rule, std::size_t run) const;

  private:
    struct Entry {
        std::optional<double> figure;
        int weekday = 1;
        std::size_t earlier = 0; ///< where the figures before it begin
    };

    [[nodiscard]] std::span<const RunFigure> before(const Entry& run) const;

    std::vector<Entry> m_runs;
    std::vector<RunFigure> m_figures; ///< of the runs that have one
};

} // namespace tavix
