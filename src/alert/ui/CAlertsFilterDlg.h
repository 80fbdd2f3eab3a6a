#pragma once

#include "alert/CAlertsFilter.h"

#include <QDialog>

#include <array>

class QComboBox;
class QPushButton;

namespace tavix {

/// Asks which alerts are listed.
class CAlertsFilterDlg final : public QDialog {
    Q_OBJECT
  public:
    /// Offers the values that the alerts have, and those of `filter`.
    CAlertsFilterDlg(const std::vector<AlertState>& alerts, const CAlertsFilter& filter, QWidget* parent);

    [[nodiscard]] CAlertsFilter Filter() const;

  private:
    void Offer(CAlertsFilter::Criterion criterion, const std::vector<AlertState>& alerts, const std::string& chosen);
    void ShowReset();

    std::array<QComboBox*, CAlertsFilter::kCriteria> m_choices{};
    QPushButton* m_reset;
};

} // namespace tavix
