#include "alert/MuteDraft.h"

#include "base/NoteText.h"
#include "report/CountText.h"

#include <fmt/format.h>

namespace tavix {

Status checkMute(const MuteDraft& draft, LibraryDate runStart) {
    const std::string reason = tidyNote(draft.reason);
    if (reason.empty())
        return Error{"Say why the alert is muted."};
    if (Status checked = checkNote(reason); !checked)
        return checked;
    if (draft.until && toLibraryDate(*draft.until) <= runStart)
        return Error{"The run that is shown starts on that date or later, so no run would be muted."};
    return {};
}

std::string muteExtent(const MuteDraft& draft) {
    std::string text = "From the run that is shown on, until it is unmuted";
    if (draft.runs == 1)
        text = "In the run that is shown";
    else if (draft.runs)
        text = fmt::format("In the run that is shown and the next {}",
                           *draft.runs == 2 ? "run" : countOf(*draft.runs - 1, "run"));
    if (!draft.until)
        return text + ".";
    const DateParts parts = decompose(toLibraryDate(*draft.until));
    const std::string day = fmt::format("{:04}-{:02}-{:02}", parts.year, parts.month, parts.day);
    if (!draft.runs)
        return fmt::format("From the run that is shown on, in runs that start before {}.", day);
    return fmt::format("{}, but not in runs that start on {} or later.", text, day);
}

} // namespace tavix
