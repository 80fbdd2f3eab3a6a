#pragma once

#include "profiling/OrderStatistics.h"
#include "repository/Facts.h"

#include <vector>

namespace tavix::profiling {

/// Tukey's fences, at 1.5 and 3 interquartile ranges outside the quartiles.
class OutlierFences {
  public:
    OutlierFences(long double lowQuartile, long double highQuartile)
        : m_lowQuartile(lowQuartile), m_highQuartile(highQuartile), m_range(highQuartile - lowQuartile) {}

    /// The outermost fence that the value lies beyond.
    [[nodiscard]] repository::Fence fenceOf(long double value) const;

  private:
    [[nodiscard]] bool isBeyond(long double value, long double factor) const;

    long double m_lowQuartile;
    long double m_highQuartile;
    long double m_range;
};

/// The extremes as outliers, the outermost first on each side. Values that are not numbers lie inside all fences.
[[nodiscard]] std::vector<repository::Outlier> outliersOf(const OrderStatistics& statistics, KeyForm form);

} // namespace tavix::profiling
