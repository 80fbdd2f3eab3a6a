#include "profiling/OrderStatistics.h"

#include "profiling/MetricValue.h"

#include <algorithm>

namespace tavix::profiling {

namespace {

__extension__ typedef __int128 WideInteger;

constexpr std::string_view kLinearRule = "linear interpolation (R type 7)";
constexpr std::string_view kNearestRule = "nearest rank";

} // namespace

KeptValue keptValue(const ValueWalk& walk, std::span<const ValueWalk::Row> batch, std::size_t row) {
    return {batch[row].key, batch[row].count, std::string(walk.text(row))};
}

OrderStatistics::OrderStatistics(KeyForm form, std::uint64_t rows)
    : m_form(form), m_isNumber(isNumber(form)), m_rows(rows) {
    for (const unsigned percent : kPercents) {
        if (m_isNumber) {
            m_byRank.try_emplace(linearRank(percent));
            m_byRank.try_emplace(std::min(linearRank(percent) + 1, m_rows - 1));
        } else {
            m_byRank.try_emplace(nearestRank(percent));
        }
    }
    m_nextRank = m_byRank.begin();
}

std::uint64_t OrderStatistics::nearestRank(unsigned percent) const {
    return std::max<std::uint64_t>((m_rows * percent + 99) / 100, 1) - 1;
}

void OrderStatistics::add(const ValueWalk& walk, std::span<const ValueWalk::Row> batch) {
    for (std::size_t i = 0; i < batch.size(); ++i) {
        m_passed += batch[i].count;
        for (; m_nextRank != m_byRank.end() && m_nextRank->first < m_passed; ++m_nextRank)
            m_nextRank->second = keptValue(walk, batch, i);
    }
    for (std::size_t i = 0; i < batch.size() && m_lowest.size() < kExtremesPerSide; ++i)
        m_lowest.push_back(keptValue(walk, batch, i));
    for (std::size_t i = batch.size() - std::min(kExtremesPerSide, batch.size()); i < batch.size(); ++i)
        m_highest.push_back(keptValue(walk, batch, i));
    while (m_highest.size() > kExtremesPerSide)
        m_highest.pop_front();
}

KvbDatavar OrderStatistics::percentile(unsigned percent) const {
    if (!m_isNumber)
        return m_byRank.at(nearestRank(percent)).text;
    if (m_form != KeyForm::Integer)
        return metricValue(static_cast<double>(percentileNumber(percent)));
    const std::uint64_t rank = linearRank(percent);
    const WideInteger low = integerOfKey(m_byRank.at(rank).key);
    const WideInteger high = integerOfKey(m_byRank.at(std::min(rank + 1, m_rows - 1)).key);
    const auto part = static_cast<WideInteger>((m_rows - 1) * percent % 100);
    const WideInteger hundredfold = low * 100 + (high - low) * part;
    if (hundredfold % 100 == 0)
        return static_cast<std::int64_t>(hundredfold / 100);
    return static_cast<double>(static_cast<long double>(hundredfold) / 100);
}

long double OrderStatistics::percentileNumber(unsigned percent) const {
    const std::uint64_t rank = linearRank(percent);
    const long double low = numberOfKey(m_byRank.at(rank).key, m_form);
    const long double high = numberOfKey(m_byRank.at(std::min(rank + 1, m_rows - 1)).key, m_form);
    return low + (high - low) * static_cast<long double>((m_rows - 1) * percent % 100) / 100;
}

std::string_view OrderStatistics::percentileRule() const {
    return m_isNumber ? kLinearRule : kNearestRule;
}

} // namespace tavix::profiling
