#include "base/Metrics.h"

namespace tavix {

const std::array<MetricInfo, kMetricCount>& metricCatalogue() {
    static constexpr std::array<MetricInfo, kMetricCount> kCatalogue{{
        {MetricId::Count, "Count", "count"},
        {MetricId::UniqueCount, "Unique Count", "unique_count"},
        {MetricId::NullCount, "Null Count", "null_count"},
        {MetricId::NonNullCount, "Non-null Count", "non_null_count"},
        {MetricId::BlankCount, "Blank Count", "blank_count"},
        {MetricId::PatternCount, "Pattern Count", "pattern_count"},
        {MetricId::MinimumValue, "Minimum Value", "minimum_value"},
        {MetricId::MaximumValue, "Maximum Value", "maximum_value"},
        {MetricId::MinimumLength, "Minimum Length", "minimum_length"},
        {MetricId::MaximumLength, "Maximum Length", "maximum_length"},
        {MetricId::Mean, "Mean", "mean"},
        {MetricId::Median, "Median", "median"},
        {MetricId::Mode, "Mode", "mode"},
        {MetricId::StandardDeviation, "Standard Deviation", "standard_deviation"},
        {MetricId::StandardError, "Standard Error", "standard_error"},
        {MetricId::DefinedType, "Defined Type", "defined_type"},
        {MetricId::DefinedLength, "Defined Length", "defined_length"},
        {MetricId::Ordinal, "Ordinal", "ordinal"},
        {MetricId::PrimaryKey, "Primary Key", "primary_key"},
        {MetricId::Nullable, "Nullable", "nullable"},
        {MetricId::Precision, "Precision", "decimal_precision"},
        {MetricId::ActualType, "Actual Type", "actual_type"},
        {MetricId::UniquePercent, "Unique Percent", "unique_percent"},
        {MetricId::PercentNull, "Percent Null", "percent_null"},
    }};
    return kCatalogue;
}

const MetricInfo* findMetric(int id) {
    return id >= 0 && static_cast<std::size_t>(id) < kMetricCount ? &metricCatalogue()[static_cast<std::size_t>(id)]
                                                                  : nullptr;
}

bool isOfSampleAlone(MetricId id) {
    switch (id) {
    case MetricId::UniqueCount:
    case MetricId::PatternCount:
    case MetricId::MinimumValue:
    case MetricId::MaximumValue:
    case MetricId::MinimumLength:
    case MetricId::MaximumLength:
    case MetricId::Precision:
    case MetricId::UniquePercent:
        return true;
    default:
        return false;
    }
}

} // namespace tavix
