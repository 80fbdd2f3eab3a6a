#pragma once

#include "base/DateTicks.h"

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

/// How many rows have a value in each of some adjacent ranges. docs/definitions.md says how the ranges are chosen.
namespace tavix {

enum class HistogramKind : char {
    Numbers = 'N',
    Dates = 'D',
    Lengths = 'L', ///< of texts, in code points
};

enum class BinUnit : char {
    Number = 'N',
    Second = 'S', ///< since 1970-01-01 00:00 UTC
    Week = 'W',   ///< since Monday, 1969-12-29
    Month = 'M',  ///< since January of the year 0
};

/// Bin i holds the values from border i up to but without border i + 1. Border i is (first + i) * step * 10^exponent,
/// in the unit.
struct Histogram {
    static constexpr std::size_t kMostBins = 100;

    HistogramKind kind = HistogramKind::Numbers;
    BinUnit unit = BinUnit::Number;
    std::int64_t first = 0;
    std::int64_t step = 1;
    int exponent = 0; ///< 0 unless the unit is Number
    std::vector<std::uint64_t> counts;

    bool operator==(const Histogram&) const = default;

    /// Whether the borders can be computed: a stored histogram may be damaged.
    [[nodiscard]] bool isSound() const;
    /// Of numbers and lengths. A fractional border is the nearest double.
    [[nodiscard]] long double border(std::size_t index) const;
    /// Of dates: units of 100 ns since 1970 (base/DateTicks.h).
    [[nodiscard]] std::int64_t dateBorder(std::size_t index) const;
};

/// Counts numbers, which must come in ascending order, in ranges chosen by the lowest and the highest.
class NumberBins {
  public:
    NumberBins(long double lowest, long double highest, bool areWhole);

    void add(long double value, std::uint64_t count) {
        while (value >= m_border && m_bin + 1 < m_histogram.counts.size())
            goOn();
        m_histogram.counts[m_bin] += count;
    }
    [[nodiscard]] Histogram take() { return std::move(m_histogram); }

  private:
    void goOn();

    Histogram m_histogram;
    std::size_t m_bin = 0;
    long double m_border = 0; ///< the upper one of the current bin
};

/// Counts dates, which must come in ascending order, in calendar units chosen by the first and the last.
class DateBins {
  public:
    void add(std::int64_t ticks, std::uint64_t count) {
        if (m_fine.empty() || ticks >= m_end)
            begin(ticks);
        m_last = ticks;
        m_hasTimes = m_hasTimes || ticks % kTicksPerDay != 0;
        m_fine.back().count += count;
    }
    /// After at least one date.
    [[nodiscard]] Histogram take() const;

  private:
    enum class Level { Second, Minute, Hour, Day, Month, Year };
    struct Fine {
        std::int64_t index = 0;
        std::uint64_t count = 0;
    };

    [[nodiscard]] static std::int64_t indexOf(std::int64_t ticks, Level level);
    /// The first instant of a unit.
    [[nodiscard]] static std::int64_t startOf(std::int64_t index, Level level);
    void begin(std::int64_t ticks);
    void coarsen();

    Level m_level = Level::Second;
    bool m_hasTimes = false;  ///< else a day is the smallest range
    std::vector<Fine> m_fine; ///< counts by small units, of which the chosen ones are made
    std::int64_t m_first = 0;
    std::int64_t m_last = 0;
    std::int64_t m_end = 0; ///< of the current small unit
};

/// Counts lengths, in any order.
class LengthBins {
  public:
    void add(std::uint64_t length, std::uint64_t count) {
        const std::uint64_t slot = length >> m_shift;
        if (slot >= m_slots.size())
            makeRoomFor(length);
        m_slots[length >> m_shift] += count;
    }
    /// For the shortest and the longest length that were added.
    [[nodiscard]] Histogram make(std::uint64_t shortest, std::uint64_t longest) const;

  private:
    void makeRoomFor(std::uint64_t length);

    unsigned m_shift = 0; ///< a slot holds 2^m_shift lengths
    std::vector<std::uint64_t> m_slots;
};

} // namespace tavix
