#include "tabs/ui/TypesPane.h"

#include "access/PrViewer.h"
#include "base/ui/QtText.h"
#include "base/ui/QuietPalette.h"
#include "doc/CTavixDoc.h"
#include "grid/ui/CUGCtrl.h"
#include "grid/ui/Tints.h"
#include "tabs/ui/CProfTab.h"
#include "tabs/ui/FieldFilter.h"
#include "tabs/ui/LinkButton.h"

#include <QAction>
#include <QEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QLabel>
#include <QPainter>
#include <QVBoxLayout>

#include <algorithm>

namespace tavix {

namespace {

constexpr int kMargin = 12;
constexpr int kGap = 5;
constexpr int kLeastRows = 2;
constexpr int kMostRows = 5; // of a list; more scroll

QLabel* plainLabel(QWidget* parent, const char* name) {
    auto* label = new QLabel(parent);
    label->setObjectName(QLatin1String(name));
    // Values come from the data.
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label->setWordWrap(true);
    return label;
}

} // namespace

TypesPane::TypesPane(CViewSite& site, const ReportSubject& subject, CProfTab& tab)
    : QWidget(&tab),
      m_site(site),
      m_subject(subject),
      m_drill(site, tab),
      m_text(plainLabel(this, "typesText")),
      m_remark(plainLabel(this, "typesRemark")),
      m_lists(new QWidget(this)),
      m_misfitSide(new QWidget(m_lists)),
      m_misfitHeading(new QLabel(m_misfitSide)),
      m_showMisfits(new LinkButton(m_misfitSide)),
      m_forms(new CUGCtrl(m_lists)),
      m_misfits(new CUGCtrl(m_misfitSide)) {
    setObjectName(QStringLiteral("typesPane"));
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Base);
    m_forms->setObjectName(QStringLiteral("forms"));
    m_forms->setAccessibleName(tr("Forms of the values"));
    m_misfits->setObjectName(QStringLiteral("misfits"));
    m_misfits->setAccessibleName(tr("Values that do not fit"));
    m_misfitHeading->setTextFormat(Qt::PlainText);
    m_misfitHeading->setObjectName(QStringLiteral("misfitHeading"));
    m_showMisfits->setObjectName(QStringLiteral("showMisfits"));
    m_showMisfits->setText(tr("show them all"));
    m_showMisfits->setAccessibleName(tr("Show all values that do not fit in the frequency distribution"));
    m_showMisfits->setToolTip(m_showMisfits->accessibleName());

    m_drillForm = m_drill.MakeAction();
    m_forms->addAction(m_drillForm);
    connect(m_drillForm, &QAction::triggered, this, &TypesPane::OpenForm);
    m_filterForm = AddAction(*m_forms, tr("&Show These Values"), &TypesPane::FilterToForm);
    m_drillMisfit = m_drill.MakeAction();
    m_misfits->addAction(m_drillMisfit);
    connect(m_drillMisfit, &QAction::triggered, this, &TypesPane::OpenMisfit);
    m_drillMisfits = AddAction(*m_misfits, tr("Drill Through All That Do Not &Fit"), &TypesPane::OpenMisfits);
    m_filterMisfits = AddAction(*m_misfits, tr("&Show All Values That Do Not Fit"), &TypesPane::FilterToMisfits);

    auto* heading = new QHBoxLayout;
    heading->setContentsMargins(kMargin, 0, kMargin, kGap);
    heading->setSpacing(kMargin);
    heading->addWidget(m_misfitHeading);
    heading->addWidget(m_showMisfits);
    heading->addStretch(1);
    auto* side = new QVBoxLayout(m_misfitSide);
    side->setContentsMargins(0, 0, 0, 0);
    side->setSpacing(0);
    side->addLayout(heading);
    side->addWidget(m_misfits, 1);
    auto* lists = new QHBoxLayout(m_lists);
    lists->setContentsMargins(0, 0, 0, 0);
    lists->setSpacing(1);
    lists->addWidget(m_forms, 3);
    lists->addWidget(m_misfitSide, 2);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 1, 0, 0);
    layout->setSpacing(0);
    m_text->setContentsMargins(kMargin, kGap + 1, kMargin, kGap);
    m_remark->setContentsMargins(kMargin, 0, kMargin, kGap);
    layout->addWidget(m_text);
    layout->addWidget(m_remark);
    layout->addWidget(m_lists);

    connect(m_forms, &CUGCtrl::RowActivated, this, &TypesPane::OpenForm);
    connect(m_misfits, &CUGCtrl::RowActivated, this, &TypesPane::OpenMisfit);
    connect(m_showMisfits, &QPushButton::clicked, this, &TypesPane::FilterToMisfits);
    for (CUGCtrl* grid : {m_forms, m_misfits})
        connect(grid->selectionModel(), &QItemSelectionModel::currentChanged, this, &TypesPane::ShowActions);
    m_forms->SetSource(&m_model.GetForms());
    m_misfits->SetSource(&m_model.GetMisfits());
    ApplyColors();
    hide();
}

