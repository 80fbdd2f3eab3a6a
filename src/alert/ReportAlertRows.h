#pragma once

#include "alert/AlertRows.h"
#include "alert/CAlertsFilter.h"
#include "base/LibraryDate.h"

#include <string>
#include <vector>

namespace tavix {

/// The alerts of a repository that pass a filter and hold a text.
class ReportAlertRows final : public AlertRows {
  public:
    explicit ReportAlertRows(const std::locale& locale = userLocale());

    /// False when the repository fails: the rows are then those that were read so far, perhaps not judged, and
    /// GetErrorText() is the message.
    bool Fill(PrViewer& viewer);
    void SetFilter(CAlertsFilter filter);
    [[nodiscard]] const CAlertsFilter& GetFilter() const { return m_filter; }
    /// Lists only alerts with this text in a column that is shown at first or can be, ignoring case; "" removes it.
    void SetSearch(std::string text);
    /// Listed or not.
    [[nodiscard]] const std::vector<AlertState>& GetAll() const { return Alerts(); }
    [[nodiscard]] std::string GetFilterText() const { return m_filter.Text(); }
    /// "12 of 340 alerts · 2 errors, 1 warning".
    [[nodiscard]] std::string GetCountText() const;

  private:
    void List();
    void ReadTexts();

    CAlertsFilter m_filter;
    std::string m_search;
    std::vector<std::string> m_texts; ///< of each alert, to be searched; empty until there is a search
};

} // namespace tavix
