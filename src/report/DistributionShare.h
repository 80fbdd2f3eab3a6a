#pragma once

#include "base/KvbString.h"
#include "base/Metrics.h"
#include "report/DistributionKind.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tavix {

/// The base of the percentages of a distribution, for viewer and tool: for values the processed records; for patterns
/// the values that are not null, because null has no pattern; with a filter the records or values that pass it.
class DistributionShare {
  public:
    DistributionShare() = default;
    /// `total` is the sum of the counts of all rows of the distribution, listed or not.
    DistributionShare(DistributionKind kind, bool isFiltered, std::int64_t total)
        : m_kind(kind), m_isFiltered(isFiltered), m_total(total) {}

    [[nodiscard]] std::int64_t Total() const { return m_total; }
    /// 0 to 100; nothing when the total is 0.
    [[nodiscard]] std::optional<double> PercentOf(std::int64_t count) const;
    /// The base in words: "of 2,499 records", "of 373 non-null values", "of 1 passing value".
    [[nodiscard]] std::string BaseText() const;
    /// The name of a column of these percentages in JSON and CSV.
    [[nodiscard]] std::string_view ColumnKey() const;

  private:
    DistributionKind m_kind = DistributionKind::Frequency;
    bool m_isFiltered = false;
    std::int64_t m_total = 0;
};

/// The total of a field's pattern distribution without a filter, from its metrics; 0 when they do not have it.
[[nodiscard]] std::int64_t patternTotal(const std::array<KvbString, kMetricCount>& metrics);
/// Likewise that of its values, all processed records, and how many of these are null.
[[nodiscard]] std::int64_t valueTotal(const std::array<KvbString, kMetricCount>& metrics);
[[nodiscard]] std::int64_t nullTotal(const std::array<KvbString, kMetricCount>& metrics);

/// How many of all a filter lets pass: "102 of 1,000,000 records pass", "1 of 373 non-null values passes".
[[nodiscard]] std::string passingText(DistributionKind kind, std::int64_t passing, std::int64_t all);

} // namespace tavix
