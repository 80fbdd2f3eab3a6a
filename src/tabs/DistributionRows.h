#pragma once

#include "grid/ListRows.h"
#include "report/DistributionShare.h"
#include "report/FieldRecord.h"
#include "tabs/Distribution.h"

namespace tavix {

class PrViewDisplayMessage;
class PrViewer;

/// The rows of a distribution: entries, then "Other", with counts and percentages. Further columns are shown on demand:
/// the share of the other base (of non-null values, of all records) and the cumulative share in the order of counts.
/// "Other" stays last when the rows are sorted by the first column; in any other column it is sorted like every row.
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
    /// The base of the percentages.
    [[nodiscard]] const DistributionShare& GetShare() const { return m_share; }
    /// How many entries are listed, without "Other", and how many "Other" sums.
    [[nodiscard]] std::int64_t GetListed() const { return static_cast<std::int64_t>(m_distribution.entries.size()); }
    [[nodiscard]] std::int64_t GetFolded() const { return m_distribution.other != 0 ? m_distribution.otherEntries : 0; }

  protected:
    /// Columns for count and shares are added after these.
    DistributionRows(DistributionKind kind, const std::vector<GridColumn>& valueColumns);

    /// `emptyText` is the sentence shown when there are no rows.
    void Show(Distribution distribution, const FieldRecord& field, bool isFiltered, std::string_view emptyText);
    void ShowNotCalculated();
    /// The cell of an entry in one of the value columns.
    [[nodiscard]] virtual GridCell EntryCell(int column, std::size_t entry) const = 0;
    [[nodiscard]] const Distribution::Entry& Entry(std::size_t entry) const { return m_distribution.entries[entry]; }

  private:
    void Take(Distribution distribution, const DistributionShare& share, const DistributionShare& otherShare);
    [[nodiscard]] GridCell ShareCell(std::int64_t count, bool hasBar) const;
    [[nodiscard]] GridCell OtherShareCell(std::size_t record, std::int64_t count) const;
    [[nodiscard]] GridCell CellOf(int column, std::size_t record) const final;
    [[nodiscard]] bool IsOtherRecord(std::size_t record) const { return record == m_distribution.entries.size(); }

    Distribution m_distribution;
    DistributionShare m_share;
    DistributionShare m_otherShare;         ///< of the base that the percentages do not have
    std::vector<std::int64_t> m_cumulative; ///< counts of each entry and those before it
    DistributionKind m_kind;
    int m_countColumn;
};

} // namespace tavix
