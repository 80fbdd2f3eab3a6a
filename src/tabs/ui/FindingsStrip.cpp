#include "tabs/ui/FindingsStrip.h"

#include "access/PrViewer.h"
#include "base/LoginName.h"
#include "base/ui/ElidedLabel.h"
#include "base/ui/NestedLoop.h"
#include "base/ui/QtText.h"
#include "base/ui/QuietPalette.h"
#include "doc/CTavixDoc.h"
#include "grid/ui/CUGCtrl.h"
#include "grid/ui/Tints.h"
#include "tabs/ui/CDismissDlg.h"
#include "tabs/ui/CProfTab.h"
#include "tabs/ui/FieldFilter.h"
#include "tabs/ui/LinkButton.h"

#include <QAction>
#include <QEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPainter>
#include <QPointer>
#include <QScrollBar>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>
#include <optional>

namespace tavix {

namespace {

constexpr int kMargin = 12;
constexpr int kGap = 4;
constexpr int kMostRows = 4;     // more scroll
constexpr int kHighEnough = 680; // of the window: in a lower one the metrics keep their room
// The place of the frequency distribution among the tabs of a field.
constexpr int kFrequencyTab = 1;

} // namespace

FindingsStrip::FindingsStrip(CViewSite& site, const ReportSubject& subject, CProfTab& tab, bool isOfField)
    : QWidget(&tab),
      m_site(site),
      m_subject(subject),
      m_tab(tab),
      m_isOfField(isOfField),
      m_model(isOfField),
      m_drill(site, tab),
      m_toggle(new QToolButton(this)),
      m_text(new ElidedLabel(this)),
      m_dismissed(new LinkButton(this)),
      m_body(new QWidget(this)),
      m_grid(new CUGCtrl(m_body)),
      m_explanation(new QLabel(m_body)),
      m_values(AddLink("findingValues", tr("show values"), &FindingsStrip::ShowValues)),
      m_rows(AddLink("findingRows", tr("show rows"), &FindingsStrip::ShowRows)),
      m_dismiss(AddLink("findingDismiss", tr("dismiss..."), &FindingsStrip::DismissOrRestore)),
      m_valuesAction(new QAction(tr("Show &Values"), this)),
      m_rowsAction(new QAction(tr("&Drill Through"), this)),
      m_dismissAction(new QAction(tr("Di&smiss..."), this)) {
    setObjectName(QStringLiteral("findingsStrip"));
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Base);
    m_toggle->setObjectName(QStringLiteral("findingsToggle"));
    m_toggle->setAutoRaise(true);
    m_toggle->setFocusPolicy(Qt::TabFocus);
    m_text->setObjectName(QStringLiteral("findingsText"));
    m_text->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_dismissed->setObjectName(QStringLiteral("findingsDismissed"));
    m_grid->setObjectName(QStringLiteral("findings"));
    m_grid->setAccessibleName(tr("Findings"));
    m_explanation->setObjectName(QStringLiteral("findingExplanation"));
    m_explanation->setTextFormat(Qt::PlainText);
    m_explanation->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_explanation->setWordWrap(true);

    auto* head = new QHBoxLayout;
    head->setContentsMargins(kMargin - 6, 2, kMargin, 2);
    head->setSpacing(kGap);
    head->addWidget(m_toggle);
    head->addWidget(m_text, 1);
    head->addWidget(m_dismissed);
    auto* links = new QHBoxLayout;
    links->setSpacing(kMargin);
    links->addWidget(m_values);
    links->addWidget(m_rows);
    links->addWidget(m_dismiss);
    links->addStretch(1);
    auto* below = new QVBoxLayout;
    below->setContentsMargins(kMargin, kGap, kMargin, kGap + 2);
    below->setSpacing(2);
    below->addWidget(m_explanation);
    below->addLayout(links);
    auto* body = new QVBoxLayout(m_body);
    body->setContentsMargins(0, 0, 0, 0);
    body->setSpacing(0);
    body->addWidget(m_grid);
    body->addLayout(below);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 1);
    layout->setSpacing(0);
    layout->addLayout(head);
    layout->addWidget(m_body);

    m_grid->addActions({m_valuesAction, m_rowsAction, m_dismissAction});
    connect(m_valuesAction, &QAction::triggered, this, &FindingsStrip::ShowValues);
    connect(m_rowsAction, &QAction::triggered, this, &FindingsStrip::ShowRows);
    connect(m_dismissAction, &QAction::triggered, this, &FindingsStrip::DismissOrRestore);
    connect(m_toggle, &QToolButton::clicked, this, [this] { SetOpen(!m_isOpen); });
    connect(m_dismissed, &QPushButton::clicked, this, &FindingsStrip::ToggleDismissed);
    connect(m_grid, &CUGCtrl::CurrentRowChanged, this, &FindingsStrip::ShowCurrent);
    connect(m_grid, &CUGCtrl::RowActivated, this, &FindingsStrip::Activate);
    connect(m_grid->horizontalScrollBar(), &QScrollBar::rangeChanged, this, &FindingsStrip::FitHeight);
    m_grid->SetSource(&m_model.GetRows());
    ApplyColors();
    SetOpen(false);
    hide();
}

