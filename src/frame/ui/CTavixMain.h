#pragma once

#include "alert/CAlertsFilter.h"
#include "doc/CommandTarget.h"

namespace tavix {

class CTavixView;

/// Where commands enter the viewer, and the handlers of those that concern the whole report. Owned by the view.
class CTavixMain {
  public:
    explicit CTavixMain(CTavixView& view) : m_view(view) {}

    /// Whether the viewer handles the command. One that is disabled counts as handled and does nothing.
    bool Execute(int commandId);
    [[nodiscard]] CommandState Update(int commandId) const;

    void OnOptions();
    void OnDeleteHistory();
    void OnAlerts();
    void OnNoteCategories();
    [[nodiscard]] bool CanDeleteHistory() const;
    [[nodiscard]] bool HasTitle() const;
    /// Whether export and print have a tab to act on.
    [[nodiscard]] bool HasCurrentItem() const;

  private:
    CTavixView& m_view;
    CAlertsFilter m_alertsFilter; ///< kept until the view is closed
};

} // namespace tavix
