#pragma once

#include "tabs/DistributionRows.h"

namespace tavix {

/// How often each character pattern occurs in the values of a field.
class PatternDistRows final : public DistributionRows {
  public:
    PatternDistRows();

    bool Fill(PrViewer& viewer, const FieldRecord& field, const KvbString& filter, std::int64_t limit,
              PrViewDisplayMessage* sink = nullptr) override;

  private:
    [[nodiscard]] GridCell EntryCell(int column, std::size_t entry) const override;

    std::vector<std::string> m_alternates; ///< the short forms, by entry
};

} // namespace tavix
