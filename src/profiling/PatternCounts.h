#pragma once

#include "base/ByteMask.h"
#include "findings/ValueDetectors.h"
#include "profiling/ColumnValues.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace tavix::profiling {

/// Counts the patterns of a column's distinct values. Equal ones often follow each other and become one; the others
/// are counted many at once, because their entries are far apart in memory.
class PatternCounts {
  public:
    /// `detectors` must outlive it.
    explicit PatternCounts(findings::ValueDetectors& detectors) : m_detectors(detectors) {}

    /// Takes a value that occurs `count` times and returns its byteMask().
    ByteMask take(std::string_view text, std::uint64_t count);
    /// Counts what was taken. Call it before counted() is used.
    void flush();
    [[nodiscard]] ColumnValues& counted() { return m_counted; }

  private:
    static constexpr std::size_t kMost = 64;
    static constexpr std::size_t kLeastText = 4096;

    findings::ValueDetectors& m_detectors;
    ColumnValues m_counted;
    std::vector<char> m_text; ///< of the patterns that wait
    std::size_t m_used = 0;
    std::array<Entry, kMost> m_waiting;
    std::array<std::uint64_t, kMost> m_values{}; ///< of each that waits
    std::size_t m_size = 0;
};

} // namespace tavix::profiling
