#include "alert/ui/CAlertDlg.h"

#include "access/PrViewer.h"
#include "alert/AlertEditor.h"
#include "alert/AlertPicture.h"
#include "base/Messages.h"
#include "base/ui/QtText.h"
#include "base/ui/QuietPalette.h"
#include "base/ui/RoomyDelegate.h"
#include "chart/ui/DrawingWidget.h"
#include "grid/ui/Tints.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace tavix {

namespace {

constexpr int kShownProposals = 4;

void makePlain(QLabel& label) {
    // Names come from the data.
    label.setTextFormat(Qt::PlainText);
    label.setWordWrap(true);
}

/// The choices may be long names; the box need not be as wide.
void makeNarrow(QComboBox& box, int characters) {
    box.setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    box.setMinimumContentsLength(characters);
    box.setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

} // namespace

CAlertDlg::CAlertDlg(std::shared_ptr<PrViewer> session, Messages& messages, AlertDraft draft, const Purpose& purpose,
                     QWidget* parent)
    : QDialog(parent),
      m_session(std::move(session)),
      m_messages(messages),
      m_draft(std::move(draft)),
      m_id(purpose.id),
      m_sentence(new QLabel(this)),
      m_remark(new QLabel(purpose.remark, this)),
      m_input(new QComboBox(this)),
      m_figure(new QComboBox(this)),
      m_comparison(new QComboBox(this)),
      m_value1(new QLineEdit(this)),
      m_to(new QLabel(tr("to"), this)),
      m_value2(new QLineEdit(this)),
      m_unit(new QLabel(this)),
      m_againstLabel(new QLabel(tr("A&gainst:"), this)),
      m_against(new QComboBox(this)),
      m_runs(new QSpinBox(this)),
      m_runsLabel(new QLabel(this)),
      m_level(new QComboBox(this)),
      m_description(new QLineEdit(this)),
      m_picture(new DrawingWidget(this)),
      m_test(new QLabel(this)),
      m_proposalsLabel(new QLabel(tr("&Proposals from the history:"), this)),
      m_proposals(new QListWidget(this)) {
    setObjectName(QStringLiteral("alertDialog"));
    setWindowTitle(purpose.title);
    MakeControls();
    LayOut(purpose.remark);
    ShowFigures();
    ShowRule();
    ShowLimits();
    m_description->setText(toQString(m_draft.GetDescription()));
    ShowProposals();
    ShowJudged();
    ApplyColors();
    Connect();
    m_value1->setFocus();
    m_value1->selectAll();
    resize(QSize(720, 640).boundedTo(screen()->availableSize() * 9 / 10));
}

void CAlertDlg::MakeControls() {
    QFont strong = font();
    strong.setPointSizeF(strong.pointSizeF() * 1.1);
    strong.setWeight(QFont::DemiBold);
    m_sentence->setFont(strong);
    m_sentence->setObjectName(QStringLiteral("sentence"));
    m_test->setObjectName(QStringLiteral("test"));
    m_test->setTextInteractionFlags(Qt::TextSelectableByMouse);
    for (QLabel* label : {m_sentence, m_remark, m_test})
        makePlain(*label);

    m_input->setObjectName(QStringLiteral("input"));
    m_input->setAccessibleName(tr("Field, custom metric or rule that the alert watches"));
    makeNarrow(*m_input, 18);
    for (const AlertDraft::Input& input : m_draft.GetInputs())
        m_input->addItem(toQString(input.Label()));
    m_input->setCurrentIndex(static_cast<int>(m_draft.GetInput()));
    m_input->setEnabled(m_draft.GetInputs().size() > 1);
    m_figure->setObjectName(QStringLiteral("figure"));
    m_figure->setAccessibleName(tr("Figure that the alert watches"));
    makeNarrow(*m_figure, 18);

    m_comparison->setObjectName(QStringLiteral("comparison"));
    m_comparison->setAccessibleName(tr("Comparison that raises the alert"));
    for (const AlertDraft::ComparisonChoice& choice : AlertDraft::Comparisons())
        m_comparison->addItem(toQString(choice.text), static_cast<int>(choice.comparison));
    m_value1->setObjectName(QStringLiteral("value1"));
    m_value2->setObjectName(QStringLiteral("value2"));
    m_value2->setAccessibleName(tr("End of the range"));
    for (QLineEdit* edit : {m_value1, m_value2})
        edit->setMaxLength(60);
    m_against->setObjectName(QStringLiteral("against"));
    m_against->setAccessibleName(tr("What a change is measured against"));
    m_against->addItem(tr("the run before"), static_cast<int>(AgainstChoice::RunBefore));
    m_against->addItem(tr("the mean of the last"), static_cast<int>(AgainstChoice::Mean));
    m_against->addItem(tr("the median of the last"), static_cast<int>(AgainstChoice::Median));
    m_against->addItem(tr("same weekday: the mean of the last"), static_cast<int>(AgainstChoice::SameWeekday));
    m_againstLabel->setBuddy(m_against);
    m_runs->setObjectName(QStringLiteral("runs"));
    m_runs->setAccessibleName(tr("Number of earlier runs"));
    m_runs->setRange(1, AlertDraft::kMostRuns);
    m_level->setObjectName(QStringLiteral("level"));
    m_level->setAccessibleName(tr("Level of the alert"));
    for (const AlertLevel level : {AlertLevel::Warning, AlertLevel::Error})
        m_level->addItem(toQString(alertLevelWord(level)), static_cast<int>(level));
    m_description->setObjectName(QStringLiteral("description"));
    m_description->setAccessibleName(tr("Description; empty for the condition in words"));
    m_description->setMaxLength(AlertDraft::kLongestDescription);

    m_proposals->setObjectName(QStringLiteral("proposals"));
    m_proposals->setAccessibleName(tr("Limits that the history suggests"));
    m_proposals->setToolTip(tr("Enter or a click takes the limit over"));
    m_proposals->setTextElideMode(Qt::ElideRight);
    m_proposals->setItemDelegate(new RoomyDelegate(m_proposals));
    m_proposals->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_proposalsLabel->setBuddy(m_proposals);
}

void CAlertDlg::LayOut(const QString& remark) {
    m_remark->setVisible(!remark.isEmpty());
    auto* form = new QGridLayout;
    form->setColumnStretch(1, 1);
    const auto addRow = [this, form](const QString& text, QWidget* buddy, const std::vector<QWidget*>& widgets) {
        auto* label = new QLabel(text, this);
        label->setBuddy(buddy);
        auto* row = new QHBoxLayout;
        for (QWidget* widget : widgets)
            row->addWidget(widget);
        const int line = form->rowCount();
        form->addWidget(label, line, 0);
        form->addLayout(row, line, 1);
        return row;
    };
    addRow(tr("&Watch:"), m_input, {m_input, m_figure});
    auto* limits = addRow(tr("&Raise when it:"), m_comparison, {m_comparison, m_value1, m_to, m_value2, m_unit});
    limits->setStretchFactor(m_value1, 1);
    limits->setStretchFactor(m_value2, 1);
    auto* against = new QHBoxLayout;
    against->addWidget(m_against);
    against->addWidget(m_runs);
    against->addWidget(m_runsLabel);
    against->addStretch(1);
    form->addWidget(m_againstLabel, form->rowCount(), 0);
    form->addLayout(against, form->rowCount() - 1, 1);
    addRow(tr("&Level:"), m_level, {m_level})->addStretch(1);
    addRow(tr("&Description:"), m_description, {m_description});

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    m_store = buttons->button(QDialogButtonBox::Ok);
    m_store->setObjectName(QStringLiteral("store"));
    m_store->setText(m_id == -1 ? tr("&Add Alert") : tr("&Save Alert"));
    connect(buttons, &QDialogButtonBox::accepted, this, &CAlertDlg::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &CAlertDlg::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_sentence);
    layout->addWidget(m_remark);
    layout->addSpacing(4);
    layout->addLayout(form);
    layout->addSpacing(4);
    layout->addWidget(m_picture, 1);
    layout->addWidget(m_test);
    layout->addWidget(m_proposalsLabel);
    layout->addWidget(m_proposals);
    layout->addSpacing(4);
    layout->addWidget(buttons);
}

void CAlertDlg::Connect() {
    connect(m_input, &QComboBox::currentIndexChanged, this, [this](int index) {
        const std::unique_ptr<Messages::Busy> busy = m_messages.busy();
        m_draft.ChooseInput(*m_session, static_cast<std::size_t>(index));
        ShowFigures();
        ShowLimits();
        ShowProposals();
        ShowJudged();
    });
    connect(m_figure, &QComboBox::currentIndexChanged, this, [this](int index) {
        const std::unique_ptr<Messages::Busy> busy = m_messages.busy();
        m_draft.ChooseFigure(*m_session, static_cast<std::size_t>(index));
        ShowLimits();
        ShowProposals();
        ShowJudged();
    });
    connect(m_comparison, &QComboBox::currentIndexChanged, this, [this] {
        m_draft.SetComparison(static_cast<AlertComparison>(m_comparison->currentData().toInt()));
        ShowRule();
        ShowLimits();
        ShowProposals();
        ShowJudged();
    });
    connect(m_value1, &QLineEdit::textEdited, this, [this](const QString& text) {
        m_draft.SetValue1(toUtf8(text));
        ShowJudged();
    });
    connect(m_value2, &QLineEdit::textEdited, this, [this](const QString& text) {
        m_draft.SetValue2(toUtf8(text));
        ShowJudged();
    });
    connect(m_against, &QComboBox::currentIndexChanged, this, [this] {
        m_draft.SetAgainst(static_cast<AgainstChoice>(m_against->currentData().toInt()));
        ShowRule();
        ShowProposals();
        ShowJudged();
    });
    connect(m_runs, &QSpinBox::valueChanged, this, [this](int runs) {
        m_draft.SetRuns(runs);
        ShowRule();
        ShowProposals();
        ShowJudged();
    });
    connect(m_level, &QComboBox::currentIndexChanged, this,
            [this] { m_draft.SetLevel(static_cast<AlertLevel>(m_level->currentData().toInt())); });
    connect(m_description, &QLineEdit::textEdited, this,
            [this](const QString& text) { m_draft.SetDescription(toUtf8(text)); });
    connect(m_proposals, &QListWidget::itemClicked, this,
            [this](QListWidgetItem* item) { ApplyProposal(m_proposals->row(item)); });
    m_proposals->installEventFilter(this);
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter})
        connect(new QShortcut(QKeySequence(Qt::CTRL | key), this), &QShortcut::activated, this, &CAlertDlg::accept);
}

