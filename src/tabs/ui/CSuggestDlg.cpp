#include "tabs/ui/CSuggestDlg.h"

#include "access/PrViewer.h"
#include "base/GenException.h"
#include "base/ui/NestedLoop.h"
#include "base/ui/QtText.h"
#include "base/ui/QuietPalette.h"
#include "doc/CTavixDoc.h"
#include "doc/CViewSite.h"
#include "drill/ui/ReadingProgress.h"
#include "tabs/ui/LinkButton.h"

#include <QApplication>
#include <QClipboard>
#include <QDialogButtonBox>
#include <QFile>
#include <QFileDialog>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QScreen>
#include <QSplitter>
#include <QTableWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace tavix {

namespace {

constexpr int kWidestColumn = 260;
constexpr int kWidestPlace = 200;
constexpr int kCaptionBytes = 60;

} // namespace

CSuggestDlg::CSuggestDlg(std::shared_ptr<PrViewer> session, Messages& messages, SuggestionsModel model,
                         const QString& name, QWidget* parent)
    : QDialog(parent),
      m_session(std::move(session)),
      m_messages(messages),
      m_model(std::move(model)),
      m_name(name),
      m_table(new QTableWidget(this)),
      m_summary(new QLabel(this)),
      m_remark(new QLabel(this)),
      m_file(new QPlainTextEdit(this)) {
    setObjectName(QStringLiteral("suggestDialog"));
    setWindowTitle(tr("Suggested Rules"));
    auto* heading =
        new QLabel(tr("Rules for %1 that the figures of its runs suggest. Nothing is stored in the repository.")
                       .arg(name.left(kCaptionBytes)),
                   this);
    m_table->setObjectName(QStringLiteral("suggestions"));
    m_table->setAccessibleName(tr("Suggested rules"));
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setSelectionMode(QAbstractItemView::SingleSelection);
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->setWordWrap(false);
    m_table->setShowGrid(false);
    m_table->setTabKeyNavigation(false);
    m_table->verticalHeader()->hide();
    m_table->horizontalHeader()->setHighlightSections(false);
    m_table->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    m_remark->setObjectName(QStringLiteral("remark"));
    m_file->setObjectName(QStringLiteral("jobFile"));
    m_file->setAccessibleName(tr("Job file with the chosen rules"));
    m_file->setReadOnly(true);
    m_file->setLineWrapMode(QPlainTextEdit::NoWrap);
    m_file->setTabChangesFocus(true);
    m_file->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    for (QLabel* label : {heading, m_summary, m_remark}) {
        // Names come from the data.
        label->setTextFormat(Qt::PlainText);
        label->setWordWrap(label != m_summary);
    }
    m_remark->setPalette(quietPalette(palette()));

    auto* all = new LinkButton(this);
    all->setObjectName(QStringLiteral("chooseAll"));
    all->setText(tr("choose all"));
    auto* none = new LinkButton(this);
    none->setObjectName(QStringLiteral("chooseNone"));
    none->setText(tr("choose none"));
    auto* choice = new QHBoxLayout;
    choice->setSpacing(12);
    choice->addWidget(m_summary);
    choice->addWidget(all);
    choice->addWidget(none);
    choice->addStretch(1);
    auto* upper = new QWidget(this);
    auto* upperLayout = new QVBoxLayout(upper);
    upperLayout->setContentsMargins(0, 0, 0, 0);
    upperLayout->addWidget(m_table, 1);
    upperLayout->addLayout(choice);
    upperLayout->addWidget(m_remark);
    auto* splitter = new QSplitter(Qt::Vertical, this);
    splitter->setChildrenCollapsible(false);
    splitter->addWidget(upper);
    splitter->addWidget(m_file);
    splitter->setStretchFactor(0, 3);
    splitter->setStretchFactor(1, 2);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    m_copy = buttons->addButton(tr("&Copy"), QDialogButtonBox::ActionRole);
    m_save = buttons->addButton(tr("&Save As..."), QDialogButtonBox::ActionRole);
    m_copy->setObjectName(QStringLiteral("copy"));
    m_save->setObjectName(QStringLiteral("saveAs"));
    m_copy->setToolTip(tr("Copy the job file"));
    for (QPushButton* button : {m_copy, m_save})
        button->setAutoDefault(false);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(heading);
    layout->addWidget(splitter, 1);
    layout->addWidget(buttons);

    FillTable();
    connect(m_table, &QTableWidget::itemChanged, this, &CSuggestDlg::Chosen);
    connect(m_table, &QTableWidget::currentCellChanged, this, [this](int row) {
        const QString remark = row >= 0 ? toQString(m_model.RemarkOf(static_cast<std::size_t>(row))) : QString();
        m_remark->setText(remark);
        m_remark->setVisible(!remark.isEmpty());
    });
    connect(all, &QPushButton::clicked, this, [this] { ChooseAll(true); });
    connect(none, &QPushButton::clicked, this, [this] { ChooseAll(false); });
    connect(m_copy, &QPushButton::clicked, this, &CSuggestDlg::Copy);
    connect(m_save, &QPushButton::clicked, this, &CSuggestDlg::Save);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    m_remark->hide();
    if (m_table->rowCount() > 0)
        m_table->setCurrentCell(0, 0);
    m_table->setFocus();
    ShowFile();
    // The reasons are in the last column.
    resize(QSize(1120, 640).boundedTo(screen()->availableSize() * 9 / 10).expandedTo(QSize(900, 600)));
}

