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

/// A forward cursor over rows of the source data.
class PrViewerDrillCursor {
  public:
    virtual ~PrViewerDrillCursor() = default;

    /// Throws GenException when the source fails in the middle.
    virtual bool next() = 0;
    [[nodiscard]] virtual int getColumnCount() const = 0;
    [[nodiscard]] virtual KvbString getColumnName(int column) const = 0;
    [[nodiscard]] virtual KvbString getColumnValue(int column) const = 0;
    [[nodiscard]] virtual kvbType getColumnType(int column) const = 0;
};

struct PrViewerDrillCursorFree {
    void operator()(PrViewerDrillCursor* cursor) const;
};

/// Gives the cursor back through PrViewer::freeDrillDown. Null stands for a drill-down that failed.
using PrViewerDrillCursorHandle = std::unique_ptr<PrViewerDrillCursor, PrViewerDrillCursorFree>;

} // namespace tavix