void CAlertDlg::ShowFigures() {
    const QSignalBlocker blocker(m_figure);
    m_figure->clear();
    for (const std::string& figure : m_draft.GetFigures())
        m_figure->addItem(toQString(figure));
    m_figure->setCurrentIndex(static_cast<int>(m_draft.GetFigure()));
    m_figure->setEnabled(m_figure->count() > 1);
}

void CAlertDlg::ShowRule() {
    const QSignalBlocker comparison(m_comparison);
    const QSignalBlocker against(m_against);
    const QSignalBlocker runs(m_runs);
    const QSignalBlocker level(m_level);
    m_comparison->setCurrentIndex(m_comparison->findData(static_cast<int>(m_draft.GetComparison())));
    m_against->setCurrentIndex(m_against->findData(static_cast<int>(m_draft.GetAgainst())));
    m_runs->setValue(m_draft.GetRuns());
    m_runsLabel->setText(m_draft.GetRuns() == 1 ? tr("run") : tr("runs"));
    m_level->setCurrentIndex(m_level->findData(static_cast<int>(m_draft.GetLevel())));
    const bool isOfRange = isRange(m_draft.GetComparison());
    const bool isOfChange = isChange(m_draft.GetComparison());
    m_to->setVisible(isOfRange);
    m_value2->setVisible(isOfRange);
    m_againstLabel->setVisible(isOfChange);
    m_against->setVisible(isOfChange);
    for (QWidget* widget : {static_cast<QWidget*>(m_runs), static_cast<QWidget*>(m_runsLabel)})
        widget->setVisible(isOfChange && m_draft.GetAgainst() != AgainstChoice::RunBefore);
    m_value1->setAccessibleName(isOfRange ? tr("Begin of the range") : tr("Limit"));
}

