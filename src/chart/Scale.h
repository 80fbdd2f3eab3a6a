#pragma once

#include "base/Histogram.h"

#include <string>
#include <vector>

namespace tavix::chart {

/// Maps values to positions. Differences are taken in extended precision, so that spans beyond a double are drawn.
class Scale {
  public:
    /// `from` and `to` are the positions of `low` and `high`. Equal values are mapped to the middle.
    Scale(double low, double high, double from, double to) : m_low(low), m_high(high), m_from(from), m_to(to) {}

    [[nodiscard]] double at(double value) const;
    [[nodiscard]] double low() const { return m_low; }
    [[nodiscard]] double high() const { return m_high; }

  private:
    double m_low;
    double m_high;
    double m_from;
    double m_to;
};

struct Tick {
    double value = 0;
    std::string label;

    bool operator==(const Tick&) const = default;
};

/// Multiples of 1, 2 or 5 times a power of ten within the range, about `wanted` of them; with `areWhole` no fractions.
[[nodiscard]] std::vector<Tick> numberTicks(double low, double high, int wanted, bool areWhole = false);
/// Beginnings of calendar units within the range, in seconds since 1970.
[[nodiscard]] std::vector<Tick> dateTicks(double low, double high, int wanted);

/// "12,500", "12.5 M".
[[nodiscard]] std::string shortCount(double count);
/// A value or border as people read it: "1,250", "0.125", "1e+20".
[[nodiscard]] std::string shownNumber(double value);
/// The share of a whole: "9.4 %"; "" without a whole.
[[nodiscard]] std::string shownShare(double part, double whole);
/// "318 rows, 9.4 %".
[[nodiscard]] std::string rowsText(std::int64_t rows, std::int64_t total);

} // namespace tavix::chart
