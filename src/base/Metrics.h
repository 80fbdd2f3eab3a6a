#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace tavix {

/// The standard metrics of a field. The number is the id of the metric in the repository and in settings.
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

/// The kind of a metric's value.
enum class MetricValue {
    WholeNumber,
    RealNumber,
    Percent,
    FieldValue, ///< of the type of the field
    Word,
};

enum MetricTrait : unsigned {
    MainMetric = 1, ///< listed where there is room for a few only
    /// Describes only the sampled records: records outside the sample may have lower, higher, shorter or further
    /// values.
    OfSampleAlone = 2,
    Rounded = 4, ///< shortened in lists
    LeftAligned = 8,
};

/// All that is fixed about a metric: adding one takes a row of the catalogue and a computation in profiling/.
struct MetricInfo {
    MetricId id;
    std::string_view name;   ///< as shown to users
    std::string_view column; ///< in the repository
    std::string_view key;    ///< in JSON and CSV
    MetricValue value;
    unsigned traits = 0; ///< bits of MetricTrait

    [[nodiscard]] constexpr bool has(MetricTrait trait) const { return (traits & trait) != 0; }
    /// Whether an alert can compare it with a number.
    [[nodiscard]] constexpr bool isFigure() const { return value != MetricValue::Word; }
};

/// All metrics in the order of their ids.
[[nodiscard]] const std::array<MetricInfo, kMetricCount>& metricCatalogue();
/// The metric with this id; null outside the catalogue.
[[nodiscard]] const MetricInfo* findMetric(int id);

/// Follows the name of an OfSampleAlone metric in a run over a sample.
inline constexpr std::string_view kOfSampleAlone = " (sample)";

[[nodiscard]] constexpr std::size_t index(MetricId id) {
    return static_cast<std::size_t>(id);
}

} // namespace tavix
