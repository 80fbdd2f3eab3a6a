#pragma once

#include "profiling/JobRunner.h"

#include <cstddef>
#include <string>

namespace tavix::cli {

/// How far a run is, in at most `width` columns: table, rows, share, rate and time left. What does not fit is left
/// out from the end.
[[nodiscard]] std::string progressText(const profiling::ProgressState& state, std::size_t width);

/// Shows the progress of a run in one line of the terminal, rewritten in place, and stops the run when the user
/// interrupts. Without a terminal on standard error it shows nothing.
class ProgressLine final : public profiling::ProgressWatcher {
  public:
    ProgressLine();
    /// Removes the line.
    ~ProgressLine() override;
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    bool progress(const profiling::ProgressState& state) override;

  private:
    bool m_onTerminal;
    bool m_shown = false;
};

} // namespace tavix::cli
