#pragma once

#include "base/Histogram.h"
#include "base/Result.h"
#include "findings/ValueDetectors.h"
#include "forms/FormCounts.h"
#include "forms/ValueKind.h"
#include "profiling/PatternCounts.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace tavix::profiling {

/// The facts that one walk over the distinct values of a column finds in any order: type, lengths, counts and patterns.
class ValueSurvey {
  public:
    explicit ValueSurvey(forms::StatedDates dates = forms::StatedDates::Nothing) : m_forms(dates) {}

    void take(std::span<const Entry> values);

    [[nodiscard]] ColumnValues& patterns() { return m_patterns.counted(); }
    [[nodiscard]] forms::ValueKind kind() const { return m_kind; }
    [[nodiscard]] const forms::FormCounts& forms() const { return m_forms; }
    /// Whether all integers fit 64 bits.
    [[nodiscard]] bool fits64() const { return m_fits64; }
    [[nodiscard]] std::uint64_t values() const { return m_values; }
    [[nodiscard]] std::uint64_t rows() const { return m_rows; }
    [[nodiscard]] std::uint64_t emptyRows() const { return m_emptyRows; }
    [[nodiscard]] std::uint64_t blankRows() const { return m_blankRows; }
    [[nodiscard]] std::uint64_t shortest() const { return m_shortest; } ///< code points
    [[nodiscard]] std::uint64_t longest() const { return m_longest; }
    [[nodiscard]] Histogram lengths() const { return m_lengths.make(m_shortest, m_longest); } ///< of at least one value
    [[nodiscard]] std::size_t longestBytes() const { return m_longestBytes; }
    [[nodiscard]] const findings::ValueDetectors& detectors() const { return m_detectors; }
    [[nodiscard]] std::int64_t decimalPlaces() const { return m_decimalPlaces; } ///< the most of any real

  private:
    void takeKind(std::string_view text, ByteMask bytes, std::uint64_t count);

    findings::ValueDetectors m_detectors;
    PatternCounts m_patterns{m_detectors};
    forms::ValueKind m_kind = forms::ValueKind::None;
    forms::FormCounts m_forms;
    bool m_fits64 = true;
    std::uint64_t m_values = 0;
    std::uint64_t m_rows = 0;
    std::uint64_t m_emptyRows = 0;
    std::uint64_t m_blankRows = 0;
    std::uint64_t m_shortest = UINT64_MAX;
    std::uint64_t m_longest = 0;
    LengthBins m_lengths;
    std::size_t m_longestBytes = 0;
    std::int64_t m_decimalPlaces = 0;
};

} // namespace tavix::profiling
