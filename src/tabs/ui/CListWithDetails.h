#pragma once

#include "tabs/ui/CListTab.h"

#include <vector>

namespace tavix {

class LowerLists;

/// A list with further lists below it that show details of its current row. A derived class makes the rows of all lists
/// and fills them.
class CListWithDetails : public CListTab {
    Q_OBJECT
  public:
    ~CListWithDetails() override;

  protected:
    /// `details` are the headings of the lists below, also read by screen readers.
    CListWithDetails(const char* name, const std::vector<const char*>& details, CViewSite& site,
                     const ReportSubject& subject, bool isTornOff, QWidget* parent);

    /// Takes ownership of the rows of the next list below, from the left; the reference is valid as long as the tab.
    template <typename Rows>
    Rows& ShowBelow(std::unique_ptr<Rows> rows) {
        Rows& kept = *rows;
        TakeDetails(std::move(rows));
        return kept;
    }
    [[nodiscard]] LowerLists& Lower() const { return *m_lower; }

    /// Also when runs were deleted, which the lists below may show, or alerts changed, which mark the list.
    [[nodiscard]] bool RefillsOn(RefreshHint hint) const override;

    /// Fills the lists below for a row of the list.
    virtual void FillDetails(PrViewer& viewer, std::int64_t row) = 0;
    /// Called when there is no current row and the lists below are empty.
    virtual void NoDetails() {}

  private:
    void RowsChanged() final;
    void TakeDetails(std::unique_ptr<ListRows> rows);
    void ShowDetails(std::int64_t row);

    LowerLists* m_lower;
    std::vector<std::unique_ptr<ListRows>> m_details; ///< in the order of the lists
};

} // namespace tavix
