#pragma once

#include "base/Clock.h"
#include "base/LibraryDate.h"
#include "base/Result.h"

#include <optional>
#include <string>

namespace tavix {

/// A mute while the user writes it: it begins with the run that is shown.
struct MuteDraft {
    static constexpr int kMostRuns = 1000;

    std::string reason;
    std::optional<int> runs = 1;    ///< for so many runs, that one included; nothing: no such end
    std::optional<UtcTime> until{}; ///< for runs that start before this; nothing: no such end

    bool operator==(const MuteDraft&) const = default;
};

/// An error is a sentence for the user. `runStart` is that of the run that is shown.
[[nodiscard]] Status checkMute(const MuteDraft& draft, LibraryDate runStart);

/// For how long: "In the run that is shown and the next 2 runs, but not in runs that start on 2026-12-01 or later."
[[nodiscard]] std::string muteExtent(const MuteDraft& draft);

} // namespace tavix
