#include "alert/ui/CCopyAlertDlg.h"

#include "base/ui/QtText.h"
#include "base/ui/QuietPalette.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QShortcut>
#include <QTableWidget>
#include <QVBoxLayout>

#include <utility>

namespace tavix {

CCopyAlertDlg::CCopyAlertDlg(const QString& condition, FieldChoice choice,
                             std::function<bool(const std::vector<AlertDefinition>&)> store, QWidget* parent)
    : QDialog(parent),
      m_choice(std::move(choice)),
      m_store(std::move(store)),
      m_table(new QTableWidget(this)),
      m_summary(new QLabel(this)) {
    setObjectName(QStringLiteral("copyAlertDialog"));
    setWindowTitle(tr("Copy Alert to Other Fields"));
    auto* title = new QLabel(condition, this);
    QFont strong = font();
    strong.setWeight(QFont::DemiBold);
    title->setFont(strong);
    auto* remark = new QLabel(tr("Each copy has the same limits and its own condition as its description."), this);
    remark->setPalette(quietPalette(palette()));
    for (QLabel* label : {title, remark}) {
        // Names come from the data.
        label->setTextFormat(Qt::PlainText);
        label->setWordWrap(true);
    }
    m_table->setObjectName(QStringLiteral("fields"));
    m_table->setAccessibleName(tr("Fields of the table"));
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setSelectionMode(QAbstractItemView::SingleSelection);
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->setShowGrid(false);
    m_table->setTabKeyNavigation(false);
    m_table->verticalHeader()->hide();
    m_table->horizontalHeader()->setHighlightSections(false);
    m_table->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    m_summary->setObjectName(QStringLiteral("summary"));
    auto* all = new QPushButton(tr("Choose &All"), this);
    all->setObjectName(QStringLiteral("chooseAll"));
    all->setToolTip(tr("All fields that have the figure in this run"));
    auto* none = new QPushButton(tr("Choose &None"), this);
    none->setObjectName(QStringLiteral("chooseNone"));
    auto* row = new QHBoxLayout;
    row->addWidget(m_summary, 1);
    row->addWidget(all);
    row->addWidget(none);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    m_copy = buttons->button(QDialogButtonBox::Ok);
    m_copy->setObjectName(QStringLiteral("copy"));
    m_copy->setText(tr("&Copy"));
    m_copy->setToolTip(tr("Ctrl+Enter"));
    for (QPushButton* button : {all, none})
        button->setAutoDefault(false);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(title);
    layout->addWidget(remark);
    layout->addSpacing(4);
    layout->addWidget(m_table, 1);
    layout->addLayout(row);
    layout->addSpacing(4);
    layout->addWidget(buttons);

    FillTable();
    connect(m_table, &QTableWidget::itemChanged, this, [this](QTableWidgetItem* item) { Chosen(*item); });
    connect(all, &QPushButton::clicked, this, [this] { ChooseAll(true); });
    connect(none, &QPushButton::clicked, this, [this] { ChooseAll(false); });
    connect(buttons, &QDialogButtonBox::accepted, this, &CCopyAlertDlg::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter})
        connect(new QShortcut(QKeySequence(Qt::CTRL | key), this), &QShortcut::activated, this, &CCopyAlertDlg::accept);
    ShowChoice();
    if (m_table->rowCount() > 0)
        m_table->setCurrentCell(0, 0);
    m_table->setFocus();
    resize(520, 460);
}

void CCopyAlertDlg::FillTable() {
    const QScopedValueRollback<bool> filling(m_isFilling, true);
    const std::vector<FieldChoice::Field>& fields = m_choice.GetFields();
    m_table->setColumnCount(2);
    m_table->setHorizontalHeaderLabels({tr("Field"), tr("This Run")});
    m_table->setRowCount(static_cast<int>(fields.size()));
    for (int row = 0; row < m_table->rowCount(); ++row) {
        const FieldChoice::Field& field = fields[static_cast<std::size_t>(row)];
        auto* name = new QTableWidgetItem(toQString(field.name));
        auto* remark = new QTableWidgetItem(toQString(field.remark));
        const Qt::ItemFlags flags =
            field.canHave ? Qt::ItemIsEnabled | Qt::ItemIsSelectable : Qt::ItemFlags(Qt::ItemIsSelectable);
        name->setFlags(flags | Qt::ItemIsUserCheckable);
        name->setCheckState(Qt::Unchecked);
        remark->setFlags(flags);
        m_table->setItem(row, 0, name);
        m_table->setItem(row, 1, remark);
    }
    m_table->resizeColumnToContents(0);
    m_table->setColumnWidth(0, std::min(m_table->columnWidth(0) + 24, 280));
    m_table->horizontalHeader()->setStretchLastSection(true);
}

void CCopyAlertDlg::Chosen(const QTableWidgetItem& item) {
    if (m_isFilling || item.column() != 0)
        return;
    m_choice.Choose(static_cast<std::size_t>(item.row()), item.checkState() == Qt::Checked);
    ShowChoice();
}

void CCopyAlertDlg::ChooseAll(bool isChosen) {
    m_choice.ChooseAll(isChosen);
    {
        const QScopedValueRollback<bool> filling(m_isFilling, true);
        for (int row = 0; row < m_table->rowCount(); ++row)
            m_table->item(row, 0)->setCheckState(
                m_choice.GetFields()[static_cast<std::size_t>(row)].isChosen ? Qt::Checked : Qt::Unchecked);
    }
    ShowChoice();
}

void CCopyAlertDlg::ShowChoice() {
    m_summary->setText(toQString(m_choice.GetSummary()));
    m_copy->setEnabled(m_choice.CountChosen() > 0);
}

void CCopyAlertDlg::accept() {
    if (m_copy->isEnabled() && m_store(m_choice.GetCopies()))
        QDialog::accept();
}

} // namespace tavix
