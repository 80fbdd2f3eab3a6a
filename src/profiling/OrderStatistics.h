#pragma once

#include "base/KvbDatavar.h"
#include "profiling/ValueKey.h"
#include "profiling/ValueWalk.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tavix::profiling {

/// A value of a walk that is kept when the walk goes on.
struct KeptValue {
    std::uint64_t key = 0;
    std::uint64_t count = 0;
    std::string text;
};
/// The row `row` of the batch that the walk gave last.
[[nodiscard]] KeptValue keptValue(const ValueWalk& walk, std::span<const ValueWalk::Row> batch, std::size_t row);

/// The lowest and highest values, median and percentiles of values that come in ascending order.
class OrderStatistics {
  public:
    static constexpr std::array<unsigned, 15> kPercents = {1, 5, 10, 20, 25, 30, 40, 50, 60, 70, 75, 80, 90, 95, 99};
    /// How many of the lowest and of the highest distinct values are kept.
    static constexpr std::size_t kExtremesPerSide = 10;

    /// `rows` is the sum of the counts of all values that will come, at least 1.
    OrderStatistics(KeyForm form, std::uint64_t rows);

    /// Takes the batch that the walk gave last.
    void add(const ValueWalk& walk, std::span<const ValueWalk::Row> batch);

    // After the last batch.
    [[nodiscard]] const std::vector<KeptValue>& lowest() const { return m_lowest; }  ///< ascending
    [[nodiscard]] const std::deque<KeptValue>& highest() const { return m_highest; } ///< ascending
    /// One of kPercents: interpolated between numbers, else the value of nearest rank.
    [[nodiscard]] KvbDatavar percentile(unsigned percent) const;
    /// The same as a number; only for numbers.
    [[nodiscard]] long double percentileNumber(unsigned percent) const;
    /// The name of the rule that percentile() follows, as docs/definitions.md explains it.
    [[nodiscard]] std::string_view percentileRule() const;

  private:
    /// The row below position (rows - 1) * percent / 100, from 0.
    [[nodiscard]] std::uint64_t linearRank(unsigned percent) const { return (m_rows - 1) * percent / 100; }
    /// Row ceil(percent * rows / 100), at least 1, less 1 to count from 0.
    [[nodiscard]] std::uint64_t nearestRank(unsigned percent) const;

    KeyForm m_form;
    bool m_isNumber;
    std::uint64_t m_rows;
    std::uint64_t m_passed = 0;                  ///< rows
    std::map<std::uint64_t, KeptValue> m_byRank; ///< the values at the ranks that the percentiles need
    std::map<std::uint64_t, KeptValue>::iterator m_nextRank;
    std::vector<KeptValue> m_lowest;
    std::deque<KeptValue> m_highest;
};

} // namespace tavix::profiling
