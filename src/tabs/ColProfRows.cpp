#include "tabs/ColProfRows.h"

#include "report/CountText.h"
#include "report/DistributionShare.h"
#include "tabs/MetricText.h"

namespace tavix {

namespace {

constexpr int kWidth = 180;

GridCell metricCell(int id, const FieldRecord& field) {
    const auto at = static_cast<std::size_t>(id);
    GridCell cell = metricCell(id, field.figureTypeCode(), at < field.metrics.size() ? field.metrics[at] : KvbString());
    cell.alignment = CellAlignment::Left;
    return cell;
}

} // namespace

ColProfRows::ColProfRows() : ListRows({listColumn("Metric Name", kWidth), listColumn("Metric Value", kWidth)}) {}

void ColProfRows::Fill(const FieldRecord& field, std::span<const MetricDisplay> metrics, bool isSample) {
    m_metrics.clear();
    for (const int id : metricOrder(metrics)) {
        m_metrics.push_back({textCell(metrics[static_cast<std::size_t>(id)].description), metricCell(id, field), {}});
        const bool isKnown = m_metrics.back().value.state != CellState::Unknown;
        const std::optional<FitFigures> fits = isKnown ? field.fits : std::nullopt;
        m_metrics.back().name.mark = figureMark(id, isSample, fits);
        m_metrics.back().toolTip = fitToolTip(id, fits);
    }
    const std::int64_t records = valueTotal(field.metrics);
    m_base.text = "Counts and percentages of " + countOf(records, isSample ? "sampled record" : "record");
    ShowRecords(m_metrics.size());
}

void ColProfRows::Clear() {
    m_metrics.clear();
    m_base = {};
    ShowRecords(0);
}

std::string ColProfRows::GetToolTip(int, std::int64_t row) const {
    return m_metrics.at(Record(row)).toolTip;
}

GridCell ColProfRows::CellOf(int column, std::size_t record) const {
    const Metric& metric = m_metrics.at(record);
    return column == 0 ? metric.name : metric.value;
}

} // namespace tavix