void CAlertDlg::ShowLimits() {
    m_value1->setText(toQString(m_draft.GetValue1()));
    m_value2->setText(toQString(m_draft.GetValue2()));
    m_unit->setText(toQString(m_draft.GetUnit()));
    m_unit->setVisible(!m_draft.GetUnit().empty());
    const std::string figure = m_draft.GetFigureText();
    m_value1->setPlaceholderText(
        figure.empty() || isChange(m_draft.GetComparison()) ? QString() : tr("this run: %1").arg(toQString(figure)));
}

void CAlertDlg::ShowJudged() {
    const Status checked = m_draft.Check();
    m_store->setEnabled(checked.ok());
    m_store->setToolTip(checked ? tr("Ctrl+Enter") : toQString(checked.error().text));
    const QString sentence = toQString(m_draft.GetSentence());
    const std::string figure = m_draft.GetFigures().at(m_draft.GetFigure());
    m_sentence->setText(sentence.isEmpty() ? windowTitle() : sentence);
    m_description->setPlaceholderText(sentence);
    const std::string test = m_draft.GetBackTestText();
    m_test->setText(toQString(test));
    m_picture->SetPicture(
        std::make_unique<AlertPicture>(m_draft.GetBackTest(), m_draft.GetRule(), m_draft.IsPercent(), figure));
}

