#include "base/Metrics.h"

namespace tavix {

namespace {

using Value = MetricValue;

constexpr std::array<MetricInfo, kMetricCount> kCatalogue{{
    {MetricId::Count, "Count", "count", "count", Value::WholeNumber, MainMetric},
    {MetricId::UniqueCount, "Unique Count", "unique_count", "unique_count", Value::WholeNumber,
     MainMetric | OfSampleAlone},
    {MetricId::NullCount, "Null Count", "null_count", "null_count", Value::WholeNumber, MainMetric},
    {MetricId::NonNullCount, "Non-null Count", "non_null_count", "non_null_count", Value::WholeNumber},
    {MetricId::BlankCount, "Blank Count", "blank_count", "blank_count", Value::WholeNumber, MainMetric},
    {MetricId::PatternCount, "Pattern Count", "pattern_count", "pattern_count", Value::WholeNumber,
     MainMetric | OfSampleAlone},
    {MetricId::MinimumValue, "Minimum Value", "minimum_value", "minimum_value", Value::FieldValue,
     MainMetric | OfSampleAlone | LeftAligned},
    {MetricId::MaximumValue, "Maximum Value", "maximum_value", "maximum_value", Value::FieldValue,
     MainMetric | OfSampleAlone | LeftAligned},
    {MetricId::MinimumLength, "Minimum Length", "minimum_length", "minimum_length", Value::WholeNumber, OfSampleAlone},
    {MetricId::MaximumLength, "Maximum Length", "maximum_length", "maximum_length", Value::WholeNumber, OfSampleAlone},
    {MetricId::Mean, "Mean", "mean", "mean", Value::RealNumber, Rounded},
    {MetricId::Median, "Median", "median", "median", Value::FieldValue},
    {MetricId::Mode, "Mode", "mode", "mode", Value::FieldValue, LeftAligned},
    {MetricId::StandardDeviation, "Standard Deviation", "standard_deviation", "standard_deviation", Value::RealNumber,
     Rounded},
    {MetricId::StandardError, "Standard Error", "standard_error", "standard_error", Value::RealNumber, Rounded},
    {MetricId::DefinedType, "Defined Type", "defined_type", "defined_type", Value::Word, LeftAligned},
    {MetricId::DefinedLength, "Defined Length", "defined_length", "defined_length", Value::WholeNumber, LeftAligned},
    {MetricId::Ordinal, "Ordinal", "ordinal", "ordinal", Value::WholeNumber},
    {MetricId::PrimaryKey, "Primary Key", "primary_key", "primary_key", Value::Word, LeftAligned},
    {MetricId::Nullable, "Nullable", "nullable", "nullable", Value::Word, LeftAligned},
    {MetricId::Precision, "Precision", "decimal_precision", "precision", Value::WholeNumber, OfSampleAlone},
    {MetricId::ActualType, "Actual Type", "actual_type", "actual_type", Value::Word, LeftAligned},
    {MetricId::UniquePercent, "Unique Percent", "unique_percent", "unique_percent", Value::Percent, OfSampleAlone},
    {MetricId::PercentNull, "Percent Null", "percent_null", "percent_null", Value::Percent},
}};

constexpr bool isInOrder() {
    for (std::size_t i = 0; i < kCatalogue.size(); ++i)
        if (index(kCatalogue[i].id) != i)
            return false;
    return true;
}
static_assert(isInOrder(), "the catalogue is indexed by the ids");

} // namespace

const std::array<MetricInfo, kMetricCount>& metricCatalogue() {
    return kCatalogue;
}

const MetricInfo* findMetric(int id) {
    return id >= 0 && static_cast<std::size_t>(id) < kMetricCount ? &kCatalogue[static_cast<std::size_t>(id)] : nullptr;
}

} // namespace tavix
