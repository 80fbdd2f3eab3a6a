#include "alert/ui/CAlertHistoryDlg.h"

#include "access/PrViewer.h"
#include "alert/AlertEditor.h"
#include "base/Messages.h"
#include "base/NoteText.h"
#include "base/ui/QtText.h"

#include <QApplication>
#include <QClipboard>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QShortcut>
#include <QTableWidget>
#include <QVBoxLayout>

#include <utility>

namespace tavix {

namespace {

constexpr int kColumns = 4;
constexpr int kNoteLines = 3;

} // namespace

CAlertHistoryDlg::CAlertHistoryDlg(std::shared_ptr<PrViewer> session, Messages& messages, const AlertState& alert,
                                   AlertHistory history, QWidget* parent)
    : QDialog(parent),
      m_session(std::move(session)),
      m_messages(messages),
      m_alert(alert),
      m_history(std::move(history)),
      m_table(new QTableWidget(this)),
      m_note(new QPlainTextEdit(this)) {
    setObjectName(QStringLiteral("alertHistoryDialog"));
    setWindowTitle(tr("Notes and History"));
    m_table->setObjectName(QStringLiteral("history"));
    m_table->setAccessibleName(tr("Notes on the alert and its history"));
    m_table->setColumnCount(kColumns);
    m_table->setHorizontalHeaderLabels({tr("Date"), tr("By"), tr("What"), tr("Text")});
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setSelectionMode(QAbstractItemView::SingleSelection);
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->setShowGrid(false);
    m_table->setTabKeyNavigation(false);
    m_table->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_table->verticalHeader()->hide();
    m_table->horizontalHeader()->setHighlightSections(false);
    m_table->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    m_table->horizontalHeader()->setStretchLastSection(true);
    m_note->setObjectName(QStringLiteral("note"));
    m_note->setAccessibleName(tr("Text of a new note"));
    m_note->setTabChangesFocus(true);
    m_note->setFixedHeight(m_note->fontMetrics().lineSpacing() * kNoteLines + 12);
    LayOut();
    ShowEntries();
    connect(m_note, &QPlainTextEdit::textChanged, this, &CAlertHistoryDlg::ShowButtons);
    connect(m_table, &QTableWidget::itemSelectionChanged, this, &CAlertHistoryDlg::ShowButtons);
    connect(m_add, &QPushButton::clicked, this, &CAlertHistoryDlg::AddNote);
    connect(m_delete, &QPushButton::clicked, this, &CAlertHistoryDlg::DeleteNote);
    const auto onKey = [this](const QKeySequence& key, QWidget* in, auto act) {
        auto* shortcut = new QShortcut(key, in);
        shortcut->setContext(Qt::WidgetShortcut);
        connect(shortcut, &QShortcut::activated, this, act);
    };
    onKey(QKeySequence(Qt::CTRL | Qt::Key_Return), m_note, &CAlertHistoryDlg::AddNote);
    onKey(QKeySequence(Qt::CTRL | Qt::Key_Enter), m_note, &CAlertHistoryDlg::AddNote);
    onKey(QKeySequence(Qt::Key_Delete), m_table, &CAlertHistoryDlg::DeleteNote);
    onKey(QKeySequence(QKeySequence::Copy), m_table, &CAlertHistoryDlg::Copy);
    m_note->setFocus();
    resize(720, 440);
}

void CAlertHistoryDlg::LayOut() {
    auto* title = new QLabel(toQString(m_alert.description), this);
    QFont strong = font();
    strong.setWeight(QFont::DemiBold);
    title->setFont(strong);
    // Names come from the data.
    title->setTextFormat(Qt::PlainText);
    title->setWordWrap(true);
    auto* label = new QLabel(tr("&New note:"), this);
    label->setBuddy(m_note);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    m_add = buttons->addButton(tr("&Add Note"), QDialogButtonBox::ActionRole);
    m_add->setObjectName(QStringLiteral("addNote"));
    m_add->setToolTip(tr("Ctrl+Enter"));
    m_delete = buttons->addButton(tr("&Delete Note..."), QDialogButtonBox::ActionRole);
    m_delete->setObjectName(QStringLiteral("deleteNote"));
    m_delete->setToolTip(tr("Delete"));
    for (QPushButton* button : {m_add, m_delete})
        button->setAutoDefault(false);
    connect(buttons, &QDialogButtonBox::rejected, this, &CAlertHistoryDlg::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(title);
    layout->addSpacing(4);
    layout->addWidget(m_table, 1);
    layout->addWidget(label);
    layout->addWidget(m_note);
    layout->addSpacing(4);
    layout->addWidget(buttons);
}

void CAlertHistoryDlg::ShowEntries() {
    const std::locale locale = userLocale();
    const std::vector<AlertHistory::Entry>& entries = m_history.GetEntries();
    m_table->setRowCount(static_cast<int>(entries.size()));
    for (int row = 0; row < m_table->rowCount(); ++row) {
        const AlertHistory::Entry& entry = entries[static_cast<std::size_t>(row)];
        const std::array<std::string, kColumns> cells{formatDateTime(decompose(entry.date), locale), entry.who,
                                                      std::string(AlertHistory::WordOf(entry.kind)), entry.text};
        for (int column = 0; column < kColumns; ++column) {
            auto* item = new QTableWidgetItem(toQString(cells[static_cast<std::size_t>(column)]));
            item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
            item->setTextAlignment(Qt::AlignLeft | Qt::AlignTop);
            m_table->setItem(row, column, item);
        }
    }
    for (int column = 0; column + 1 < kColumns; ++column)
        m_table->resizeColumnToContents(column);
    m_table->resizeRowsToContents();
    ShowButtons();
}

void CAlertHistoryDlg::ShowButtons() {
    m_add->setEnabled(!tidyNote(toUtf8(m_note->toPlainText())).empty());
    const int row = m_table->selectedItems().isEmpty() ? -1 : m_table->currentRow();
    m_delete->setEnabled(row >= 0 && m_history.CanDelete(static_cast<std::size_t>(row)));
}

void CAlertHistoryDlg::AddNote() {
    if (!m_add->isEnabled() || !AlertEditor(*m_session, m_messages).AddNote(m_alert.id, toUtf8(m_note->toPlainText())))
        return m_note->setFocus();
    m_note->clear();
    ReadAgain();
}

void CAlertHistoryDlg::DeleteNote() {
    if (!m_delete->isEnabled())
        return;
    const AlertHistory::Entry note = m_history.GetEntries().at(static_cast<std::size_t>(m_table->currentRow()));
    if (AlertEditor(*m_session, m_messages).DeleteNote(note))
        ReadAgain();
}

void CAlertHistoryDlg::ReadAgain() {
    m_hasChanged = true;
    Result<AlertHistory> read = AlertHistory::Read(*m_session, m_alert, userLocale());
    if (!read)
        return m_messages.warn("Error occurred while retrieving the history of the alert:\n\n" + read.error().text);
    m_history = std::move(*read);
    ShowEntries();
}

void CAlertHistoryDlg::Copy() const {
    const int row = m_table->currentRow();
    if (row < 0)
        return;
    QStringList cells;
    for (int column = 0; column < kColumns; ++column)
        cells << m_table->item(row, column)->text().replace(u'\n', u' ');
    QApplication::clipboard()->setText(cells.join(u'\t'));
}

void CAlertHistoryDlg::reject() {
    const bool isWritten = !tidyNote(toUtf8(m_note->toPlainText())).empty();
    if (!isWritten || m_messages.ask("The note is not saved. Discard what you have written?", "Discard Note",
                                     Messages::Answer::No) == Messages::Answer::Yes)
        QDialog::reject();
}

} // namespace tavix
