#pragma once

#include "doc/CRefreshItem.h"
#include "doc/NavigateRequest.h"
#include "report/ReportSelection.h"

#include <string>

class QWidget;

namespace tavix {

class CTavixDoc;

/// The frame as its panes see it, so that panes know neither the frame nor each other.
class CViewSite {
  public:
    static constexpr int kPatienceMilliseconds = 400;

    virtual ~CViewSite() = default;

    [[nodiscard]] virtual CTavixDoc& GetTavixDoc() = 0;
    /// The parent of windows that outlive the pane that opens them: they close with the frame. Null when the frame has
    /// no widget.
    [[nodiscard]] virtual QWidget* GetWindowOwner() { return nullptr; }
    /// How long a reading may take before a dialog shows its progress.
    [[nodiscard]] virtual int GetPatienceMilliseconds() const { return kPatienceMilliseconds; }
    /// While set, a report is being broadcast: panes fill themselves when they are refreshed and not before.
    [[nodiscard]] virtual bool IsLoading() const = 0;
    [[nodiscard]] virtual NavigatorPage GetMode() const = 0;
    [[nodiscard]] virtual const ReportSelection& GetSelection() const = 0;
    /// The navigator has another selection or shows another page.
    virtual void SelectionChanged(NavigatorPage page, const ReportSelection& selection) = 0;
    /// Selects a field of the selected table or collection; false when it has none of that id.
    virtual bool SelectField(int fieldId) = 0;
    /// Selects a field of that table or collection and brings the frame to the front; false without such a field.
    virtual bool OpenField(const ReportSelection& owner, int fieldId) = 0;
    /// Goes to a figure of a table; false, without a message, when there is no such table.
    virtual bool Navigate(const NavigateRequest& request) = 0;
    /// What is known about the table or field, for a dialog; "" when it is neither or cannot be read.
    [[nodiscard]] virtual std::string GetDetailsText(const ReportSelection& selection) = 0;
    /// Shows a message as soon as what is going on is over. Of several that come up meanwhile the first one is shown:
    /// who calls this says in its own place what it lacks.
    virtual void WarnSoon(const std::string& text) = 0;
    /// Tells every pane but the sender.
    virtual void Broadcast(CRefreshItem* sender, RefreshHint hint, int parameter) = 0;
};

} // namespace tavix
