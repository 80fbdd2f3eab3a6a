#pragma once

#include "base/AlertProperties.h"
#include "report/AlertStates.h"
#include "report/FitReadings.h"

#include <map>
#include <optional>
#include <vector>

namespace tavix {

class PrViewer;
class ProfileCursor;

/// Reads alerts, and judges each for a run of its job, with queries for all alerts of a job at once. Functions throw
/// GenException when the repository fails.
class AlertStateReader {
  public:
    /// Both must outlive the object. `states` must be empty; if the repository fails, it has the alerts that were read
    /// so far, perhaps not yet judged.
    AlertStateReader(PrViewer& viewer, std::vector<AlertState>& states)
        : m_viewer(viewer), m_fits(viewer), m_states(states) {}

    /// Those of one job, or of all. May be called once.
    void read(std::optional<int> job);

  private:
    struct Mute {
        AlertMute mute;
        int firstRun = -1;
        std::optional<int> lastRun;
    };
    /// The indexes of alerts by their ids.
    using Indexes = std::map<int, std::size_t>;

    void readRuns();
    void readMutes();
    void readList(std::optional<int> job);
    [[nodiscard]] static AlertState stateOf(const ProfileCursor& alert);
    void readRules();
    static void setRule(AlertState& state, const AlertProperties& properties);
    void judgeJob(int job, const Indexes& alerts);
    /// Those that need more runs than that window; `runs` is 0 for all runs.
    [[nodiscard]] Indexes judgeBy(int job, const Indexes& alerts, bool areAll, int runs);

    PrViewer& m_viewer;
    FitReadings m_fits;
    std::vector<AlertState>& m_states;
    Indexes m_indexes;
    std::map<int, int> m_runs;   ///< that is judged, by job
    std::map<int, Mute> m_mutes; ///< by alert
};

} // namespace tavix
