#pragma once

#include "tabs/ListRows.h"

namespace tavix {

class PrViewer;

/// The stored key analyses of one field: the fields that its values were looked for in, and how many were found.
class PkFkRows final : public ListRows {
  public:
    PkFkRows();

    /// False when the repository fails: the rows are then as before, and GetErrorText() is the message.
    bool Fill(PrViewer& viewer, int fieldId);
    void Clear() override;

    [[nodiscard]] int GetOtherFieldId(std::int64_t row) const { return m_analyses.at(Record(row)).otherFieldId; }
    [[nodiscard]] const std::string& GetFieldName(std::int64_t row) const {
        return m_analyses.at(Record(row)).names[0];
    }

  private:
    struct Analysis {
        int otherFieldId = -1;
        std::vector<std::string> names; ///< by column
        double matchPercent = 0;
    };

    [[nodiscard]] GridCell CellOf(int column, std::size_t record) const override;

    std::vector<Analysis> m_analyses;
};

} // namespace tavix
