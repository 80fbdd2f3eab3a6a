#pragma once

#include "access/PrViewer.h"
#include "base/GenException.h"

#include <utility>

namespace tavix {

/// The cursor of a query that the viewer just made. Throws GenException with the viewer's error text if it failed.
[[nodiscard]] inline ProfileCursorHandle checked(PrViewer& viewer, ProfileCursorHandle cursor) {
    if (!cursor)
        throw GenException(viewer.getErrorString());
    return cursor;
}

} // namespace tavix
