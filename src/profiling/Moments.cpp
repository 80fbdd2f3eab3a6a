#include "profiling/Moments.h"

#include "profiling/MetricValue.h"

#include <algorithm>
#include <cmath>

namespace tavix::profiling {

void CompensatedSum::add(long double value) {
    const long double sum = m_sum + value;
    m_compensation += std::fabs(m_sum) >= std::fabs(value) ? (m_sum - sum) + value : (value - sum) + m_sum;
    m_sum = sum;
}

void Moments::addToMean(std::span<const ValueWalk::Row> batch) {
    if (m_form == KeyForm::Integer)
        for (const ValueWalk::Row& row : batch)
            m_wideSum += static_cast<WideInteger>(integerOfKey(row.key)) * static_cast<WideInteger>(row.count);
    for (const ValueWalk::Row& row : batch)
        m_sum.add(numberOfKey(row.key, m_form) * static_cast<long double>(row.count));
}

KvbDatavar Moments::mean() const {
    if (m_form != KeyForm::Integer)
        return metricValue(static_cast<double>(m_sum.value() / static_cast<long double>(m_rows)));
    const auto rows = static_cast<WideInteger>(m_rows);
    if (m_wideSum % rows == 0)
        return static_cast<std::int64_t>(m_wideSum / rows);
    return metricValue(static_cast<double>(static_cast<long double>(m_wideSum) / static_cast<long double>(rows)));
}

void Moments::addToDeviation(std::span<const ValueWalk::Row> batch) {
    const long double mean = m_sum.value() / static_cast<long double>(m_rows);
    for (const ValueWalk::Row& row : batch) {
        const auto count = static_cast<long double>(row.count);
        const long double distance = numberOfKey(row.key, m_form) - mean;
        m_squares.add(distance * distance * count);
        m_distances.add(distance * count);
    }
}

std::optional<double> Moments::deviation() const {
    if (m_rows < 2)
        return std::nullopt;
    const auto rows = static_cast<long double>(m_rows);
    const long double variance = (m_squares.value() - m_distances.value() * m_distances.value() / rows) / (rows - 1);
    const auto deviation = static_cast<double>(std::sqrt(std::max(variance, 0.0L)));
    return std::isfinite(deviation) ? std::optional(deviation) : std::nullopt;
}

} // namespace tavix::profiling
