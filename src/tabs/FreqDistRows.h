#pragma once

#include "tabs/DistributionRows.h"

namespace tavix {

/// How often each value of a field occurs.
class FreqDistRows final : public DistributionRows {
  public:
    FreqDistRows();

    bool Fill(PrViewer& viewer, const FieldRecord& field, const KvbString& filter, std::int64_t limit,
              PrViewDisplayMessage* sink = nullptr) override;

  private:
    [[nodiscard]] GridCell EntryCell(int column, std::size_t entry) const override;
};

} // namespace tavix
