#pragma once

#include "base/KvbDatavar.h"
#include "profiling/ValueKey.h"
#include "profiling/ValueWalk.h"

#include <cstdint>
#include <optional>
#include <span>

namespace tavix::profiling {

/// A sum that compensates for rounding (Neumaier).
class CompensatedSum {
  public:
    void add(long double value);
    [[nodiscard]] long double value() const { return m_sum + m_compensation; }

  private:
    long double m_sum = 0;
    long double m_compensation = 0;
};

/// Mean and standard deviation of numbers, computed in two passes over the same values.
class Moments {
  public:
    /// `rows` is the sum of the counts of all values, at least 1.
    Moments(KeyForm form, std::uint64_t rows) : m_form(form), m_rows(rows) {}

    /// The first pass.
    void addToMean(std::span<const ValueWalk::Row> batch);
    [[nodiscard]] KvbDatavar mean() const;

    /// The second pass.
    void addToDeviation(std::span<const ValueWalk::Row> batch);
    /// Of a sample; nothing for a single row, and when it is not finite.
    [[nodiscard]] std::optional<double> deviation() const;

  private:
    __extension__ using WideInteger = __int128;

    KeyForm m_form;
    std::uint64_t m_rows;
    WideInteger m_wideSum = 0; ///< of integers
    CompensatedSum m_sum;
    CompensatedSum m_squares; ///< of the distances from the mean
    CompensatedSum
        m_distances; ///< the error of the rounded mean, which matters where a large mean has a small deviation
};

} // namespace tavix::profiling
