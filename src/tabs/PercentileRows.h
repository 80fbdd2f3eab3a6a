#pragma once

#include "grid/ListRows.h"
#include "report/FieldRecord.h"

namespace tavix {

class PrViewer;

/// The percentiles of one field.
class PercentileRows final : public ListRows {
  public:
    PercentileRows();

    /// False when the repository fails: the rows are then unchanged, and GetErrorText() is the message.
    bool Fill(PrViewer& viewer, const FieldRecord& field);
    void Clear() override;
    /// The values that take part, and the rule by which the percentiles were computed.
    [[nodiscard]] ListBase GetBase() const override;

  private:
    struct Percentile {
        std::string interval;
        KvbString value;
    };

    [[nodiscard]] GridCell CellOf(int column, std::size_t record) const override;

    std::vector<Percentile> m_percentiles;
    ListBase m_base;
};

} // namespace tavix
