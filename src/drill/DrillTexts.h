#pragma once

#include "base/SettingsStore.h"
#include "drill/DrillReader.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tavix {

/// The list that a drill-through is opened from.
enum class DrillOrigin {
    Frequency,
    PatternFrequency,
    BusinessRule,
    Outliers,
    StandardMetrics,
};

/// The window's title.
[[nodiscard]] std::string_view drillTitle(DrillOrigin origin);

inline constexpr std::string_view kDrillUnavailable = "Drill through information is unavailable for this item.";
/// The message when the user cancelled the login to the data source.
[[nodiscard]] std::string drillDeclined(std::string_view source);
inline constexpr std::string_view kDrillErrorCaption = "Error";
inline constexpr std::string_view kDrillPrintJob = "Profile - Drill Through";

/// False when the connection type in the settings is "CTDD", ignoring case: such connections have no source rows.
[[nodiscard]] bool isDrillOffered(const SettingsStore& settings);

/// The status line of a window that shows only rows that match a search: "12 of 1,204 rows match", then the line for
/// all of them where it says more.
[[nodiscard]] std::string searchStatus(std::int64_t shown, std::int64_t all, std::string_view statusOfAll);

/// The status line: the number of rows, and why there are not more. `inRun` is the run's count, if known.
[[nodiscard]] std::string drillStatus(const DrillResult& result, std::optional<std::int64_t> inRun);

} // namespace tavix
