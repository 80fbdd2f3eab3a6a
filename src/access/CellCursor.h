#pragma once

#include "access/ProfileCursor.h"
#include "base/KvbDatavar.h"

namespace tavix {

/// A cursor whose getters convert the cells that a derived class gives.
class CellCursor : public ProfileCursor {
  public:
    [[nodiscard]] KvbString getColumnValue(int column) const override;
    [[nodiscard]] int getColumnInt(int column) const final;
    [[nodiscard]] std::int64_t getColumnInt64(int column) const final;
    [[nodiscard]] double getColumnDouble(int column) const final;
    [[nodiscard]] bool isColumnValid(int column) const override;

  protected:
    /// A cell of the current row; called only when isColumnNull(column) is false.
    [[nodiscard]] virtual KvbDatavar cell(int column) const = 0;
};

} // namespace tavix