void CAlertDlg::ShowProposals() {
    m_proposals->clear();
    for (std::size_t i = 0; i < m_draft.GetProposals().size(); ++i) {
        const QString text = toQString(m_draft.ProposalText(i));
        auto* item = new QListWidgetItem(text, m_proposals);
        item->setToolTip(text.toHtmlEscaped());
    }
    const int count = m_proposals->count();
    m_proposals->setVisible(count > 0);
    m_proposalsLabel->setVisible(count > 0);
    if (count == 0)
        return;
    // Nothing looks chosen until the user comes here.
    m_proposals->setCurrentRow(0, QItemSelectionModel::NoUpdate);
    m_proposals->setFixedHeight(m_proposals->sizeHintForRow(0) * std::min(count, kShownProposals) +
                                2 * m_proposals->frameWidth());
}

void CAlertDlg::ApplyProposal(int row) {
    if (row < 0)
        return;
    m_draft.Apply(static_cast<std::size_t>(row));
    ShowRule();
    ShowLimits();
    ShowJudged();
}

bool CAlertDlg::eventFilter(QObject* watched, QEvent* event) {
    if (watched == m_proposals && event->type() == QEvent::FocusOut)
        m_proposals->clearSelection();
    if (watched == m_proposals && event->type() == QEvent::FocusIn && m_proposals->currentItem())
        m_proposals->currentItem()->setSelected(true);
    // Enter takes a proposal over; the dialog would store the alert.
    if (watched == m_proposals && event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        const bool isEnter = key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter;
        if (isEnter && !key->modifiers().testFlag(Qt::ControlModifier)) {
            ApplyProposal(m_proposals->currentRow());
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

void CAlertDlg::changeEvent(QEvent* event) {
    QDialog::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && m_store)
        ApplyColors();
}

void CAlertDlg::ApplyColors() {
    for (QLabel* label : {m_remark, m_unit})
        label->setPalette(quietPalette(palette()));
}

void CAlertDlg::accept() {
    if (!m_draft.Check())
        m_value1->setFocus();
    else if (AlertEditor(*m_session, m_messages).Store(m_id, m_draft.GetDefinition()))
        QDialog::accept();
}

void CAlertDlg::reject() {
    if (!m_draft.IsChanged() || AlertEditor(*m_session, m_messages).MayDiscard())
        QDialog::reject();
}

} // namespace tavix
