#pragma once

#include "chart/Picture.h"
#include "report/FieldHistogram.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tavix::chart {

class Scale;

/// All values of a field on a strip with the fences, and the lowest and highest values with their counts. Texts have no
/// strip.
class OutlierPicture final : public Picture {
  public:
    struct Outlier {
        std::string label;
        std::int64_t count = 0;
        int fence = 0;                    ///< beyond which the value lies: 0 none, 1 the inner one, 2 the outer one
        std::optional<double> position{}; ///< in the histogram
        Action action{};
    };
    /// The quartiles, from which the fences follow.
    struct Quartiles {
        double low = 0;
        double high = 0;
    };

    /// Both lists begin with the value that is farthest out.
    OutlierPicture(std::vector<Outlier> lowest, std::vector<Outlier> highest, std::optional<FieldHistogram> histogram,
                   std::optional<Quartiles> quartiles);

    [[nodiscard]] std::string title() const override;
    [[nodiscard]] std::string description() const override;
    [[nodiscard]] Drawing draw(const Canvas& canvas) const override;

  private:
    /// Returns the lower end of the strip.
    [[nodiscard]] double drawStrip(Drawing& drawing, const Canvas& canvas) const;
    void drawFences(Drawing& drawing, const Canvas& canvas, const Scale& scale, double bottom) const;
    void drawList(Drawing& drawing, const Canvas& canvas, const std::string& heading,
                  const std::vector<Outlier>& outliers, const Rect& rect) const;

    std::vector<Outlier> m_lowest;
    std::vector<Outlier> m_highest;
    std::optional<FieldHistogram> m_histogram;
    std::optional<Quartiles> m_quartiles;
};

} // namespace tavix::chart
