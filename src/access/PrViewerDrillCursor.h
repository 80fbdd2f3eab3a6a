#pragma once

#include "base/KvbString.h"

#include <memory>

namespace tavix {

/// Value types of drill-down columns; the numbers are the library's.
enum class kvbType {
    Integer = 2,
    Real = 3,
    Text = 4,
};

/// A forward cursor over rows of the source data. It reads them as they are asked for and lets go of the source when
/// it is freed, or at the last row. Columns are numbered from 0.
class PrViewerDrillCursor {
  public:
    virtual ~PrViewerDrillCursor() = default;

    /// Moves to the next row; false when there is none. Throws GenException when the source fails in the middle or the
    /// message sink asks to stop; the rows before that are good.
    virtual bool next() = 0;
    [[nodiscard]] virtual int getColumnCount() const = 0;
    [[nodiscard]] virtual KvbString getColumnName(int column) const = 0;
    /// A null value gives a null string.
    [[nodiscard]] virtual KvbString getColumnValue(int column) const = 0;
    /// What the run found the values of the column to be.
    [[nodiscard]] virtual kvbType getColumnType(int column) const = 0;
    /// How the source differs from what the run read, in words for a user; null when it does not.
    [[nodiscard]] virtual KvbString getWarning() const { return {}; }
    /// Every row of the source has been looked at, so that the number of rows passed is what it has now.
    [[nodiscard]] virtual bool isComplete() const { return false; }
};

struct PrViewerDrillCursorFree {
    void operator()(PrViewerDrillCursor* cursor) const;
};

/// Gives the cursor back through PrViewer::freeDrillDown. Null stands for a drill-down that failed.
using PrViewerDrillCursorHandle = std::unique_ptr<PrViewerDrillCursor, PrViewerDrillCursorFree>;

} // namespace tavix
