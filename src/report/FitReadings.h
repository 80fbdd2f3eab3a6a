#pragma once

#include "report/FitFigures.h"

#include <map>
#include <optional>

namespace tavix {

class PrViewer;

/// Over which values the figures of fields are, read with one query for each table.
class FitReadings {
  public:
    /// The viewer must outlive the object.
    explicit FitReadings(PrViewer& viewer) : m_viewer(viewer) {}

    /// Set when figures of the field are over the values that fit a narrower type. Throws GenException when the
    /// repository fails.
    [[nodiscard]] std::optional<FitFigures> Of(int tableId, int fieldId);

  private:
    using Table = std::map<int, FitFigures>; ///< by field

    [[nodiscard]] Table Read(int tableId);

    PrViewer& m_viewer;
    std::map<int, Table> m_tables;
};

} // namespace tavix
