#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace tavix {

/// The standard metrics of a field, by their ids in the repository, in settings and in reports.
enum class MetricId {
    Count = 0,
    UniqueCount = 1,
    NullCount = 2,
    NonNullCount = 3,
    BlankCount = 4,
    PatternCount = 5,
    MinimumValue = 6,
    MaximumValue = 7,
    MinimumLength = 8,
    MaximumLength = 9,
    Mean = 10,
    Median = 11,
    Mode = 12,
    StandardDeviation = 13,
    StandardError = 14,
    DefinedType = 15,
    DefinedLength = 16,
    Ordinal = 17,
    PrimaryKey = 18,
    Nullable = 19,
    Precision = 20,
    ActualType = 21,
    UniquePercent = 22,
    PercentNull = 23,
};

inline constexpr std::size_t kMetricCount = 24;

struct MetricInfo {
    MetricId id;
    std::string_view name;   ///< for users
    std::string_view column; ///< its column in the repository, in JSON and in CSV
};

/// All metrics in the order of their ids.
[[nodiscard]] const std::array<MetricInfo, kMetricCount>& metricCatalogue();
/// The metric with this id; null outside the catalogue.
[[nodiscard]] const MetricInfo* findMetric(int id);

/// Whether the metric of a sample describes the sample only: the other rows may hold lower, higher, shorter, longer and
/// further values.
[[nodiscard]] bool isOfSampleAlone(MetricId id);
/// Appended to the name of such a metric.
inline constexpr std::string_view kOfSampleAlone = " (sample)";

[[nodiscard]] constexpr std::size_t index(MetricId id) {
    return static_cast<std::size_t>(id);
}

} // namespace tavix
