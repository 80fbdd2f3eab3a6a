#include "tabs/FreqDistRows.h"

#include "access/PrViewer.h"
#include "base/GenException.h"

namespace tavix {

namespace {

constexpr int kWidth = 150;
constexpr std::string_view kFailed = "Error occurred while retrieving frequency distribution:";

} // namespace

FreqDistRows::FreqDistRows() : DistributionRows({listColumn("Value", kWidth)}) {}

bool FreqDistRows::Fill(PrViewer& viewer, const FieldRecord& field, const KvbString& filter, std::int64_t limit,
                        PrViewDisplayMessage* sink) try {
    if (field.freqCount < 1) {
        ShowNotCalculated();
        return true;
    }
    std::optional<std::int64_t> total;
    if (filter.isEmpty()) {
        total = viewer.getFreqDistSum(field.id);
        if (*total < 0)
            return Fail(kFailed, viewer.getErrorString().view());
    }
    const ProfileCursorHandle rows = viewer.getFreqDist(field.id, filter, sink);
    if (!rows)
        return Fail(kFailed, viewer.getErrorString().view());
    Show(readValueDistribution(*rows, limit, total), DistributionKind::Frequency, !total,
         "No value passes the filter.");
    return true;
} catch (const GenException& failure) {
    return Fail(kFailed, failure.getText().view());
}

GridCell FreqDistRows::EntryCell(int, std::size_t entry) const {
    return valueCell(Entry(entry).value);
}

} // namespace tavix
