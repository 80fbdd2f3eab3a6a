#pragma once

#include "base/KvbString.h"

#include <memory>

namespace tavix {

/// A forward cursor over the rows of a repository query. Columns are numbered from 0; the layouts stand in
/// access/Layouts.h. A cursor becomes invalid when its PrViewer is closed.
class ProfileCursor {
  public:
    virtual ~ProfileCursor() = default;

    /// Advances; the first call moves to the first row. False when no row is left. Throws GenException when the
    /// repository fails in the middle of the result.
    virtual bool next() = 0;
    [[nodiscard]] virtual int getColumnCount() const = 0;
    [[nodiscard]] virtual KvbString getColumnName(int column) const = 0;
    /// A null value gives a null string.
    [[nodiscard]] virtual KvbString getColumnValue(int column) const = 0;
    [[nodiscard]] virtual int getColumnInt(int column) const = 0;
    [[nodiscard]] virtual double getColumnDouble(int column) const = 0;
    [[nodiscard]] virtual bool isColumnNull(int column) const = 0;
    /// False for a column that the cursor does not have.
    [[nodiscard]] virtual bool isColumnValid(int column) const = 0;
    /// What a user has to know about the rows that were passed so far: that a filter could not be evaluated for some of
    /// them, which are left out. Null when there is nothing to tell, which is so for every result without a filter.
    [[nodiscard]] virtual KvbString getWarning() const { return {}; }
};

struct ProfileCursorFree {
    void operator()(ProfileCursor* cursor) const;
};

/// Gives the cursor back through PrViewer::freeProfileCursor. Null stands for a query that failed.
using ProfileCursorHandle = std::unique_ptr<ProfileCursor, ProfileCursorFree>;

} // namespace tavix
