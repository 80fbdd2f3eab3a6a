#pragma once

#include "chart/Picture.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tavix::chart {

class Plot;

/// How much of all rows the most frequent values make up together. Few values have a bar each; many are on a
/// logarithmic axis of ranks.
class RankPicture final : public Picture {
  public:
    /// How many values are drawn with a bar each.
    static constexpr std::size_t kMostBars = 40;

    struct Value {
        std::string label;
        std::int64_t count = 0;
        Action action{};
    };
    /// After a run of values: the rank of the last one, and the rows of all up to it.
    struct Sum {
        std::int64_t rank = 0;
        std::int64_t rows = 0;
    };

    /// `first` are the most frequent values, all of them if there are few; `sums` come in ascending order. `values` and
    /// `rows` are the numbers of all values and rows.
    RankPicture(std::vector<Value> first, const std::vector<Sum>& sums, std::int64_t values, std::int64_t rows);

    [[nodiscard]] std::string title() const override;
    [[nodiscard]] std::string description() const override;
    [[nodiscard]] Drawing draw(const Canvas& canvas) const override;

  private:
    /// The rows of all values up to a rank, between two known ranks in proportion.
    [[nodiscard]] double rowsUpTo(double rank) const;
    /// The least rank up to which the values have this share of all rows.
    [[nodiscard]] std::int64_t rankOfShare(double share) const;
    void drawBars(Drawing& drawing, const Plot& plot) const;
    void drawCurve(Drawing& drawing, const Plot& plot) const;

    std::vector<Value> m_first;
    std::vector<Sum> m_sums; ///< from rank 0 with no rows on
    std::int64_t m_values;
    std::int64_t m_rows;
};

} // namespace tavix::chart
