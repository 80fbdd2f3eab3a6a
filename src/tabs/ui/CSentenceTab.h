#pragma once

#include "tabs/ui/CProfTab.h"

#include <string_view>

namespace tavix {

/// A tab that has nothing to list and says why.
class CSentenceTab : public CProfTab {
    Q_OBJECT
  public:
    QWidget* GetLastTabStop() override { return nullptr; }

  protected:
    CSentenceTab(std::string_view sentence, CViewSite& site, const ReportSubject& subject, bool isTornOff,
                 QWidget* parent);

    [[nodiscard]] bool RefillsOn(RefreshHint) const override { return false; }
    void Fill(bool) override {}
};

} // namespace tavix
