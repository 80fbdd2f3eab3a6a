#pragma once

#include "tabs/DistributionRows.h"

namespace tavix {

class PrViewDisplayMessage;

/// How often each character pattern occurs among the values of a field.
class PatternDistRows final : public DistributionRows {
  public:
    PatternDistRows();

    /// The first `limit` rows, at least 1, of those that the filter text lets pass; empty lets all pass. False when the
    /// repository fails: the rows are then as before, and GetErrorText() is the message.
    bool Fill(PrViewer& viewer, int fieldId, const KvbString& filter, std::int64_t limit,
              PrViewDisplayMessage* sink = nullptr);

  private:
    [[nodiscard]] GridCell EntryCell(int column, std::size_t entry) const override;

    std::vector<std::string> m_alternates; ///< the short forms, by entry
};

} // namespace tavix
