#pragma once

#include "report/FieldRecord.h"
#include "settings/MetricDisplay.h"
#include "tabs/ListRows.h"

namespace tavix {

/// The column profiling list: every metric of one field with its value, hidden metrics too, in the user's order.
class ColProfRows final : public ListRows {
  public:
    ColProfRows();

    /// `isSample`: a mark beside the name tells which metrics are those of the sampled records alone.
    void Fill(const FieldRecord& field, std::span<const MetricDisplay> metrics, bool isSample = false);
    void Clear() override;

    [[nodiscard]] int GetMetricId(std::int64_t row) const { return m_metrics.at(Record(row)).id; }

  private:
    struct Metric {
        int id = -1;
        GridCell name;
        GridCell value;
    };

    [[nodiscard]] GridCell CellOf(int column, std::size_t record) const override;

    std::vector<Metric> m_metrics;
};

} // namespace tavix
