#pragma once

class QTableView;

namespace tavix {

/// Paints the rows beyond the last column, which ends at `end` in the viewport: stripes and selection reach the edge,
/// so the figures at the far end of a wide list belong to their row. Call it in the view's paint event.
void paintRowEnds(QTableView& view, int end);

} // namespace tavix
