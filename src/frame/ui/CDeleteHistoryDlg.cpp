#include "frame/ui/CDeleteHistoryDlg.h"

#include "base/ui/NestedLoop.h"
#include "base/ui/QtText.h"
#include "frame/ui/CRunTable.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

namespace tavix {

namespace {

/// A drop-down list is at most as wide as the dialog and cuts off longer texts without an ellipsis.
QString shortened(const QString& text) {
    constexpr qsizetype kLongest = 54;
    return text.size() <= kLongest ? text : text.left(kLongest - 1) + QChar(0x2026);
}

} // namespace

CDeleteHistoryDlg::CDeleteHistoryDlg(DeleteHistoryModel model, Messages& messages, QWidget* parent)
    : QDialog(parent),
      m_model(std::move(model)),
      m_messages(messages),
      m_table(new CRunTable(this)),
      m_afterwards(new QComboBox(this)),
      m_afterwardsLabel(new QLabel(tr("&Show afterwards:"), this)),
      m_summary(new QLabel(this)) {
    setWindowTitle(tr("Delete History"));
    m_table->setObjectName(QStringLiteral("runs"));
    m_table->setAccessibleName(tr("Runs of the report, newest first"));
    m_afterwards->setObjectName(QStringLiteral("afterwards"));
    m_afterwards->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    m_afterwards->setMinimumContentsLength(24);
    m_afterwards->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_afterwardsLabel->setBuddy(m_afterwards);
    m_summary->setObjectName(QStringLiteral("summary"));
    m_summary->setTextFormat(Qt::PlainText);
    m_summary->setWordWrap(true);
    // Enough room for the longest text, so that the list above does not move.
    m_summary->setMinimumHeight(2 * fontMetrics().lineSpacing() + 4);
    m_summary->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);

    auto* label = new QLabel(tr("Delete this run and all &older ones:"), this);
    label->setBuddy(m_table);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    m_delete = buttons->button(QDialogButtonBox::Ok);
    m_delete->setText(tr("&Delete..."));

    auto* afterwards = new QHBoxLayout;
    afterwards->addWidget(m_afterwardsLabel);
    afterwards->addWidget(m_afterwards, 1);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(label);
    layout->addWidget(m_table, 1);
    layout->addWidget(m_summary);
    layout->addLayout(afterwards);
    layout->addSpacing(4);
    layout->addWidget(buttons);

    m_table->SetRuns(m_model.Runs(), m_model.CurrentRun());
    // No preselection: a deletion must start with a deliberate choice.
    m_table->setCurrentItem(nullptr);
    connect(m_table, &QTreeWidget::itemSelectionChanged, this, &CDeleteHistoryDlg::SelectionChanged);
    connect(m_afterwards, &QComboBox::currentIndexChanged, this,
            [this](int index) { m_model.ShowAfterwards(m_afterwards->itemData(index).toInt()); });
    connect(buttons, &QDialogButtonBox::accepted, this, &CDeleteHistoryDlg::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    SelectionChanged();
    m_table->setFocus();
    resize(880, 420);
}

void CDeleteHistoryDlg::SelectionChanged() {
    m_model.DeleteFrom(m_table->SelectedRow());
    for (int row = 0; row < m_table->topLevelItemCount(); ++row)
        m_table->MarkDeleted(row, m_model.IsDeleted(row));
    const QString sentence = m_table->SelectedRow() == 0 && m_model.Runs().size() > 1
                                 ? tr("The newest run cannot be deleted: a report keeps at least one run.")
                                 : toQString(m_model.Summary(userLocale()));
    m_summary->setText(sentence);
    m_table->setAccessibleDescription(sentence);
    m_delete->setEnabled(m_model.DeletesAnything());
    OfferRunsAfterwards();
}

void CDeleteHistoryDlg::OfferRunsAfterwards() {
    const bool choice = m_model.DeletesCurrent();
    m_afterwards->setEnabled(choice);
    m_afterwardsLabel->setEnabled(choice);
    const int wanted = m_model.Deletion().runAfter;
    const std::locale locale = userLocale();
    const QSignalBlocker quiet(m_afterwards);
    m_afterwards->clear();
    for (int row = 0; row < m_model.StayingCount(); ++row) {
        const RunInfo& run = m_model.Runs()[static_cast<std::size_t>(row)];
        if (choice || run.id == m_model.CurrentRun())
            m_afterwards->addItem(shortened(toQString(run.DateText(locale) + "  " + run.description)), run.id);
    }
    m_afterwards->setCurrentIndex(std::max(m_afterwards->findData(wanted), 0));
}

void CDeleteHistoryDlg::accept() {
    if (!m_model.DeletesAnything())
        return;
    const std::string question = m_model.Summary(userLocale()) + "\n\nThis cannot be undone. Delete?";
    if (m_messages.ask(question, "Delete History", Messages::Answer::No) == Messages::Answer::Yes)
        QDialog::accept();
}

bool CDeleteHistoryDlg::Ask(const CTavixDoc& doc, QWidget* parent, HistoryDeletion& deletion) {
    auto runs = doc.GetRuns();
    if (!runs)
        return false;
    ModalDialog<CDeleteHistoryDlg> dialog(DeleteHistoryModel(std::move(*runs), doc.GetCurrentJob()), doc.GetMessages(),
                                          parent);
    if (!dialog.isAccepted())
        return false;
    deletion = dialog->Deletion();
    return true;
}

} // namespace tavix
