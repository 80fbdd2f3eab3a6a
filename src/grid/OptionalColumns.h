#pragma once

#include "grid/CUGDataSource.h"
#include "grid/ColumnMemory.h"

#include <map>
#include <string>
#include <vector>

namespace tavix {

/// Which columns of a grid are shown: all but the optional ones that the user has hidden, or that are hidden until the
/// user shows them.
class OptionalColumns {
  public:
    /// Where choices are stored; null to keep them as long as this object. Must outlive this or be taken back.
    void SetMemory(ColumnMemory* memory);

    [[nodiscard]] bool IsShown(const GridColumn& column) const;
    void Choose(const GridColumn& column, bool shown);

    /// In ascending order.
    [[nodiscard]] std::vector<int> ShownColumns(const CUGDataSource& source) const;
    /// The columns that the user may show and hide.
    [[nodiscard]] static std::vector<int> Optional(const CUGDataSource& source);

  private:
    ColumnMemory* m_memory = nullptr;
    std::map<std::string, bool> m_chosen; ///< by identity
};

} // namespace tavix
