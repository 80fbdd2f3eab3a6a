#pragma once

#include "report/RunInfo.h"

#include <QDialog>

#include <optional>
#include <vector>

class QLabel;
class QLineEdit;

namespace tavix {

class CRunTable;
class CTavixDoc;

/// Lets the user choose one of the report's runs. Typing filters the list, and the arrow keys move in it meanwhile.
class CRunListDlg final : public QDialog {
    Q_OBJECT

  public:
    CRunListDlg(std::vector<RunInfo> runs, int currentRun, QWidget* parent = nullptr);

    /// -1 when none is selected.
    [[nodiscard]] int SelectedRun() const;

    /// The chosen run; nothing when the dialog was cancelled or the runs cannot be read.
    [[nodiscard]] static std::optional<int> Choose(const CTavixDoc& doc, QWidget* parent);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void Filter();

    std::vector<RunInfo> m_runs;
    QLineEdit* m_search;
    QLabel* m_count;
    CRunTable* m_table;
};

} // namespace tavix
