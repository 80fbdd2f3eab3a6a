#pragma once

#include "report/FieldRecord.h"
#include "tabs/ListRows.h"

namespace tavix {

class PrViewer;

/// The percentiles of one field.
class PercentileRows final : public ListRows {
  public:
    PercentileRows();

    /// False when the repository fails: the rows are then as before, and GetErrorText() is the message.
    bool Fill(PrViewer& viewer, const FieldRecord& field);
    void Clear() override;

    /// Null for a percentile without a value. Only of a row that is no placeholder.
    [[nodiscard]] const KvbString& GetValue(std::int64_t row) const { return m_percentiles.at(Record(row)).value; }

  private:
    struct Percentile {
        std::string interval;
        KvbString value;
    };

    [[nodiscard]] GridCell CellOf(int column, std::size_t record) const override;

    std::vector<Percentile> m_percentiles;
};

} // namespace tavix
