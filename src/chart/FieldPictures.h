#pragma once

#include "base/Result.h"
#include "chart/Picture.h"
#include "report/FieldRecord.h"

#include <memory>
#include <string>

namespace tavix {
class PrViewer;
}

namespace tavix::chart {

/// A picture, or the reason why there is none; neither for a field that has nothing to show.
struct FieldPicture {
    std::unique_ptr<Picture> picture; ///< null without one
    std::string note;
    std::string base{}; ///< over which values the figures are, as a sentence; "" for all
};

/// With so many distinct values or fewer, the values themselves are drawn.
inline constexpr int kFewValues = 12;

/// Of the values of a field, read from what its run stored: few values as bars, else a histogram of numbers, dates or
/// lengths of texts. Fails when the repository does.
[[nodiscard]] Result<FieldPicture> pictureOfValues(PrViewer& viewer, const FieldRecord& field);
/// Of the value distribution by rank: which share of the rows the most frequent values make up.
[[nodiscard]] Result<FieldPicture> pictureOfRanks(PrViewer& viewer, const FieldRecord& field);
/// The percentiles of numbers and dates as a curve.
[[nodiscard]] Result<FieldPicture> pictureOfPercentiles(PrViewer& viewer, const FieldRecord& field);
/// The outliers with their counts, for numbers and dates on a strip of all values.
[[nodiscard]] Result<FieldPicture> pictureOfOutliers(PrViewer& viewer, const FieldRecord& field);
/// The most frequent patterns as bars.
[[nodiscard]] Result<FieldPicture> pictureOfPatterns(PrViewer& viewer, const FieldRecord& field);

} // namespace tavix::chart
