#pragma once

#include "base/SettingsStore.h"
#include "grid/ColumnWidthMemory.h"

#include <string>
#include <utility>

namespace tavix {

/// Stores the column widths of one grid in the settings.
class StoredColumnWidths final : public ColumnWidthMemory {
  public:
    /// The store must outlive the object; `grid` is the grid's unique name.
    StoredColumnWidths(SettingsStore& store, std::string grid) : m_store(store), m_grid(std::move(grid)) {}

    [[nodiscard]] std::optional<int> Read(const std::string& column) const override;
    void Keep(const std::string& column, int width) override;

  private:
    [[nodiscard]] std::string KeyOf(const std::string& column) const;

    SettingsStore& m_store;
    std::string m_grid;
};

} // namespace tavix
