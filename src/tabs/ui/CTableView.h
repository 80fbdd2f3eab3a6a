#pragma once

#include "doc/CommandTarget.h"
#include "tabs/ui/CReportView.h"

#include <span>

namespace tavix {

/// The tabs of a table, or of a collection.
class CTableView final : public CReportView {
    Q_OBJECT
  public:
    enum Tab { StandardMetrics, CustomMetrics, BusinessRules, Alerts, Visualizations, Notes, Changes };

    /// The site must outlive the view.
    CTableView(CViewSite& site, bool isTornOff, QWidget* parent = nullptr);

    /// Opens the standard metrics at that field and metric.
    void OpenStandardMetric(int fieldId, int metricId);
    /// Opens the custom metrics, or the business rules, at that one.
    void OpenCustomMetric(int metricId);
    void OpenBusinessRule(int ruleId);

    bool ExecuteCommand(int commandId) override;
    CommandState UpdateCommand(int commandId) const override;
    [[nodiscard]] static std::span<const CommandRow<CTableView>> CommandRows();

    void OnAddNote();
    [[nodiscard]] bool CanAddNote() const;
    void OnDetach();
    [[nodiscard]] bool CanDetach() const { return !IsTornOff(); }
};

} // namespace tavix
