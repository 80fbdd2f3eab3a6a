#pragma once

#include "profiling/JobRunner.h"

#include <cstddef>
#include <string>

namespace tavix::cli {

/// The progress of a run in at most `width` columns: table, rows, share, rate and time left. Parts that do not fit are
/// dropped from the end.
[[nodiscard]] std::string progressText(const profiling::ProgressState& state, std::size_t width);

/// Shows the progress of a run in a line of the terminal that is rewritten in place, and stops the run when the user
/// interrupts. Shows nothing when standard error is not a terminal.
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
