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

/// A forward cursor over rows of the source data. It reads them as they are requested and closes the source when it is
/// freed, or after the last row. Columns are numbered from 0.
class PrViewerDrillCursor {
  public:
    virtual ~PrViewerDrillCursor() = default;

    /// Advances; false if no row is left. Throws GenException if the source fails or the message sink asks to stop; the
    /// rows before that are valid.
    virtual bool next() = 0;
    [[nodiscard]] virtual int getColumnCount() const = 0;
    [[nodiscard]] virtual KvbString getColumnName(int column) const = 0;
    /// A null value gives a null string.
    [[nodiscard]] virtual KvbString getColumnValue(int column) const = 0;
    /// By the values that the run found in the column.
    [[nodiscard]] virtual kvbType getColumnType(int column) const = 0;
    /// How the source differs from what the run read, for users; null if it does not.
    [[nodiscard]] virtual KvbString getWarning() const { return {}; }
    /// All rows of the source were read, so that the number of rows passed is their present number.
    [[nodiscard]] virtual bool isComplete() const { return false; }
};

struct PrViewerDrillCursorFree {
    void operator()(PrViewerDrillCursor* cursor) const;
};

/// Gives the cursor back through PrViewer::freeDrillDown. Null when the drill-down failed.
using PrViewerDrillCursorHandle = std::unique_ptr<PrViewerDrillCursor, PrViewerDrillCursorFree>;

} // namespace tavix
