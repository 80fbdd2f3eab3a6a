#pragma once

#include "base/SettingsStore.h"
#include "grid/ColumnWidthMemory.h"

#include <string>
#include <utility>

namespace tavix {

/// Column widths of one grid, kept among the settings from one start to the next.
class StoredColumnWidths final : public ColumnWidthMemory {
  public:
    /// The store must outlive this; `grid` names the grid among all others.
    StoredColumnWidths(SettingsStore& store, std::string grid) : m_store(store), m_grid(std::move(grid)) {}

    [[nodiscard]] std::optional<int> Read(const std::string& column) const override;
    void Keep(const std::string& column, int width) override;

  private:
    [[nodiscard]] std::string KeyOf(const std::string& column) const;

    SettingsStore& m_store;
    std::string m_grid;
};

} // namespace tavix
