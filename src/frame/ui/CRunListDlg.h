#pragma once

#include "report/RunInfo.h"

#include <QDialog>

#include <optional>
#include <vector>

namespace tavix {

class CRunTable;
class CTavixDoc;

/// Lets the user choose one of the report's runs.
class CRunListDlg final : public QDialog {
    Q_OBJECT

  public:
    CRunListDlg(std::vector<RunInfo> runs, int currentRun, QWidget* parent = nullptr);

    /// -1 when none is selected.
    [[nodiscard]] int SelectedRun() const;

    /// The chosen run; nothing when the dialog was cancelled or the runs cannot be read.
    [[nodiscard]] static std::optional<int> Choose(const CTavixDoc& doc, QWidget* parent);

  private:
    std::vector<RunInfo> m_runs;
    CRunTable* m_table;
};

} // namespace tavix
