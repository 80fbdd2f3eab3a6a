#include "frame/ui/CRunListDlg.h"

#include "base/ui/NestedLoop.h"
#include "base/ui/QtText.h"
#include "doc/CTavixDoc.h"
#include "frame/ui/CRunTable.h"
#include "report/CountText.h"

#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

namespace tavix {

CRunListDlg::CRunListDlg(std::vector<RunInfo> runs, int currentRun, QWidget* parent)
    : QDialog(parent),
      m_runs(std::move(runs)),
      m_search(new QLineEdit(this)),
      m_count(new QLabel(this)),
      m_table(new CRunTable(this)) {
    setWindowTitle(tr("Report Runs"));
    m_search->setObjectName(QStringLiteral("search"));
    m_search->setPlaceholderText(tr("Number, date or description"));
    m_search->setClearButtonEnabled(true);
    m_search->installEventFilter(this);
    m_count->setObjectName(QStringLiteral("count"));
    auto* find = new QLabel(tr("&Find:"), this);
    find->setBuddy(m_search);
    std::sort(m_runs.begin(), m_runs.end(), [](const RunInfo& a, const RunInfo& b) { return a.id > b.id; });
    m_table->setObjectName(QStringLiteral("runs"));
    m_table->setAccessibleName(tr("Runs of the report, newest first"));

    auto* label = new QLabel(tr("Show this &run:"), this);
    label->setBuddy(m_table);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    QPushButton* show = buttons->button(QDialogButtonBox::Ok);
    show->setText(tr("&Show Run"));

    auto* searchLine = new QHBoxLayout;
    searchLine->addWidget(find);
    searchLine->addWidget(m_search, 1);
    searchLine->addWidget(m_count);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(searchLine);
    layout->addWidget(label);
    layout->addWidget(m_table, 1);
    layout->addSpacing(4);
    layout->addWidget(buttons);

    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_table, &QTreeWidget::itemDoubleClicked, this, &QDialog::accept);
    connect(m_table, &QTreeWidget::itemSelectionChanged, this,
            [this, show] { show->setEnabled(m_table->SelectedRow() >= 0); });

    connect(m_search, &QLineEdit::textChanged, this, &CRunListDlg::Filter);

    m_table->SetRuns(m_runs, currentRun);
    show->setEnabled(m_table->SelectedRow() >= 0);
    Filter();
    m_search->setFocus();
    resize(880, 440);
}

void CRunListDlg::Filter() {
    const int shown = m_table->ShowMatching(m_search->text());
    const auto all = static_cast<int>(m_runs.size());
    m_count->setText(shown == all ? toQString(countOf(all, "run"))
                                  : tr("%1 of %2").arg(toQString(groupedCount(shown)), toQString(countOf(all, "run"))));
    m_search->setAccessibleDescription(m_count->text());
}

// The keys that move in the list act on it while the user types.
bool CRunListDlg::eventFilter(QObject* watched, QEvent* event) {
    if (watched == m_search && event->type() == QEvent::KeyPress) {
        const auto* press = static_cast<QKeyEvent*>(event);
        if (press->matches(QKeySequence::Copy) && !m_search->hasSelectedText()) {
            m_table->CopySelected();
            return true;
        }
        const int key = press->key();
        const bool moves = key == Qt::Key_Up || key == Qt::Key_Down || key == Qt::Key_PageUp || key == Qt::Key_PageDown;
        if (moves) {
            QCoreApplication::sendEvent(m_table, event);
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
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