// The grid must not fetch rows while it is being destroyed.
FindingsStrip::~FindingsStrip() {
    m_grid->disconnect(this);
    m_grid->horizontalScrollBar()->disconnect(this);
    m_grid->SetSource(nullptr);
}

LinkButton* FindingsStrip::AddLink(const char* name, const QString& text, void (FindingsStrip::*act)()) {
    auto* link = new LinkButton(m_body);
    link->setObjectName(QLatin1String(name));
    link->setText(text);
    connect(link, &QPushButton::clicked, this, act);
    return link;
}

void FindingsStrip::Refill() {
    const std::shared_ptr<PrViewer> viewer = m_site.GetTavixDoc().GetSession();
    m_model.Clear();
    if (viewer)
        if (const Status read = m_model.Fill(*viewer, m_subject); !read)
            m_site.WarnSoon("Error occurred while reading the findings:\n\n" + read.error().text);
    const bool isSame = isSameObject(m_filledFor, m_subject.selection);
    m_filledFor = m_subject.selection;
    if (!isSame)
        SetOpen(m_model.IsOpenAtFirst() && window()->height() >= kHighEnough);
    ShowModel();
}

void FindingsStrip::SetListFont(const QFont& font) {
    m_grid->setFont(font);
}

void FindingsStrip::SetOpen(bool isOpen) {
    m_isOpen = isOpen;
    m_body->setVisible(isOpen);
    m_toggle->setArrowType(isOpen ? Qt::DownArrow : Qt::RightArrow);
    const QString name = isOpen ? tr("Hide Findings") : tr("Show Findings");
    m_toggle->setAccessibleName(name);
    m_toggle->setToolTip(name);
}

void FindingsStrip::ShowModel() {
    m_text->setText(toQString(m_model.GetText()));
    m_toggle->setAccessibleDescription(m_text->text());
    const QString dismissed = toQString(m_model.GetDismissedText());
    m_dismissed->setVisible(!dismissed.isEmpty());
    m_dismissed->setText(m_model.ShowsDismissed() ? tr("hide %1").arg(dismissed) : tr("show %1").arg(dismissed));
    m_dismissed->updateGeometry();
    m_grid->SourceChanged();
    FitHeight();
    m_grid->SelectRow(0);
    setVisible(!m_model.GetText().empty());
    ShowCurrent();
}

// A scroll bar covers no row.
void FindingsStrip::FitHeight() {
    const auto rows = std::clamp<std::int64_t>(m_model.GetRows().GetRowCount(), 1, kMostRows);
    const QScrollBar* bar = m_grid->horizontalScrollBar();
    m_grid->setFixedHeight(m_grid->horizontalHeader()->sizeHint().height() +
                           static_cast<int>(rows) * m_grid->verticalHeader()->defaultSectionSize() + 2 +
                           (bar->maximum() > bar->minimum() ? bar->sizeHint().height() : 0));
}

const FindingRecord* FindingsStrip::Current() const {
    return m_model.At(m_grid->GetCurrentRow());
}

