#include "tabs/FreqDistRows.h"

#include "access/PrViewer.h"
#include "base/GenException.h"

#include <algorithm>
#include <new>

namespace tavix {

namespace {

constexpr int kWidth = 150;
constexpr std::string_view kFailed = "Error occurred while retrieving frequency distribution:";

/// What the field's record says of the entries after the limit, which were not read.
void addUnread(Distribution& distribution, const FieldRecord& field) {
    const auto& entries = distribution.entries;
    distribution.otherEntries = std::max<std::int64_t>(field.freqCount - static_cast<std::int64_t>(entries.size()), 0);
    const bool isNullShown =
        std::any_of(entries.begin(), entries.end(), [](const auto& entry) { return entry.value.isNull(); });
    if (!isNullShown && distribution.otherEntries > 0)
        distribution.otherNulls = nullTotal(field.metrics);
}

} // namespace

FreqDistRows::FreqDistRows() : DistributionRows(DistributionKind::Frequency, {listColumn("Value", kWidth)}) {}

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
    Distribution distribution = readValueDistribution(*rows, limit, total);
    if (total)
        addUnread(distribution, field);
    Show(std::move(distribution), field, !total, "No value passes the filter.");
    return true;
} catch (const GenException& failure) {
    return Fail(kFailed, failure.getText().view());
} catch (const std::bad_alloc&) {
    return Fail(kFailed, "There is not enough memory for so many rows.");
}

GridCell FreqDistRows::EntryCell(int, std::size_t entry) const {
    return valueCell(Entry(entry).value);
}

} // namespace tavix
