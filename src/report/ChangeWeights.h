#pragma once

#include "base/Metrics.h"
#include "report/FieldRecord.h"

#include <cstdint>
#include <optional>

/// How much a difference between two runs matters: the share of the rows that it concerns, as docs/definitions.md
/// defines it.
namespace tavix {

struct DistributionChanges;

struct ChangeWeight {
    double percent = 0;       ///< of the rows, 0 to 100
    bool followsRows = false; ///< nothing but the number of rows has changed

    bool operator==(const ChangeWeight&) const = default;
};

/// A table, field or rule that is new, has vanished, or is defined otherwise.
inline constexpr ChangeWeight kWholeChange{100, false};

/// The difference as a percentage of the larger absolute number; 0 for equal ones.
[[nodiscard]] double relativeChange(double before, double after);
/// Records of a kind, such as damaged ones, out of all.
[[nodiscard]] ChangeWeight weightOfShare(std::optional<double> percentBefore, std::optional<double> percentAfter);
/// A custom metric, of which nothing is known but its value: the relative change beyond what the number of rows
/// explains, but no more than if each unit of the value were a row.
[[nodiscard]] ChangeWeight weightOfFigure(double before, double after, std::int64_t rowsBefore, std::int64_t rowsAfter);
/// A metric of a field that differs between the runs.
[[nodiscard]] ChangeWeight weightOfMetric(MetricId metric, const FieldRecord& before, const FieldRecord& after);
/// The values of a field, or its patterns, of which null is none: `percentWithText` of the rows have one.
[[nodiscard]] ChangeWeight weightOfTexts(const DistributionChanges& changes, double percentWithText);

} // namespace tavix
