#include "tabs/PatternDistRows.h"

#include "access/PrViewer.h"
#include "base/GenException.h"

#include <new>

namespace tavix {

namespace {

constexpr int kWidth = 150;
constexpr std::string_view kFailed = "Error occurred while retrieving pattern distribution:";

} // namespace

PatternDistRows::PatternDistRows()
    : DistributionRows(DistributionKind::Pattern, {listColumn("Pattern", kWidth), listColumn("Alternate", kWidth)}) {}

bool PatternDistRows::Fill(PrViewer& viewer, const FieldRecord& field, const KvbString& filter, std::int64_t limit,
                           PrViewDisplayMessage* sink) try {
    const int count = viewer.getPatternDistCount(field.id);
    if (count == 0) {
        m_alternates.clear();
        ShowNotCalculated();
        return true;
    }
    const ProfileCursorHandle rows = count > 0 ? viewer.getPatternDist(field.id, filter, sink) : nullptr;
    if (!rows)
        return Fail(kFailed, viewer.getErrorString().view());
    Distribution distribution = readPatternDistribution(*rows, limit);
    std::vector<std::string> alternates;
    for (const Distribution::Entry& entry : distribution.entries)
        alternates.push_back(viewer.getAbbreviatedPattern(entry.value).str());
    m_alternates = std::move(alternates);
    Show(std::move(distribution), field, !filter.isEmpty(), "No pattern passes the filter.");
    return true;
} catch (const GenException& failure) {
    return Fail(kFailed, failure.getText().view());
} catch (const std::bad_alloc&) {
    return Fail(kFailed, "There is not enough memory for so many rows.");
}

GridCell PatternDistRows::EntryCell(int column, std::size_t entry) const {
    return column == 0 ? valueCell(Entry(entry).value) : textCell(m_alternates.at(entry));
}

} // namespace tavix
