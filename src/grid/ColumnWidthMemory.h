#pragma once

#include <optional>
#include <string>

namespace tavix {

/// Keeps the widths that the user dragged for a grid, by the identity of the column.
class ColumnWidthMemory {
  public:
    virtual ~ColumnWidthMemory() = default;
    /// In pixels at 96 dpi; nothing for a column that the user left alone.
    [[nodiscard]] virtual std::optional<int> Read(const std::string& column) const = 0;
    virtual void Keep(const std::string& column, int width) = 0;
};

} // namespace tavix
