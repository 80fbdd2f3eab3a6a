#pragma once

#include "grid/ListRows.h"
#include "report/FieldRecord.h"
#include "settings/MetricDisplay.h"

namespace tavix {

/// The column profiling list: all metrics of one field, including hidden ones, in the user's order.
class ColProfRows final : public ListRows {
  public:
    ColProfRows();

    /// Metrics over the values that fit a narrower type, and with `isSample` those computed from the sampled records
    /// only, carry a mark beside their name.
    void Fill(const FieldRecord& field, std::span<const MetricDisplay> metrics, bool isSample = false);
    void Clear() override;
    /// The records that the counts and percentages refer to.
    [[nodiscard]] ListBase GetBase() const override { return m_base; }

    /// Over which values a metric is.
    [[nodiscard]] std::string GetToolTip(int column, std::int64_t row) const override;

  private:
    struct Metric {
        GridCell name;
        GridCell value;
        std::string toolTip;
    };

    [[nodiscard]] GridCell CellOf(int column, std::size_t record) const override;

    std::vector<Metric> m_metrics;
    ListBase m_base;
};

} // namespace tavix
