#pragma once

#include "base/SettingsStore.h"
#include "grid/ColumnMemory.h"

#include <string>
#include <utility>

namespace tavix {

/// Stores the user's choices for the columns of one grid in the settings.
class StoredColumns final : public ColumnMemory {
  public:
    /// The store must outlive the object; `grid` is the grid's unique name.
    StoredColumns(SettingsStore& store, std::string grid) : m_store(store), m_grid(std::move(grid)) {}

    [[nodiscard]] std::optional<int> ReadWidth(const std::string& column) const override;
    void KeepWidth(const std::string& column, int width) override;
    [[nodiscard]] std::optional<bool> ReadShown(const std::string& column) const override;
    void KeepShown(const std::string& column, bool shown) override;

  private:
    [[nodiscard]] std::string KeyOf(const std::string& column) const;

    SettingsStore& m_store;
    std::string m_grid;
};

} // namespace tavix