void CSuggestDlg::FillTable() {
    const QScopedValueRollback<bool> filling(m_isFilling, true);
    constexpr int kColumns = static_cast<int>(SuggestionsModel::kHeadings.size());
    m_table->setColumnCount(kColumns);
    m_table->setRowCount(static_cast<int>(m_model.size()));
    QStringList headings;
    for (const std::string_view heading : SuggestionsModel::kHeadings)
        headings << toQString(heading);
    m_table->setHorizontalHeaderLabels(headings);
    for (int row = 0; row < m_table->rowCount(); ++row) {
        const auto suggestion = static_cast<std::size_t>(row);
        const auto cells = m_model.CellsOf(suggestion);
        for (int column = 0; column < kColumns; ++column) {
            const QString text = toQString(cells[static_cast<std::size_t>(column)]);
            auto* item = new QTableWidgetItem(text);
            item->setToolTip(text.toHtmlEscaped());
            item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
            m_table->setItem(row, column, item);
        }
        QTableWidgetItem* first = m_table->item(row, 0);
        first->setFlags(first->flags() | Qt::ItemIsUserCheckable);
        first->setCheckState(m_model.IsChosen(suggestion) ? Qt::Checked : Qt::Unchecked);
    }
    m_table->resizeColumnsToContents();
    for (int column = 0; column < kColumns; ++column)
        m_table->setColumnWidth(column,
                                std::min(m_table->columnWidth(column) + 8, column == 0 ? kWidestPlace : kWidestColumn));
    m_table->horizontalHeader()->setStretchLastSection(true);
}

void CSuggestDlg::Chosen(QTableWidgetItem* item) {
    if (m_isFilling || item->column() != 0)
        return;
    m_model.Choose(static_cast<std::size_t>(item->row()), item->checkState() == Qt::Checked);
    ShowFile();
}

void CSuggestDlg::ChooseAll(bool isChosen) {
    m_model.ChooseAll(isChosen);
    {
        const QScopedValueRollback<bool> filling(m_isFilling, true);
        for (int row = 0; row < m_table->rowCount(); ++row)
            m_table->item(row, 0)->setCheckState(isChosen ? Qt::Checked : Qt::Unchecked);
    }
    ShowFile();
}

void CSuggestDlg::ShowFile() {
    m_summary->setText(toQString(m_model.GetSummary()));
    const auto text = m_model.MakeFile(*m_session);
    m_text = text ? *text : std::string();
    m_file->setPlainText(toQString(text ? *text : text.error().text));
    m_copy->setEnabled(static_cast<bool>(text));
    m_save->setEnabled(static_cast<bool>(text));
}

void CSuggestDlg::Copy() {
    QApplication::clipboard()->setText(toQString(m_text));
}

void CSuggestDlg::Save() {
    ModalDialog<QFileDialog> dialog(this, tr("Save Job File"));
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setNameFilters({tr("Job files (*.yaml *.yml)"), tr("All files (*)")});
    dialog->setDefaultSuffix(QStringLiteral("yaml"));
    dialog->selectFile(QStringLiteral("rules.yaml"));
    if (!dialog.isAccepted())
        return;
    const QString path = dialog->selectedFiles().value(0);
    if (const Status saved = SuggestionsModel::Save(QFile::encodeName(path).toStdString(), m_text); !saved)
        m_messages.warn(saved.error().text);
}

void CSuggestDlg::Show(CViewSite& site, int tableId, const QString& name, QWidget& over) {
    CTavixDoc& document = site.GetTavixDoc();
    const std::shared_ptr<PrViewer> session = document.GetSession();
    if (!session)
        return;
    Messages& messages = document.GetMessages();
    const QPointer<QWidget> parent(&over);
    SuggestionsModel model;
    {
        const std::unique_ptr<Messages::Busy> busy = messages.busy();
        ReadingProgress progress(ReadingKind::Runs, &over, site.GetPatienceMilliseconds());
        const Status read = model.Fill(*session, document.GetJobId(), tableId, [&progress] {
            if (!progress.progress("Looking for rules", 0, 0))
                throw GenException(KvbString(kReadingStopped));
        });
        if (progress.WasCancelled() || !parent || document.GetSession() != session)
            return;
        if (!read)
            return messages.warn("Error occurred while looking for rules:\n\n" + read.error().text);
    }
    if (model.size() == 0)
        return messages.warn("The figures of the run suggest no rule that the job does not have.");
    ModalDialog<CSuggestDlg>(session, messages, std::move(model), name, &over).exec();
}

} // namespace tavix
