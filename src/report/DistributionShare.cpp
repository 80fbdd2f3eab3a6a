#include "report/DistributionShare.h"

#include "base/NumberText.h"
#include "report/CountText.h"

namespace tavix {

std::optional<double> DistributionShare::PercentOf(std::int64_t count) const {
    if (m_total == 0)
        return std::nullopt;
    return 100.0 * static_cast<double>(count) / static_cast<double>(m_total);
}

std::string DistributionShare::BaseText() const {
    const bool isPattern = m_kind == DistributionKind::Pattern;
    const std::string_view noun =
        m_isFiltered ? (isPattern ? "passing value" : "passing record") : (isPattern ? "non-null value" : "record");
    return "of " + countOf(m_total, noun);
}

std::string_view DistributionShare::ColumnKey() const {
    if (m_isFiltered)
        return "percent_of_filtered_rows";
    return m_kind == DistributionKind::Pattern ? "percent_of_non_null_rows" : "percent_of_rows";
}

namespace {

std::int64_t countIn(const std::array<KvbString, kMetricCount>& metrics, MetricId id) {
    return parseInteger(metrics[index(id)].view()).value_or(0);
}

} // namespace

std::int64_t patternTotal(const std::array<KvbString, kMetricCount>& metrics) {
    return countIn(metrics, MetricId::NonNullCount);
}

std::int64_t valueTotal(const std::array<KvbString, kMetricCount>& metrics) {
    return countIn(metrics, MetricId::Count);
}

std::int64_t nullTotal(const std::array<KvbString, kMetricCount>& metrics) {
    return countIn(metrics, MetricId::NullCount);
}

std::string passingText(DistributionKind kind, std::int64_t passing, std::int64_t all) {
    const std::string_view noun = kind == DistributionKind::Pattern ? "non-null value" : "record";
    return groupedCount(passing) + " of " + countOf(all, noun) + (all == 1 || passing == 1 ? " passes" : " pass");
}

} // namespace tavix
