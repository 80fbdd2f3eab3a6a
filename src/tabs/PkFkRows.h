#pragma once

#include "grid/ListRows.h"

namespace tavix {

class PrViewer;

/// The stored key analyses of one field: the other fields and the percentage of this field's values found in them.
class PkFkRows final : public ListRows {
  public:
    PkFkRows();

    /// False when the repository fails: the rows are then unchanged, and GetErrorText() is the message.
    bool Fill(PrViewer& viewer, int fieldId);
    void Clear() override;

  private:
    struct Analysis {
        std::vector<std::string> names; ///< by column
        double matchPercent = 0;
    };

    [[nodiscard]] GridCell CellOf(int column, std::size_t record) const override;

    std::vector<Analysis> m_analyses;
};

} // namespace tavix
