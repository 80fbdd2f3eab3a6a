#pragma once

#include "base/SettingsStore.h"
#include "drill/DrillReader.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tavix {

/// What a drill-through is opened from.
enum class DrillOrigin {
    Frequency,
    PatternFrequency,
    BusinessRule,
    Outliers,
};

/// The window's title.
[[nodiscard]] std::string_view drillTitle(DrillOrigin origin);

inline constexpr std::string_view kDrillUnavailable = "Drill through information is unavailable for this item.";
/// The same when the user gave no answer to the question who he is to a data source.
[[nodiscard]] std::string drillDeclined(std::string_view source);
inline constexpr std::string_view kDrillErrorCaption = "Error";
inline constexpr std::string_view kDrillPrintJob = "Profile - Drill Through";

/// False where the installation's connections lead to no source rows: the connection type is "CTDD".
[[nodiscard]] bool isDrillOffered(const SettingsStore& settings);

/// How many rows there are and why there are not others, for a line below them. `inRun` is how many the run counted, if
/// that is known.
[[nodiscard]] std::string drillStatus(const DrillResult& result, std::optional<std::int64_t> inRun);

} // namespace tavix
