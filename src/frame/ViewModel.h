#pragma once

#include "doc/ItemCode.h"
#include "report/ReportSelection.h"

#include <optional>
#include <string_view>

namespace tavix {

class PrViewer;

/// What the report pane says when it has nothing to show.
struct EmptyPaneText {
    std::string_view title;
    std::string_view advice;

    bool operator==(const EmptyPaneText&) const = default;
};

/// The main view without its window: what is selected, and what the report pane shows for it.
class ViewModel {
  public:
    void Select(NavigatorPage page, const ReportSelection& selection);
    [[nodiscard]] NavigatorPage GetPage() const { return m_page; }
    [[nodiscard]] const ReportSelection& GetSelection() const { return m_selection; }

    /// Table for a table or collection, Field for one of their fields, else Empty.
    [[nodiscard]] ReportPaneKind GetPaneKind() const;
    /// `isPageEmpty`: the navigator page lists nothing.
    [[nodiscard]] EmptyPaneText GetEmptyText(bool hasReport, bool isPageEmpty) const;
    [[nodiscard]] bool CanToggleTableInformation() const { return m_page != NavigatorPage::Collections; }
    [[nodiscard]] bool CanRefreshCollections() const { return m_page == NavigatorPage::Collections; }

  private:
    NavigatorPage m_page = NavigatorPage::Tables;
    ReportSelection m_selection;
};

/// The number by which the library knows a kind of data source: 0 for "ODBC", 4 for "KVTK", nothing for other texts.
[[nodiscard]] std::optional<int> dataSourceMode(std::string_view connectionType);

/// Whether the current run has a table. False when the tables cannot be read.
[[nodiscard]] bool hasTables(PrViewer& viewer);

} // namespace tavix
