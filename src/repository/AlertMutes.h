#pragma once

#include "base/Clock.h"
#include "base/Result.h"
#include "sql/Connection.h"

#include <optional>
#include <string_view>

/// Mutes and notes of alerts. Reasons and notes are tidied and checked by base/NoteText.h. An id that does not exist is
/// an error. Each operation works within the caller's transaction.
namespace tavix::repository {

inline constexpr int kMostMutedRuns = 100'000;

/// Which runs an alert is muted in.
struct MuteSpan {
    int firstRun = -1;
    int runs = 0;                 ///< so many runs of the alert's job, from the first one on; 0: no such end
    std::optional<UtcTime> until; ///< runs that start before this
};

/// Replaces an earlier mute of the alert.
[[nodiscard]] Status muteAlert(sql::Connection& connection, int alert, std::string_view user, std::string_view reason,
                               const MuteSpan& span, UtcTime now);
/// Fails unless the alert is muted.
[[nodiscard]] Status unmuteAlert(sql::Connection& connection, int alert);
/// Before runs of the job with `first` <= id <= `last` are hidden: mutes for a number of runs go on to hold for exactly
/// those that they would have held for.
[[nodiscard]] Status keepMutesOfOtherRuns(sql::Connection& connection, int job, std::int64_t first, std::int64_t last);

[[nodiscard]] Status addAlertNote(sql::Connection& connection, int alert, std::string_view author,
                                  std::string_view text, UtcTime written);
[[nodiscard]] Status deleteAlertNote(sql::Connection& connection, int note);

} // namespace tavix::repository
