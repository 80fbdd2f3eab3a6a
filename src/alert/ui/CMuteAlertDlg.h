#pragma once

#include "alert/MuteDraft.h"
#include "report/AlertStates.h"

#include <QDialog>

#include <functional>
#include <vector>

class QCheckBox;
class QDateEdit;
class QLabel;
class QPlainTextEdit;
class QPushButton;
class QSpinBox;

namespace tavix {

/// Asks why and for how long alerts are muted; the reason is required. Stays open while `store` refuses the mute.
class CMuteAlertDlg final : public QDialog {
    Q_OBJECT
  public:
    /// `alerts` has at least one; a mute of the only one is shown. `runStart` is that of the run that is shown. `store`
    /// tells the user itself why it returns false.
    CMuteAlertDlg(const std::vector<AlertState>& alerts, LibraryDate runStart,
                  std::function<bool(const MuteDraft&)> store, QWidget* parent);

    void accept() override;

  private:
    void LayOut(const QString& heading);
    [[nodiscard]] MuteDraft Draft() const;
    void ShowExtent();

    LibraryDate m_runStart;
    std::function<bool(const MuteDraft&)> m_store;
    QPlainTextEdit* m_reason;
    QCheckBox* m_forRuns;
    QSpinBox* m_runs;
    QCheckBox* m_untilDate;
    QDateEdit* m_date;
    QLabel* m_extent;
    QPushButton* m_mute = nullptr;
};

} // namespace tavix
