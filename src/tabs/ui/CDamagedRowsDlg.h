#pragma once

#include "base/Messages.h"
#include "base/SettingsStore.h"
#include "report/ReportSelection.h"
#include "tabs/DamageRows.h"

#include <QDialog>

namespace tavix {

class CUGCtrl;
class PrViewer;

/// Lists the damaged rows of a table.
class CDamagedRowsDlg final : public QDialog {
    Q_OBJECT
  public:
    CDamagedRowsDlg(std::unique_ptr<DamageRows> rows, const SettingsStore& settings, QWidget* parent);
    ~CDamagedRowsDlg() override;

    /// Shows the dialog, modal; a message when the rows cannot be read.
    static void Show(PrViewer& viewer, const TableIdentity& table, const SettingsStore& settings, Messages& messages,
                     QWidget& over);

  private:
    std::unique_ptr<DamageRows> m_rows;
    CUGCtrl* m_grid;
};

} // namespace tavix