// The grids must not fetch rows while they are being destroyed.
TypesPane::~TypesPane() {
    for (CUGCtrl* grid : {m_forms, m_misfits}) {
        disconnect(grid->selectionModel(), nullptr, this, nullptr);
        grid->SetSource(nullptr);
    }
}

QAction* TypesPane::AddAction(CUGCtrl& grid, const QString& text, void (TypesPane::*act)()) {
    auto* action = new QAction(text, this);
    grid.addAction(action);
    connect(action, &QAction::triggered, this, act);
    return action;
}

void TypesPane::Refill() {
    const std::shared_ptr<PrViewer> viewer = m_site.GetTavixDoc().GetSession();
    m_model.Clear();
    if (viewer && m_subject.field) {
        if (const Status read = m_model.Fill(*viewer, *m_subject.field); !read)
            m_site.WarnSoon("Error occurred while reading the types of the values:\n\n" + read.error().text);
    }
    ShowModel();
}

void TypesPane::SetListFont(const QFont& font) {
    m_forms->setFont(font);
    m_misfits->setFont(font);
}

void TypesPane::ShowModel() {
    m_text->setText(toQString(m_model.GetText()));
    m_remark->setText(toQString(m_model.GetRemark()));
    m_remark->setVisible(!m_model.GetRemark().empty());
    m_misfitHeading->setText(toQString(m_model.GetMisfitHeading()));
    m_misfitSide->setVisible(!m_model.GetMisfitCondition().empty());
    m_misfits->setVisible(m_model.HasMisfits());
    m_lists->setVisible(m_model.HasForms());
    m_forms->SourceChanged();
    m_misfits->SourceChanged();
    // As high as the longer list needs, so that the metrics above keep their room.
    const auto longest = std::max(m_model.GetForms().GetRowCount(), m_model.GetMisfits().GetRowCount());
    const int rows = std::clamp(static_cast<int>(longest), kLeastRows, kMostRows);
    const int heading = m_misfitHeading->sizeHint().height() + kGap;
    m_lists->setFixedHeight(heading + m_forms->horizontalHeader()->sizeHint().height() +
                            rows * m_forms->verticalHeader()->defaultSectionSize() + 2);
    setVisible(!m_model.GetText().empty());
    ShowActions();
}

QWidget* TypesPane::GetLastTabStop() const {
    if (!isVisibleTo(parentWidget()) || m_lists->isHidden())
        return nullptr;
    if (m_misfitSide->isHidden())
        return m_forms;
    return m_misfits->isHidden() ? static_cast<QWidget*>(m_showMisfits) : m_misfits;
}

std::string TypesPane::CurrentForm() const {
    const std::int64_t row = m_forms->GetCurrentRow();
    return row >= 0 && row < m_model.GetForms().GetRowCount() ? m_model.GetForms().GetCondition(row) : std::string();
}

std::optional<KvbString> TypesPane::CurrentMisfit() const {
    const std::int64_t row = m_misfits->GetCurrentRow();
    return row >= 0 && row < m_model.GetMisfits().GetRowCount() ? m_model.GetMisfits().GetValue(row) : std::nullopt;
}

void TypesPane::ShowActions() {
    m_filterForm->setEnabled(!CurrentForm().empty());
    m_drillForm->setEnabled(m_drill.IsOffered() && !CurrentForm().empty());
    m_drillMisfits->setEnabled(m_drill.IsOffered() && !m_model.GetMisfitCondition().empty());
    m_drillMisfit->setEnabled(m_drill.IsOffered() && CurrentMisfit().has_value());
    m_filterMisfits->setEnabled(!m_model.GetMisfitCondition().empty());
}

void TypesPane::OpenMisfit() {
    if (const auto value = CurrentMisfit())
        m_drill.OpenValue(m_subject, *value, DrillOrigin::Frequency);
    else if (m_misfits->GetCurrentRow() >= 0)
        FilterToMisfits();
}

void TypesPane::OpenForm() {
    const std::string condition = CurrentForm();
    if (condition.empty())
        return;
    const FieldBreakdown::Form& form = m_model.GetForms().GetForm(m_forms->GetCurrentRow());
    m_drill.OpenCondition(m_subject, condition, form.form, form.rows);
}

void TypesPane::OpenMisfits() {
    m_drill.OpenCondition(m_subject, m_model.GetMisfitCondition(), m_model.GetMisfitHeading(), m_model.GetMisfitRows());
}

void TypesPane::FilterToForm() {
    Filter(CurrentForm());
}

void TypesPane::FilterToMisfits() {
    Filter(m_model.GetMisfitCondition());
}

void TypesPane::Filter(const std::string& code) {
    if (!m_subject.field || code.empty())
        return;
    filterField(m_site, m_subject.field->id, DistributionKind::Frequency, code);
    Q_EMIT TabRequested(ItemCode::Frequency);
}

void TypesPane::ApplyColors() {
    m_remark->setPalette(quietPalette(palette()));
}

void TypesPane::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        ApplyColors();
}

void TypesPane::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setPen(tint::line(palette()));
    painter.drawLine(0, 0, width(), 0);
}

} // namespace tavix
