#include "tabs/ui/PicturePane.h"

#include "access/PrViewer.h"
#include "base/ui/QtText.h"
#include "base/ui/QuietPalette.h"
#include "base/ui/Theme.h"
#include "chart/ui/DrawingWidget.h"
#include "doc/CTavixDoc.h"
#include "tabs/PictureWidth.h"
#include "tabs/ui/CProfTab.h"
#include "tabs/ui/FieldFilter.h"

#include <QEvent>
#include <QGridLayout>
#include <QLabel>
#include <QPainter>
#include <QPixmap>
#include <QScopedValueRollback>
#include <QToolButton>

#include <utility>

namespace tavix {

namespace {

constexpr int kIcon = 14;

/// An arrow to the edge that the pane closes towards, or away from it.
QIcon arrow(const QColor& color, bool toRight, double scale) {
    QPixmap pixmap(QSize(kIcon, kIcon) * scale);
    pixmap.setDevicePixelRatio(scale);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(color, 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    const double tip = toRight ? 9 : 5;
    const double back = toRight ? 5 : 9;
    painter.drawPolyline(QPolygonF{{back, 3}, {tip, 7}, {back, 11}});
    painter.end();
    return QIcon(pixmap);
}

} // namespace

PicturePane::PicturePane(CViewSite& site, const ReportSubject& subject, CProfTab& tab, Read read, DrillOrigin origin)
    : QWidget(&tab),
      m_site(site),
      m_subject(subject),
      m_read(std::move(read)),
      m_drill(site, tab),
      m_origin(origin),
      m_title(new QLabel(this)),
      m_toggle(new QToolButton(this)),
      m_drawing(new DrawingWidget(this)),
      m_note(new QLabel(this)) {
    setObjectName(QStringLiteral("picturePane"));
    setBackgroundRole(QPalette::Base);
    setAutoFillBackground(true);
    m_title->setTextFormat(Qt::PlainText);
    m_title->setObjectName(QStringLiteral("pictureTitle"));
    m_title->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_toggle->setObjectName(QStringLiteral("pictureToggle"));
    m_toggle->setAutoRaise(true);
    m_toggle->setIconSize(QSize(kIcon, kIcon));
    m_toggle->setFocusPolicy(Qt::TabFocus);
    m_note->setObjectName(QStringLiteral("pictureNote"));
    m_note->setTextFormat(Qt::PlainText);
    m_note->setAlignment(Qt::AlignCenter);
    m_note->setWordWrap(true);
    m_note->setMargin(16);
    auto* layout = new QGridLayout(this);
    layout->setContentsMargins(0, 2, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_title, 0, 0);
    layout->addWidget(m_toggle, 0, 1, Qt::AlignTop);
    layout->addWidget(m_drawing, 1, 0, 1, 2);
    layout->addWidget(m_note, 1, 0, 1, 2);
    layout->setColumnStretch(0, 1);
    layout->setRowStretch(1, 1);
    m_note->hide();
    connect(m_toggle, &QToolButton::clicked, this, &PicturePane::ToggleClicked);
    connect(m_drawing, &DrawingWidget::ActionRequested, this, &PicturePane::Act);
    ShowFont();
    ShowToggle();
}

void PicturePane::SetOpen(bool isOpen) {
    if (isOpen == m_isOpen)
        return;
    m_isOpen = isOpen;
    m_title->setVisible(isOpen);
    m_drawing->setVisible(isOpen && m_note->text().isEmpty());
    m_note->setVisible(isOpen && !m_note->text().isEmpty());
    ShowToggle();
    FillIfSeen();
}

void PicturePane::ShowToggle() {
    const QString name = m_isOpen ? tr("Hide Picture") : tr("Show Picture");
    m_toggle->setAccessibleName(name);
    m_toggle->setToolTip(name);
    m_toggle->setIcon(arrow(quietText(palette()), m_isOpen, devicePixelRatioF()));
}

void PicturePane::ShowFont() {
    QFont strong = font();
    strong.setWeight(QFont::DemiBold);
    m_title->setFont(strong);
    m_title->setContentsMargins(12, 6, 4, 4);
    m_note->setPalette(quietPalette(palette()));
}

void PicturePane::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    const bool isStyle = event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange;
    if (!isStyle || m_isStyling)
        return;
    const QScopedValueRollback<bool> styling(m_isStyling, true);
    ShowFont();
    ShowToggle();
}

void PicturePane::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    FillIfSeen();
}

void PicturePane::Refill() {
    m_isStale = true;
    FillIfSeen();
}

void PicturePane::FillIfSeen() {
    if (!m_isStale || !m_isOpen || !isVisible())
        return;
    m_isStale = false;
    chart::FieldPicture shown;
    const std::shared_ptr<PrViewer> viewer = m_site.GetTavixDoc().GetSession();
    if (viewer && m_subject.field) {
        auto read = m_read(*viewer, *m_subject.field);
        if (read)
            shown = std::move(*read);
        else
            shown.note = read.error().text;
    }
    QString title = shown.picture ? toQString(shown.picture->title()) : QString();
    if (shown.picture && !shown.base.empty())
        title += toQString(kOverFits);
    m_title->setText(title);
    m_title->setToolTip(toQString(shown.base));
    m_note->setText(toQString(shown.note));
    m_note->setVisible(!shown.note.empty());
    m_drawing->setVisible(shown.note.empty());
    m_drawing->SetPicture(std::move(shown.picture));
}

QWidget* PicturePane::GetLastTabStop() const {
    return m_drawing->isVisibleTo(this) ? static_cast<QWidget*>(m_drawing) : m_toggle;
}

void PicturePane::Act(const chart::Action& action) {
    if (!m_subject.field)
        return;
    switch (action.kind) {
    case chart::ActionKind::DrillValue:
        return m_drill.OpenValue(m_subject, action.text, m_origin);
    case chart::ActionKind::DrillPattern:
        return m_drill.OpenPattern(m_subject, action.text);
    case chart::ActionKind::FilterValues:
        return Filter(DistributionKind::Frequency, action.text.str());
    case chart::ActionKind::FilterPatterns:
        return Filter(DistributionKind::Pattern, action.text.str());
    case chart::ActionKind::None:
        break;
    }
}

void PicturePane::Filter(DistributionKind kind, const std::string& code) {
    filterField(m_site, m_subject.field->id, kind, code);
    Q_EMIT TabRequested(kind == DistributionKind::Frequency ? ItemCode::Frequency : ItemCode::Patterns);
}

} // namespace tavix
