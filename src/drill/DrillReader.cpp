#include "drill/DrillReader.h"

#include "access/Layouts.h"
#include "base/GenException.h"

#include <algorithm>
#include <utility>

namespace tavix {

namespace {

// The number of rows between two calls of the watch.
constexpr std::int64_t kWatchedRows = 256;

kvbType typeOf(const PrViewerDrillCursor& cursor, int column) {
    return cursor.getColumnType(column);
}

kvbType typeOf(const ProfileCursor&, int) {
    return kvbType::Text;
}

template <typename Cursor>
DrillEnd readRows(Cursor& cursor, int first, std::int64_t limit, const DrillWatch& watch, DrillRows& rows) {
    const int columns = cursor.getColumnCount();
    while (cursor.next()) {
        for (int column = first; column < columns; ++column)
            rows.add(cursor.getColumnValue(column));
        rows.endRow();
        if (rows.count() >= limit)
            return DrillEnd::LimitReached;
        if (rows.count() % kWatchedRows == 0 && watch && !watch(rows.count()))
            return DrillEnd::Cancelled;
    }
    // A stop that arrives with the last row may have kept the cursor from looking for more.
    return watch && !watch(rows.count()) ? DrillEnd::Cancelled : DrillEnd::Complete;
}

template <typename Cursor>
void read(Cursor& cursor, DrillSourceMode mode, std::int64_t limit, const DrillWatch& watch, DrillResult& result) {
    const int first = mode == DrillSourceMode::RuleLog ? layout::RuleRowFirstField : 0;
    std::vector<DrillColumn> columns;
    for (int column = first; column < cursor.getColumnCount(); ++column)
        columns.push_back({cursor.getColumnName(column).str(), typeOf(cursor, column)});
    result.rows = DrillRows(std::move(columns));
    // Rows without columns are not read.
    if (!result.rows.columns().empty()) {
        try {
            result.end = readRows(cursor, first, limit, watch, result.rows);
        } catch (const GenException&) {
            // Stopped by the sink; an engine may report a cancelled statement in its own words.
            if (!watch || watch(result.rows.count()))
                throw;
            result.end = DrillEnd::Cancelled;
        }
    }
    result.warning = cursor.getWarning().str();
}

} // namespace

DrillResult readDrillRows(DrillCursor cursor, DrillSourceMode mode, std::int64_t limit, const DrillWatch& watch) {
    DrillResult result;
    try {
        std::visit(
            [&](auto& handle) {
                if (handle)
                    read(*handle, mode, std::max<std::int64_t>(1, limit), watch, result);
                else
                    result.end = DrillEnd::Failed;
            },
            cursor);
    } catch (const GenException& failure) {
        result.end = DrillEnd::Failed;
        result.reason = failure.getText().str();
    }
    result.rows.dropOpenRow();
    result.rows.finish();
    return result;
}

} // namespace tavix
