#include "tabs/ui/CDamagedRowsDlg.h"

#include "base/ui/NestedLoop.h"
#include "base/ui/QtText.h"
#include "base/ui/Theme.h"
#include "grid/ui/CUGCtrl.h"
#include "settings/Settings.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QVBoxLayout>

#include <utility>

namespace tavix {

CDamagedRowsDlg::CDamagedRowsDlg(std::unique_ptr<DamageRows> rows, const SettingsStore& settings, QWidget* parent)
    : QDialog(parent), m_rows(std::move(rows)), m_grid(new CUGCtrl(this)) {
    setObjectName(QStringLiteral("damagedRowsDialog"));
    setWindowTitle(tr("Damaged Rows"));
    auto* heading = new QLabel(toQString(m_rows->GetHeading()), this);
    heading->setObjectName(QStringLiteral("heading"));
    // It names a file.
    heading->setTextFormat(Qt::PlainText);
    heading->setTextInteractionFlags(Qt::TextSelectableByMouse);
    heading->setWordWrap(true);
    m_grid->setAccessibleName(windowTitle());
    m_grid->setFont(toQFont(readStatFont(settings), font()));
    m_grid->SetShowsInvisible(readFlag(settings, Setting::ShowInvisible));
    m_grid->setFrameShape(QFrame::StyledPanel);
    m_grid->SetSource(m_rows.get());
    m_grid->SelectRow(0);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->setSpacing(10);
    layout->addWidget(heading);
    layout->addWidget(m_grid, 1);
    layout->addWidget(buttons);
    m_grid->setFocus();
    resize(620, 400);
}

// The grid must not ask for rows that are being destroyed.
CDamagedRowsDlg::~CDamagedRowsDlg() {
    m_grid->SetSource(nullptr);
}

void CDamagedRowsDlg::Show(PrViewer& viewer, const TableIdentity& table, const SettingsStore& settings,
                           Messages& messages, QWidget& over) {
    auto rows = std::make_unique<DamageRows>();
    if (!rows->Fill(viewer, table))
        return messages.warn(rows->GetErrorText());
    ModalDialog<CDamagedRowsDlg>(std::move(rows), settings, &over).exec();
}

} // namespace tavix
