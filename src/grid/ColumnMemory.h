#pragma once

#include <optional>
#include <string>

namespace tavix {

/// Stores what the user chose for the columns of a grid, by the column's identity.
class ColumnMemory {
  public:
    virtual ~ColumnMemory() = default;
    /// In pixels at 96 dpi; nothing for a column that the user has not resized.
    [[nodiscard]] virtual std::optional<int> ReadWidth(const std::string& column) const = 0;
    virtual void KeepWidth(const std::string& column, int width) = 0;
    /// Whether an optional column is shown; nothing until the user has chosen.
    [[nodiscard]] virtual std::optional<bool> ReadShown(const std::string& column) const = 0;
    virtual void KeepShown(const std::string& column, bool shown) = 0;
};

} // namespace tavix
