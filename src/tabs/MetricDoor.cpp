#include "tabs/MetricDoor.h"

#include "access/Layouts.h"
#include "access/PrViewer.h"
#include "base/GenException.h"
#include "base/Metrics.h"

namespace tavix {

MetricDoor doorOf(int metricId, const GridCell& cell) {
    if (cell.state != CellState::Ordinary || !findMetric(metricId))
        return MetricDoor::None;
    switch (static_cast<MetricId>(metricId)) {
    case MetricId::NullCount:
        return cell.text == "0" ? MetricDoor::None : MetricDoor::Nulls;
    case MetricId::BlankCount:
        return cell.text == "0" ? MetricDoor::None : MetricDoor::Blanks;
    case MetricId::MinimumValue:
    case MetricId::MaximumValue:
    case MetricId::Mode:
        return MetricDoor::Value;
    default:
        return MetricDoor::None;
    }
}

Result<std::vector<KvbString>> readBlanks(PrViewer& viewer, int fieldId, std::int64_t blankCount,
                                          std::size_t most) try {
    const ProfileCursorHandle rows = viewer.getFreqDist(fieldId, KvbString(kBlankFilter));
    if (!rows)
        return Error{viewer.getErrorString().str()};
    std::vector<KvbString> blanks;
    // Without the count, the whole distribution would be searched for another one.
    std::int64_t left = blankCount;
    while (left > 0 && blanks.size() < most && rows->next()) {
        blanks.push_back(rows->getColumnValue(layout::FreqValue));
        left -= rows->getColumnInt64(layout::FreqCount);
    }
    return blanks;
} catch (const GenException& failure) {
    return Error{failure.getText().str()};
}

} // namespace tavix
