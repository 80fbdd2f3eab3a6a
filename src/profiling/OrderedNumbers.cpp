#include "profiling/OrderedNumbers.h"

#include <algorithm>
#include <cmath>

namespace tavix::profiling {

namespace {

__extension__ typedef __int128 WideInteger;

/// A sum that keeps what rounding takes from it (Neumaier).
class CarefulSum {
  public:
    void add(long double value) {
        const long double sum = m_sum + value;
        m_lost += std::fabs(m_sum) >= std::fabs(value) ? (m_sum - sum) + value : (value - sum) + m_sum;
        m_sum = sum;
    }
    [[nodiscard]] long double value() const { return m_sum + m_lost; }

  private:
    long double m_sum = 0;
    long double m_lost = 0;
};

constexpr double kLargestExactWhole = 9007199254740992.0;

} // namespace

Ranks::Ranks(Entries entries, std::span<const std::uint32_t> order) {
    m_sums.reserve(order.size());
    std::uint64_t sum = 0;
    for (const std::uint32_t index : order) {
        sum += entries[index].count;
        m_sums.push_back(sum);
    }
}

std::size_t Ranks::placeOf(std::uint64_t rank) const {
    return static_cast<std::size_t>(std::upper_bound(m_sums.begin(), m_sums.end(), rank) - m_sums.begin());
}

std::size_t Ranks::nearest(unsigned percent) const {
    const std::uint64_t rank = (total() * percent + 99) / 100;
    return placeOf(std::max<std::uint64_t>(rank, 1) - 1);
}

KvbDatavar numberFigure(double value) {
    if (std::fabs(value) <= kLargestExactWhole && value == std::trunc(value))
        return static_cast<std::int64_t>(value);
    return value;
}

OrderedNumbers::OrderedNumbers(Entries entries, std::span<const std::uint32_t> order, ValueKind kind)
    : m_ranks(entries, order) {
    m_counts.reserve(order.size());
    for (const std::uint32_t index : order)
        m_counts.push_back(entries[index].count);
    if (kind == ValueKind::Integer) {
        m_integers.reserve(order.size());
        for (const std::uint32_t index : order) {
            const auto value = integerValue(entries[index].text());
            if (!value)
                break;
            m_integers.push_back(*value);
        }
    }
    if (m_integers.size() < order.size()) {
        m_integers = {};
        m_reals.reserve(order.size());
        for (const std::uint32_t index : order)
            m_reals.push_back(realValue(entries[index].text()));
    }
    m_lowQuartile = quantileValue(25);
    m_highQuartile = quantileValue(75);
}

long double OrderedNumbers::valueAt(std::size_t place) const {
    return m_integers.empty() ? static_cast<long double>(m_reals[place]) : static_cast<long double>(m_integers[place]);
}

KvbDatavar OrderedNumbers::mean() const {
    if (!m_integers.empty()) {
        WideInteger sum = 0;
        for (std::size_t i = 0; i < size(); ++i)
            sum += static_cast<WideInteger>(m_integers[i]) * static_cast<WideInteger>(m_counts[i]);
        const auto total = static_cast<WideInteger>(m_ranks.total());
        if (total != 0 && sum % total == 0)
            return static_cast<std::int64_t>(sum / total);
        return numberFigure(static_cast<double>(static_cast<long double>(sum) / static_cast<long double>(total)));
    }
    return numberFigure(static_cast<double>(meanValue()));
}

long double OrderedNumbers::meanValue() const {
    CarefulSum sum;
    for (std::size_t i = 0; i < size(); ++i)
        sum.add(valueAt(i) * static_cast<long double>(m_counts[i]));
    return sum.value() / static_cast<long double>(m_ranks.total());
}

std::optional<double> OrderedNumbers::deviation() const {
    const auto total = static_cast<long double>(m_ranks.total());
    if (total < 2)
        return std::nullopt;
    const long double center = meanValue();
    CarefulSum squares;
    CarefulSum rest; // what the rounding of the mean left; without it a large mean would spoil a small deviation
    for (std::size_t i = 0; i < size(); ++i) {
        const auto count = static_cast<long double>(m_counts[i]);
        const long double distance = valueAt(i) - center;
        squares.add(distance * distance * count);
        rest.add(distance * count);
    }
    const long double variance = (squares.value() - rest.value() * rest.value() / total) / (total - 1);
    const auto deviation = static_cast<double>(std::sqrt(std::max(variance, 0.0L)));
    return std::isfinite(deviation) ? std::optional(deviation) : std::nullopt;
}

KvbDatavar OrderedNumbers::quantile(unsigned percent) const {
    if (!m_integers.empty()) {
        const std::uint64_t position = (m_ranks.total() - 1) * percent;
        const std::uint64_t rank = position / 100;
        const WideInteger low = m_integers[m_ranks.placeOf(rank)];
        const WideInteger high = m_integers[m_ranks.placeOf(std::min(rank + 1, m_ranks.total() - 1))];
        const WideInteger hundredfold = low * 100 + (high - low) * static_cast<WideInteger>(position % 100);
        if (hundredfold % 100 == 0)
            return static_cast<std::int64_t>(hundredfold / 100);
        return static_cast<double>(static_cast<long double>(hundredfold) / 100);
    }
    return numberFigure(static_cast<double>(quantileValue(percent)));
}

long double OrderedNumbers::quantileValue(unsigned percent) const {
    const std::uint64_t position = (m_ranks.total() - 1) * percent;
    const std::uint64_t rank = position / 100;
    const long double low = valueAt(m_ranks.placeOf(rank));
    const long double high = valueAt(m_ranks.placeOf(std::min(rank + 1, m_ranks.total() - 1)));
    return low + (high - low) * static_cast<long double>(position % 100) / 100;
}

repository::Fence OrderedNumbers::fenceOf(std::size_t place) const {
    const long double value = valueAt(place);
    const long double range = m_highQuartile - m_lowQuartile;
    const auto isBeyond = [&](long double factor) {
        return value < m_lowQuartile - factor * range || value > m_highQuartile + factor * range;
    };
    return isBeyond(3.0L)   ? repository::Fence::Outer30
           : isBeyond(1.5L) ? repository::Fence::Outer15
                            : repository::Fence::Inside;
}

} // namespace tavix::profiling
