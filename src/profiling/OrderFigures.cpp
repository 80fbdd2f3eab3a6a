#include "profiling/OrderFigures.h"

#include "profiling/MetricValue.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <deque>
#include <map>
#include <optional>
#include <utility>

namespace tavix::profiling {

namespace {

using repository::Fence;
using repository::OutlierSide;

__extension__ typedef __int128 WideInteger;

constexpr std::array<unsigned, 15> kIntervals = {1, 5, 10, 20, 25, 30, 40, 50, 60, 70, 75, 80, 90, 95, 99};

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

/// A value that is remembered after the walk went on.
struct Kept {
    std::uint64_t key = 0;
    std::uint64_t count = 0;
    std::string text;
};

class OrderWalker {
  public:
    OrderWalker(repository::FieldFacts& facts, ValueWalk& walk, KeyForm form, std::uint64_t rows, StopSignal& stop)
        : m_facts(facts),
          m_walk(walk),
          m_isInteger(form == KeyForm::Integer),
          m_isNumber(m_isInteger || form == KeyForm::Double || form == KeyForm::LargeInteger),
          m_rows(rows),
          m_stop(stop) {
        for (const unsigned percent : kIntervals) {
            if (m_isNumber) {
                m_byRank.try_emplace(linearRank(percent));
                m_byRank.try_emplace(std::min(linearRank(percent) + 1, m_rows - 1));
            } else {
                m_byRank.try_emplace(nearestRank(percent));
            }
        }
    }

    Status compute() {
        if (Status status = walkOnce(); !status)
            return status;
        set(MetricId::MinimumValue, m_lowest.front().text);
        set(MetricId::MaximumValue, m_highest.back().text);
        set(MetricId::Mode, m_mode.text);
        set(MetricId::Median, quantile(50));
        m_facts.quantileRule = m_isNumber ? kLinearRule : kNearestRule;
        for (const unsigned percent : kIntervals)
            m_facts.percentiles.push_back({fmt::format("{}%", percent), quantile(percent).toText()});
        if (m_isNumber) {
            m_lowQuartile = quantileValue(25);
            m_highQuartile = quantileValue(75);
            if (Status status = setMoments(); !status)
                return status;
        }
        for (std::size_t i = 0; i < m_lowest.size(); ++i)
            addOutlier(OutlierSide::Low, i, m_lowest[i]);
        for (std::size_t i = 0; i < m_highest.size(); ++i)
            addOutlier(OutlierSide::High, i, m_highest[m_highest.size() - 1 - i]);
        return {};
    }

  private:
    void set(MetricId metric, KvbDatavar value) { m_facts.metrics[index(metric)] = std::move(value); }

    /// The row below the place (rows - 1) * percent / 100, from 0.
    [[nodiscard]] std::uint64_t linearRank(unsigned percent) const { return (m_rows - 1) * percent / 100; }
    /// The row ceil(percent * rows / 100), from 1 and at least 1, counted from 0 here.
    [[nodiscard]] std::uint64_t nearestRank(unsigned percent) const {
        return std::max<std::uint64_t>((m_rows * percent + 99) / 100, 1) - 1;
    }

    [[nodiscard]] long double numberOf(std::uint64_t key) const {
        return m_isInteger ? static_cast<long double>(integerOfKey(key)) : static_cast<long double>(doubleOfKey(key));
    }

    Status walkOnce() {
        if (Status status = m_walk.rewind(); !status)
            return status;
        auto rank = m_byRank.begin();
        std::uint64_t passed = 0;
        for (;;) {
            const auto rows = m_walk.next();
            if (!rows)
                return rows.error();
            if (m_stop.isStopped())
                return StopSignal::stopped();
            if (rows->empty())
                return {};
            for (std::size_t i = 0; i < rows->size(); ++i) {
                const ValueWalk::Row& row = (*rows)[i];
                passed += row.count;
                for (; rank != m_byRank.end() && rank->first < passed; ++rank)
                    rank->second = keep(row, i);
                if (row.count > m_mode.count)
                    m_mode = keep(row, i);
                if (m_lowest.size() < kOutliersPerSide)
                    m_lowest.push_back(keep(row, i));
            }
            if (m_isNumber)
                sumUp(*rows);
            for (std::size_t i = rows->size() - std::min(kOutliersPerSide, rows->size()); i < rows->size(); ++i)
                m_highest.push_back(keep((*rows)[i], i));
            while (m_highest.size() > kOutliersPerSide)
                m_highest.pop_front();
        }
    }

    void sumUp(std::span<const ValueWalk::Row> rows) {
        if (m_isInteger)
            for (const ValueWalk::Row& row : rows)
                m_wideSum += static_cast<WideInteger>(integerOfKey(row.key)) * static_cast<WideInteger>(row.count);
        for (const ValueWalk::Row& row : rows)
            m_sum.add(numberOf(row.key) * static_cast<long double>(row.count));
    }

