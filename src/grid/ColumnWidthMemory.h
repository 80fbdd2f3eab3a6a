#pragma once

#include <optional>
#include <string>

namespace tavix {

/// Stores the column widths that the user chose for a grid, by the column's identity.
class ColumnWidthMemory {
  public:
    virtual ~ColumnWidthMemory() = default;
    /// In pixels at 96 dpi; nothing for a column that the user has not resized.
    [[nodiscard]] virtual std::optional<int> Read(const std::string& column) const = 0;
    virtual void Keep(const std::string& column, int width) = 0;
};

} // namespace tavix
