#pragma once

#include "base/Histogram.h"
#include "chart/Picture.h"

#include <string>
#include <vector>

namespace tavix::chart {

/// The percentiles of a field as a curve.
class QuantilePicture final : public Picture {
  public:
    struct Point {
        double percent = 0;
        double value = 0; ///< dates in seconds since 1970
        std::string text;
    };

    /// `kind` is Numbers or Dates. The points come in ascending order of their percentage, at least two. `reading`: see
    /// FieldHistogram.
    QuantilePicture(HistogramKind kind, std::vector<Point> points, std::string reading = {});

    [[nodiscard]] std::string title() const override { return "Percentiles"; }
    [[nodiscard]] std::string description() const override;
    [[nodiscard]] Drawing draw(const Canvas& canvas) const override;

  private:
    HistogramKind m_kind;
    std::vector<Point> m_points;
    std::string m_reading;
};

} // namespace tavix::chart
