#pragma once

#include "chart/Picture.h"
#include "report/FieldHistogram.h"

#include <optional>

namespace tavix::chart {

/// Positions among the values that are marked: numbers as such, dates in seconds since 1970.
struct ValueMarks {
    std::optional<double> lowQuartile;
    std::optional<double> median;
    std::optional<double> highQuartile;
    std::optional<double> mean;
    /// As texts, for the line below the picture; "" where there is none.
    std::string lowQuartileText;
    std::string medianText;
    std::string highQuartileText;
    std::string meanText;

    bool operator==(const ValueMarks&) const = default;
};

/// How many rows have values in each range, with quartiles, median, mean and fences below.
class HistogramPicture final : public Picture {
  public:
    HistogramPicture(FieldHistogram histogram, ValueMarks marks);

    [[nodiscard]] std::string title() const override;
    [[nodiscard]] std::string description() const override;
    [[nodiscard]] Drawing draw(const Canvas& canvas) const override;

  private:
    FieldHistogram m_histogram;
    ValueMarks m_marks;
};

/// "1,200 to 1,250"; "3" where the range has a single whole number; "March 2026", "week from 2026-03-02".
[[nodiscard]] std::string rangeText(const FieldHistogram& histogram, const FieldHistogram::Bin& bin);
/// Filter code that keeps the values of a range.
[[nodiscard]] std::string rangeFilter(const FieldHistogram& histogram, const FieldHistogram::Bin& bin);

} // namespace tavix::chart
