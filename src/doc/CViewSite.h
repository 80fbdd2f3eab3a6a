#pragma once

#include "doc/CRefreshItem.h"
#include "doc/NavigateRequest.h"
#include "report/ReportSelection.h"

#include <string>

class QWidget;

namespace tavix {

class CTavixDoc;

/// The interface of the frame to its panes: a pane depends neither on the frame nor on the other panes.
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
    /// Set while a loaded report is being broadcast: a pane must wait for its own refresh before it fills itself.
    [[nodiscard]] virtual bool IsLoading() const = 0;
    [[nodiscard]] virtual NavigatorPage GetMode() const = 0;
    [[nodiscard]] virtual const ReportSelection& GetSelection() const = 0;
    /// Called when the navigator has another selection or shows another page.
    virtual void SelectionChanged(NavigatorPage page, const ReportSelection& selection) = 0;
    /// Selects a field of the selected table or collection; false when it has none of that id.
    virtual bool SelectField(int fieldId) = 0;
    /// Selects a field of that table or collection and brings the frame to the front; false without such a field.
    virtual bool OpenField(const ReportSelection& owner, int fieldId) = 0;
    /// Shows a metric or rule of a table; false, without a message, when there is no such table. Report and run are
    /// opened first where the request names others; false, after a message, when that fails.
    virtual bool Navigate(const NavigateRequest& request) = 0;
    /// The details of the table or field as text; "" for any other selection or when they cannot be read.
    [[nodiscard]] virtual std::string GetDetailsText(const ReportSelection& selection) = 0;
    /// Shows a message once the current event is handled. Of several only the first is shown, so a caller must also say
    /// in its own pane what is missing.
    virtual void WarnSoon(const std::string& text) = 0;
    /// Refreshes every pane but the sender.
    virtual void Broadcast(CRefreshItem* sender, RefreshHint hint, int parameter) = 0;
};

} // namespace tavix
