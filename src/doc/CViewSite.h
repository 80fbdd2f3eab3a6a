#pragma once

#include "doc/CRefreshItem.h"
#include "doc/ReportSelection.h"

namespace tavix {

class CTavixDoc;

/// The frame as its panes see it, so that panes know neither the frame nor each other.
class CViewSite {
  public:
    virtual ~CViewSite() = default;

    [[nodiscard]] virtual CTavixDoc& GetTavixDoc() = 0;
    /// While set, a report is being broadcast: panes fill themselves when they are refreshed and not before.
    [[nodiscard]] virtual bool IsLoading() const = 0;
    [[nodiscard]] virtual NavigatorPage GetMode() const = 0;
    [[nodiscard]] virtual const ReportSelection& GetSelection() const = 0;
    /// The navigator has another selection or shows another page.
    virtual void SelectionChanged(NavigatorPage page, const ReportSelection& selection) = 0;
    /// Tells every pane but the sender.
    virtual void Broadcast(CRefreshItem* sender, RefreshHint hint, int parameter) = 0;
};

} // namespace tavix
