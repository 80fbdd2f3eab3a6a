#pragma once

#include "access/PrViewerDrillCursor.h"
#include "access/ProfileCursor.h"
#include "drill/DrillRows.h"

#include <cstdint>
#include <functional>
#include <string>
#include <variant>

namespace tavix {

/// The kind of rows, which decides the columns of the cursor that are shown.
enum class DrillSourceMode {
    Rows = 0,    ///< all columns
    RuleLog = 1, ///< a business rule's row log, whose first columns are bookkeeping
};

using DrillCursor = std::variant<PrViewerDrillCursorHandle, ProfileCursorHandle>;

enum class DrillEnd {
    Complete,
    LimitReached, ///< there may be more rows
    Cancelled,
    Failed,
};

struct DrillResult {
    DrillRows rows; ///< the rows that were read before the end
    DrillEnd end = DrillEnd::Complete;
    std::string reason;  ///< the library's error text
    std::string warning; ///< the library's warning about the rows
};

/// Called at intervals with the number of rows read so far; returns false to cancel.
using DrillWatch = std::function<bool(std::int64_t rows)>;

/// Reads at most `limit` rows, at least 1, and releases the cursor before it returns. A null cursor gives
/// DrillEnd::Failed. All columns of a ProfileCursor have type text.
[[nodiscard]] DrillResult readDrillRows(DrillCursor cursor, DrillSourceMode mode, std::int64_t limit,
                                        const DrillWatch& watch);

} // namespace tavix
