#pragma once

#include "doc/CReportPane.h"

#include <QWidget>

class QLabel;

namespace tavix {

/// Fills the report pane while nothing with metrics is selected, and says what the user can do.
class CEmptyView final : public QWidget, public CReportPane {
    Q_OBJECT
  public:
    explicit CEmptyView(QWidget* parent = nullptr);

    void SetText(const QString& title, const QString& advice);
    void Refresh(CRefreshItem*, RefreshHint, int) override {}
    QWidget* GetLastTabStop() override { return nullptr; }

  protected:
    void changeEvent(QEvent* event) override;

  private:
    void ApplyColors();

    QLabel* m_title;
    QLabel* m_advice;
};

} // namespace tavix
