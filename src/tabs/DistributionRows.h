#pragma once

#include "report/DistributionShare.h"
#include "report/FieldRecord.h"
#include "tabs/Distribution.h"
#include "tabs/ListRows.h"

namespace tavix {

class PrViewDisplayMessage;
class PrViewer;

/// The rows of a distribution: entries, then "Other", with counts and percentages. "Other" stays last when the rows are
/// sorted by the first column; in any other column it is sorted like every row.
class DistributionRows : public ListRows {
  public:
    /// The first `limit` rows, at least 1, of those that pass the filter text; all pass an empty one. False when the
    /// repository fails: the rows are then unchanged, and GetErrorText() is the message.
    virtual bool Fill(PrViewer& viewer, const FieldRecord& field, const KvbString& filter, std::int64_t limit,
                      PrViewDisplayMessage* sink = nullptr) = 0;
    void Clear() override;
    /// Removes all rows and says that the reading was stopped.
    void ShowStopped();

    /// Whether this is the row that sums the entries beyond the limit.
    [[nodiscard]] bool IsOther(std::int64_t row) const;
    /// The row's value or pattern, which may be null; null for "Other" and for a placeholder.
    [[nodiscard]] KvbString GetValue(std::int64_t row) const;
    /// The current index of the "Other" row; -1 without one.
    [[nodiscard]] std::int64_t GetOtherRow() const;
    /// About rows for which the filter could not be evaluated; "" if there are none.
    [[nodiscard]] const std::string& GetWarning() const { return m_distribution.warning; }

  protected:
    /// Columns for count and percentage are added after these.
    explicit DistributionRows(const std::vector<GridColumn>& valueColumns);

    /// `emptyText` is the sentence shown when there are no rows.
    void Show(Distribution distribution, DistributionKind kind, bool isFiltered, std::string_view emptyText);
    void ShowNotCalculated();
    /// The cell of an entry in one of the value columns.
    [[nodiscard]] virtual GridCell EntryCell(int column, std::size_t entry) const = 0;
    [[nodiscard]] const Distribution::Entry& Entry(std::size_t entry) const { return m_distribution.entries[entry]; }

  private:
    void Take(Distribution distribution, const DistributionShare& share);
    [[nodiscard]] GridCell CellOf(int column, std::size_t record) const final;
    [[nodiscard]] bool IsOtherRecord(std::size_t record) const { return record == m_distribution.entries.size(); }

    Distribution m_distribution;
    DistributionShare m_share;
    int m_countColumn;
};

} // namespace tavix
