#include "frame/ui/CRunListDlg.h"

#include "base/ui/NestedLoop.h"
#include "doc/CTavixDoc.h"
#include "frame/ui/CRunTable.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

namespace tavix {

CRunListDlg::CRunListDlg(std::vector<RunInfo> runs, int currentRun, QWidget* parent)
    : QDialog(parent), m_runs(std::move(runs)), m_table(new CRunTable(this)) {
    setWindowTitle(tr("Report Runs"));
    std::sort(m_runs.begin(), m_runs.end(), [](const RunInfo& a, const RunInfo& b) { return a.id > b.id; });
    m_table->setObjectName(QStringLiteral("runs"));
    m_table->setAccessibleName(tr("Runs of the report, newest first"));

    auto* label = new QLabel(tr("Show this &run:"), this);
    label->setBuddy(m_table);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    QPushButton* show = buttons->button(QDialogButtonBox::Ok);
    show->setText(tr("&Show Run"));

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(label);
    layout->addWidget(m_table, 1);
    layout->addSpacing(4);
    layout->addWidget(buttons);

    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_table, &QTreeWidget::itemDoubleClicked, this, &QDialog::accept);
    connect(m_table, &QTreeWidget::itemSelectionChanged, this,
            [this, show] { show->setEnabled(m_table->SelectedRow() >= 0); });

    m_table->SetRuns(m_runs, currentRun);
    show->setEnabled(m_table->SelectedRow() >= 0);
    m_table->setFocus();
    resize(560, 360);
}

int CRunListDlg::SelectedRun() const {
    const int row = m_table->SelectedRow();
    return row < 0 ? -1 : m_runs[static_cast<std::size_t>(row)].id;
}

std::optional<int> CRunListDlg::Choose(const CTavixDoc& doc, QWidget* parent) {
    auto runs = doc.GetRuns();
    if (!runs)
        return std::nullopt;
    ModalDialog<CRunListDlg> dialog(std::move(*runs), doc.GetCurrentJob(), parent);
    if (!dialog.isAccepted() || dialog->SelectedRun() == -1)
        return std::nullopt;
    return dialog->SelectedRun();
}

} // namespace tavix
