#pragma once

#include "doc/CommandTarget.h"
#include "tabs/ui/CReportView.h"

#include <span>

namespace tavix {

/// The tabs of a field.
class CFieldView final : public CReportView {
    Q_OBJECT
  public:
    enum Tab { ColumnProfiling, Frequency, Patterns, Percentiles, Outliers, KeyAnalysis, Notes, Changes };

    /// The site must outlive the view.
    CFieldView(CViewSite& site, bool isTornOff, QWidget* parent = nullptr);

    /// 1 if the field was added; 0 without a field or, after a message, if it could not be added.
    int AddToCollection(int collectionId);

    bool ExecuteCommand(int commandId) override;
    CommandState UpdateCommand(int commandId) const override;
    [[nodiscard]] static std::span<const CommandRow<CFieldView>> CommandRows();

    void OnAddNote();
    [[nodiscard]] bool CanAddNote() const;
    void OnDetach();
    [[nodiscard]] bool CanDetach() const { return !IsTornOff(); }
};

} // namespace tavix
