#pragma once

#include "access/PrViewerDrillCursor.h"
#include "access/ProfileCursor.h"
#include "drill/DrillRows.h"

#include <cstdint>
#include <functional>
#include <string>
#include <variant>

namespace tavix {

/// Where the rows of a drill-through come from, and which of a cursor's columns are shown.
enum class DrillSourceMode {
    Rows = 0,    ///< all columns
    RuleLog = 1, ///< a business rule's row log, whose first columns are bookkeeping
};

using DrillCursor = std::variant<PrViewerDrillCursorHandle, ProfileCursorHandle>;

enum class DrillEnd {
    Complete,
    LimitReached, ///< whether there are more rows is not known
    Cancelled,
    Failed,
};

struct DrillResult {
    DrillRows rows; ///< what was read, however it ended
    DrillEnd end = DrillEnd::Complete;
    std::string reason;  ///< why it failed, in the library's words
    std::string warning; ///< what the library has to say of the rows beside
};

/// Called now and then with the number of rows read so far; false asks to stop.
using DrillWatch = std::function<bool(std::int64_t rows)>;

/// Reads at most `limit` rows, at least 1, and gives the cursor back before it returns, whatever happens. A cursor that
/// is null has failed already. The types of a ProfileCursor's columns are all text.
[[nodiscard]] DrillResult readDrillRows(DrillCursor cursor, DrillSourceMode mode, std::int64_t limit,
                                        const DrillWatch& watch);

} // namespace tavix