    [[nodiscard]] Kept keep(const ValueWalk::Row& row, std::size_t place) const {
        return {row.key, row.count, std::string(m_walk.text(place))};
    }

    [[nodiscard]] KvbDatavar mean() const {
        if (!m_isInteger)
            return metricValue(static_cast<double>(m_sum.value() / static_cast<long double>(m_rows)));
        const auto total = static_cast<WideInteger>(m_rows);
        if (m_wideSum % total == 0)
            return static_cast<std::int64_t>(m_wideSum / total);
        return metricValue(static_cast<double>(static_cast<long double>(m_wideSum) / static_cast<long double>(total)));
    }

    Status setMoments() {
        set(MetricId::Mean, mean());
        if (m_rows < 2)
            return {};
        const auto total = static_cast<long double>(m_rows);
        const long double center = m_sum.value() / total;
        CarefulSum squares;
        CarefulSum rest; // what the rounding of the mean left; without it a large mean would spoil a small deviation
        if (Status status = m_walk.rewind(); !status)
            return status;
        for (;;) {
            const auto rows = m_walk.next();
            if (!rows)
                return rows.error();
            if (m_stop.isStopped())
                return StopSignal::stopped();
            if (rows->empty())
                break;
            for (const ValueWalk::Row& row : *rows) {
                const auto count = static_cast<long double>(row.count);
                const long double distance = numberOf(row.key) - center;
                squares.add(distance * distance * count);
                rest.add(distance * count);
            }
        }
        const long double variance = (squares.value() - rest.value() * rest.value() / total) / (total - 1);
        const auto deviation = static_cast<double>(std::sqrt(std::max(variance, 0.0L)));
        if (!std::isfinite(deviation))
            return {};
        set(MetricId::StandardDeviation, metricValue(deviation));
        set(MetricId::StandardError, metricValue(deviation / std::sqrt(static_cast<double>(m_rows))));
        return {};
    }

    [[nodiscard]] KvbDatavar quantile(unsigned percent) const {
        if (!m_isNumber)
            return m_byRank.at(nearestRank(percent)).text;
        if (!m_isInteger)
            return metricValue(static_cast<double>(quantileValue(percent)));
        const std::uint64_t rank = linearRank(percent);
        const WideInteger low = integerOfKey(m_byRank.at(rank).key);
        const WideInteger high = integerOfKey(m_byRank.at(std::min(rank + 1, m_rows - 1)).key);
        const auto part = static_cast<WideInteger>((m_rows - 1) * percent % 100);
        const WideInteger hundredfold = low * 100 + (high - low) * part;
        if (hundredfold % 100 == 0)
            return static_cast<std::int64_t>(hundredfold / 100);
        return static_cast<double>(static_cast<long double>(hundredfold) / 100);
    }

    [[nodiscard]] long double quantileValue(unsigned percent) const {
        const std::uint64_t rank = linearRank(percent);
        const long double low = numberOf(m_byRank.at(rank).key);
        const long double high = numberOf(m_byRank.at(std::min(rank + 1, m_rows - 1)).key);
        return low + (high - low) * static_cast<long double>((m_rows - 1) * percent % 100) / 100;
    }

    [[nodiscard]] Fence fenceOf(std::uint64_t key) const {
        const long double value = numberOf(key);
        const long double range = m_highQuartile - m_lowQuartile;
        const auto isBeyond = [&](long double factor) {
            return value < m_lowQuartile - factor * range || value > m_highQuartile + factor * range;
        };
        return isBeyond(3.0L) ? Fence::Outer30 : isBeyond(1.5L) ? Fence::Outer15 : Fence::Inside;
    }

    void addOutlier(OutlierSide side, std::size_t position, const Kept& value) {
        m_facts.outliers.push_back({side, static_cast<int>(position), KvbString(value.text), value.count,
                                    m_isNumber ? fenceOf(value.key) : Fence::Inside});
    }

    repository::FieldFacts& m_facts;
    ValueWalk& m_walk;
    bool m_isInteger;
    bool m_isNumber;
    std::uint64_t m_rows;
    StopSignal& m_stop;

    std::map<std::uint64_t, Kept> m_byRank; ///< what stands at the ranks that a figure asks for
    Kept m_mode;
    std::vector<Kept> m_lowest;
    std::deque<Kept> m_highest;
    WideInteger m_wideSum = 0;
    CarefulSum m_sum;
    long double m_lowQuartile = 0;
    long double m_highQuartile = 0;
};

} // namespace

Status computeOrderFigures(repository::FieldFacts& facts, ValueWalk& walk, KeyForm form, std::uint64_t rows,
                           StopSignal& stop) {
    return OrderWalker(facts, walk, form, rows, stop).compute();
}

} // namespace tavix::profiling
