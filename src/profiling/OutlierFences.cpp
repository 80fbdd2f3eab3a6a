#include "profiling/OutlierFences.h"

#include <optional>

namespace tavix::profiling {

using repository::Fence;
using repository::OutlierSide;

bool OutlierFences::isBeyond(long double value, long double factor) const {
    return value < m_lowQuartile - factor * m_range || value > m_highQuartile + factor * m_range;
}

Fence OutlierFences::fenceOf(long double value) const {
    return isBeyond(value, 3.0L) ? Fence::Outer30 : isBeyond(value, 1.5L) ? Fence::Outer15 : Fence::Inside;
}

std::vector<repository::Outlier> outliersOf(const OrderStatistics& statistics, KeyForm form) {
    std::optional<OutlierFences> fences;
    if (isNumber(form))
        fences.emplace(statistics.percentileNumber(25), statistics.percentileNumber(75));
    std::vector<repository::Outlier> outliers;
    const auto add = [&](OutlierSide side, std::size_t position, const KeptValue& value) {
        outliers.push_back({side, static_cast<int>(position), KvbString(value.text), value.count,
                            fences ? fences->fenceOf(numberOfKey(value.key, form)) : Fence::Inside});
    };
    const auto& lowest = statistics.lowest();
    for (std::size_t i = 0; i < lowest.size(); ++i)
        add(OutlierSide::Low, i, lowest[i]);
    const auto& highest = statistics.highest();
    for (std::size_t i = 0; i < highest.size(); ++i)
        add(OutlierSide::High, i, highest[highest.size() - 1 - i]);
    return outliers;
}

} // namespace tavix::profiling