void FindingsStrip::ShowCurrent() {
    const FindingRecord* const finding = Current();
    const QString explanation = finding ? toQString(m_model.ExplanationOf(*finding)) : QString();
    m_explanation->setText(explanation);
    m_explanation->setVisible(!explanation.isEmpty());
    const bool hasValues = finding && finding->fieldId != -1 && !finding->condition.empty();
    const bool hasRows = hasValues && m_drill.IsOffered();
    const bool isDismissed = finding && finding->dismissal;
    m_values->setVisible(hasValues);
    m_rows->setVisible(hasRows);
    m_dismiss->setVisible(finding != nullptr);
    m_dismiss->setText(isDismissed ? tr("restore") : tr("dismiss..."));
    m_dismiss->updateGeometry();
    m_valuesAction->setEnabled(hasValues);
    m_rowsAction->setEnabled(hasRows);
    m_dismissAction->setEnabled(finding != nullptr);
    m_dismissAction->setText(isDismissed ? tr("Re&store") : tr("Di&smiss..."));
}

ReportSubject FindingsStrip::SubjectOf(const FindingRecord& finding) const {
    ReportSubject field = m_subject;
    if (m_isOfField || finding.fieldId == -1)
        return field;
    field.selection.fieldId = finding.fieldId;
    field.selection.fieldName = finding.field;
    field.field.emplace();
    field.field->id = finding.fieldId;
    field.field->name = finding.field;
    return field;
}

// In a table, a finding about a field leads to the field.
void FindingsStrip::Activate() {
    const FindingRecord* const finding = Current();
    if (!finding || finding->fieldId == -1)
        return;
    if (m_isOfField)
        return finding->condition.empty() || !m_drill.IsOffered() ? ShowValues() : ShowRows();
    m_site.OpenField(m_subject.selection, finding->fieldId);
}

void FindingsStrip::ShowValues() {
    const FindingRecord* const finding = Current();
    if (!finding || finding->fieldId == -1 || finding->condition.empty())
        return;
    const int field = finding->fieldId;
    filterField(m_site, field, DistributionKind::Frequency, finding->condition);
    if (m_isOfField) {
        Q_EMIT TabRequested(ItemCode::Frequency);
        return;
    }
    m_site.GetTavixDoc().SetTab(ReportPaneKind::Field, m_site.GetMode(), kFrequencyTab);
    m_site.OpenField(m_subject.selection, field);
}

void FindingsStrip::ShowRows() {
    const FindingRecord* const finding = Current();
    if (finding && finding->fieldId != -1 && !finding->condition.empty())
        m_drill.OpenCondition(SubjectOf(*finding), finding->condition, finding->title(), finding->rows);
}

void FindingsStrip::ToggleDismissed() {
    m_model.ShowDismissed(!m_model.ShowsDismissed());
    ShowModel();
    SetOpen(true);
}

void FindingsStrip::DismissOrRestore() {
    const FindingRecord* const current = Current();
    const std::shared_ptr<PrViewer> session = m_site.GetTavixDoc().GetSession();
    if (!current || !session)
        return;
    // The list is read again while the dialog is open if another run is chosen.
    const FindingRecord finding = *current;
    Messages& messages = m_site.GetTavixDoc().GetMessages();
    const auto isDone = [&messages](const Status& done) {
        if (!done)
            messages.warn("Error occurred while changing a finding:\n\n" + done.error().text);
        return static_cast<bool>(done);
    };
    if (finding.dismissal) {
        if (isDone(FindingsModel::Restore(*session, finding)))
            Changed();
        return;
    }
    const QPointer<FindingsStrip> self(this);
    const auto store = [&](const std::string& reason) {
        return isDone(FindingsModel::Dismiss(*session, finding, loginName(), reason));
    };
    ModalDialog<CDismissDlg> dialog(toQString(finding.title()), toQString(finding.place()), store, window());
    const bool isDismissed = dialog.exec() == QDialog::Accepted;
    if (isDismissed && self && m_site.GetTavixDoc().GetSession() == session)
        Changed();
}

void FindingsStrip::Changed() {
    m_site.Broadcast(nullptr, RefreshHint::FindingsChanged, 0);
}

void FindingsStrip::ApplyColors() {
    m_explanation->setPalette(quietPalette(palette()));
}

void FindingsStrip::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        ApplyColors();
}

void FindingsStrip::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setPen(tint::line(palette()));
    painter.drawLine(0, height() - 1, width(), height() - 1);
}

} // namespace tavix
