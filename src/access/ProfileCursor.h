#pragma once

#include "base/KvbString.h"

#include <cstdint>
#include <memory>

namespace tavix {

/// A forward cursor over the rows of a repository query. Columns are numbered from 0; see access/Layouts.h. A cursor
/// becomes invalid when its PrViewer is closed.
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
    /// The numeric getters give 0 for null and for a text that is not a number. The integer getters truncate a fraction
    /// and clamp to their range.
    [[nodiscard]] virtual int getColumnInt(int column) const = 0;
    [[nodiscard]] virtual std::int64_t getColumnInt64(int column) const = 0;
    [[nodiscard]] virtual double getColumnDouble(int column) const = 0;
    [[nodiscard]] virtual bool isColumnNull(int column) const = 0;
    /// False for a column that the cursor does not have.
    [[nodiscard]] virtual bool isColumnValid(int column) const = 0;
    /// A warning for the user about the rows passed so far: the filter could not be evaluated for some of them, which
    /// were left out. Null without such rows and for every result without a filter.
    [[nodiscard]] virtual KvbString getWarning() const { return {}; }
};

struct ProfileCursorFree {
    void operator()(ProfileCursor* cursor) const;
};

/// Gives the cursor back through PrViewer::freeProfileCursor. Null when the query failed.
using ProfileCursorHandle = std::unique_ptr<ProfileCursor, ProfileCursorFree>;

} // namespace tavix
