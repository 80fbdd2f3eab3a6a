#pragma once

#include "report/DistributionShare.h"
#include "report/FieldRecord.h"
#include "tabs/Distribution.h"
#include "tabs/ListRows.h"

namespace tavix {

class PrViewer;

/// The rows of a distribution: entries, then "Other", with counts and their share of the total. "Other" stays last
/// when the rows are sorted by the first column, and takes part in every other order.
class DistributionRows : public ListRows {
  public:
    void Clear() override;
    /// No rows, because the reading was stopped before its end.
    void ShowStopped();

    /// The row that sums what is not shown.
    [[nodiscard]] bool IsOther(std::int64_t row) const;
    /// What an ordinary row stands for, null included; null for "Other" and for a placeholder.
    [[nodiscard]] KvbString GetValue(std::int64_t row) const;
    /// Where the "Other" row stands now; -1 without one.
    [[nodiscard]] std::int64_t GetOtherRow() const;
    /// What the percentages are a share of.
    [[nodiscard]] std::int64_t GetTotal() const { return m_share.Total(); }
    /// Of rows for which the filter could not be evaluated; "" without.
    [[nodiscard]] const std::string& GetWarning() const { return m_distribution.warning; }

  protected:
    /// The count's column, after those of the value; the percentage follows it.
    explicit DistributionRows(const std::vector<GridColumn>& valueColumns);

    /// `emptyText` says why there are no rows when there are none.
    void Show(Distribution distribution, DistributionKind kind, bool isFiltered, std::string_view emptyText);
    void ShowNotCalculated();
    /// The cell of an entry in a column before the count's.
    [[nodiscard]] virtual GridCell EntryCell(int column, std::size_t entry) const = 0;
    [[nodiscard]] const Distribution::Entry& Entry(std::size_t entry) const { return m_distribution.entries[entry]; }

  private:
    void Take(Distribution distribution, const DistributionShare& share);
    [[nodiscard]] GridCell CellOf(int column, std::size_t record) const final;
    [[nodiscard]] bool IsOtherRecord(std::size_t record) const { return record == m_distribution.entries.size(); }

    Distribution m_distribution;
    DistributionShare m_share;
    std::int64_t m_largest = 0; ///< count of the most frequent entry
    int m_countColumn;
};

} // namespace tavix
