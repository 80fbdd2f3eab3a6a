#pragma once

#include "doc/CTavixDoc.h"
#include "doc/CViewSite.h"

#include <string>
#include <vector>

namespace tavix::testing {

/// The frame around a pane under test: records the pane's calls and passes broadcasts on to the listeners.
class TestSite final : public CViewSite, public DocumentFrame {
  public:
    /// Both must outlive the site.
    TestSite(SettingsStore& settings, Messages& messages) : document(*this, settings, messages) {}

    CTavixDoc& GetTavixDoc() override { return document; }
    [[nodiscard]] int GetPatienceMilliseconds() const override { return patienceMilliseconds; }
    [[nodiscard]] bool IsLoading() const override { return false; }
    [[nodiscard]] NavigatorPage GetMode() const override { return mode; }
    [[nodiscard]] const ReportSelection& GetSelection() const override { return selection; }
    void SelectionChanged(NavigatorPage page, const ReportSelection& now) override {
        mode = page;
        selection = now;
    }
    bool SelectField(int fieldId) override {
        selectedFields.push_back(fieldId);
        return false;
    }
    bool Navigate(const NavigateRequest&) override { return false; }
    bool OpenField(const ReportSelection&, int) override { return false; }
    void WarnSoon(const std::string& text) override { document.GetMessages().warn(text); }
    [[nodiscard]] std::string GetDetailsText(const ReportSelection&) override { return {}; }
    void Broadcast(CRefreshItem* sender, RefreshHint hint, int parameter) override {
        sent.push_back(hint);
        document.Notice(hint);
        for (CRefreshItem* item : listeners)
            item->Refresh(sender, hint, parameter);
    }
    void SetLoading(bool) override {}
    void Broadcast(RefreshHint hint) override { Broadcast(nullptr, hint, 0); }

    std::vector<CRefreshItem*> listeners;
    std::vector<RefreshHint> sent;
    std::vector<int> selectedFields;
    NavigatorPage mode = NavigatorPage::Tables;
    ReportSelection selection;
    int patienceMilliseconds = kPatienceMilliseconds;
    CTavixDoc document;
};

} // namespace tavix::testing
