#pragma once

#include "base/KvbDatavar.h"
#include "profiling/ValueOrder.h"
#include "repository/Facts.h"

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace tavix::profiling {

/// How often the values of an order occur, summed up from its beginning.
class Ranks {
  public:
    Ranks(Entries entries, std::span<const std::uint32_t> order);

    [[nodiscard]] std::uint64_t total() const { return m_sums.empty() ? 0 : m_sums.back(); }
    /// The place in the order of the row with this rank, from 0 and below total().
    [[nodiscard]] std::size_t placeOf(std::uint64_t rank) const;
    /// The place of the nearest rank: the row ceil(percent * total / 100), at least the first.
    [[nodiscard]] std::size_t nearest(unsigned percent) const;

  private:
    std::vector<std::uint64_t> m_sums;
};

/// A whole number as such, so that it is shown without an exponent; anything else as the real it is.
[[nodiscard]] KvbDatavar numberFigure(double value);

/// The numbers of a field in their order, weighted by their counts. Integers of 64 bits are computed with exactly.
class OrderedNumbers {
  public:
    /// `order` holds values of the kind Integer or Real only, and is not empty.
    OrderedNumbers(Entries entries, std::span<const std::uint32_t> order, ValueKind kind);

    [[nodiscard]] KvbDatavar mean() const;
    /// Of the sample; none for a single value, and when a double does not hold it.
    [[nodiscard]] std::optional<double> deviation() const;
    /// Linear interpolation between the rows around (total - 1) * percent / 100 (Hyndman and Fan's definition 7).
    [[nodiscard]] KvbDatavar quantile(unsigned percent) const;
    /// Of the value at this place of the order.
    [[nodiscard]] repository::Fence fenceOf(std::size_t place) const;

  private:
    [[nodiscard]] std::size_t size() const { return m_counts.size(); }
    [[nodiscard]] long double valueAt(std::size_t place) const;
    [[nodiscard]] long double meanValue() const;
    [[nodiscard]] long double quantileValue(unsigned percent) const;

    Ranks m_ranks;
    std::vector<std::uint64_t> m_counts;
    std::vector<std::int64_t> m_integers; ///< all of them, or
    std::vector<double> m_reals;          ///< all of them
    long double m_lowQuartile = 0;
    long double m_highQuartile = 0;
};

} // namespace tavix::profiling
