#include "tabs/ui/CListTab.h"

#include "base/ui/QtText.h"
#include "base/ui/QuietPalette.h"
#include "base/ui/Theme.h"
#include "doc/CTavixDoc.h"
#include "grid/ui/CUGCtrl.h"
#include "settings/Settings.h"
#include "tabs/ui/PicturePane.h"
#include "tabs/ui/PictureSplit.h"

#include <QAbstractButton>
#include <QEvent>
#include <QLabel>
#include <QSplitter>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace tavix {

namespace {

constexpr int kMargin = 12;
constexpr int kBaseGap = 5;

} // namespace

CListTab::CListTab(std::string_view name, CViewSite& site, const ReportSubject& subject, bool isTornOff,
                   QWidget* parent)
    : CProfTab(site, subject, isTornOff, parent),
      m_stack(new QStackedWidget(this)),
      m_grid(new CUGCtrl(this)),
      m_note(new QLabel(this)),
      m_base(new QLabel(this)) {
    setObjectName(toQString(name).toLower().remove(u' '));
    m_grid->setAccessibleName(toQString(name));
    m_note->setObjectName(QStringLiteral("note"));
    // The note may quote data, which must not be interpreted as markup.
    m_note->setTextFormat(Qt::PlainText);
    m_note->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_note->setAlignment(Qt::AlignCenter);
    m_note->setWordWrap(true);
    m_note->setMargin(kMargin);
    m_base->setObjectName(QStringLiteral("listBase"));
    m_base->setTextFormat(Qt::PlainText);
    m_base->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_base->setContentsMargins(kMargin, kBaseGap, kMargin, kBaseGap);
    m_base->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_base->setPalette(quietPalette(palette()));
    m_base->hide();
    m_stack->addWidget(m_grid);
    m_stack->addWidget(m_note);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_base);
    layout->addWidget(m_stack, 1);
}

void CListTab::AddAbove(QWidget& widget) {
    static_cast<QVBoxLayout*>(layout())->insertWidget(0, &widget);
    const QList<QWidget*> inside = widget.findChildren<QWidget*>();
    if (!inside.isEmpty())
        setTabOrder(inside.back(), m_grid);
}

void CListTab::AddFooter(QWidget& line) {
    layout()->addWidget(&line);
    QWidget* before = m_grid;
    for (QAbstractButton* button : line.findChildren<QAbstractButton*>()) {
        setTabOrder(before, button);
        before = button;
    }
}

void CListTab::AddBelow(QWidget& widget, QWidget* last) {
    auto* splitter = new QSplitter(Qt::Vertical, this);
    splitter->setChildrenCollapsible(false);
    splitter->setHandleWidth(1);
    delete layout()->replaceWidget(m_stack, splitter); // the item, not the widget
    splitter->addWidget(m_stack);
    splitter->addWidget(&widget);
    splitter->setStretchFactor(0, 3);
    splitter->setStretchFactor(1, 2);
    static_cast<QVBoxLayout*>(layout())->setStretchFactor(splitter, 1);
    m_below = &widget;
    m_lastBelow = last;
}

void CListTab::AddBeside(PicturePane& picture) {
    m_picture = &picture;
    m_split = new PictureSplit(Site().GetTavixDoc().GetSettings(), *m_grid, picture, this);
    delete layout()->replaceWidget(m_stack, m_split); // the item, not the widget
    m_split->insertWidget(0, m_stack);
    static_cast<QVBoxLayout*>(layout())->setStretchFactor(m_split, 1);
    connect(&picture, &PicturePane::TabRequested, this, &CListTab::TabRequested);
}

// The grid must not fetch rows while they are being destroyed.
CListTab::~CListTab() {
    m_grid->SetSource(nullptr);
}

QWidget* CListTab::GetLastTabStop() {
    if (m_stack->currentWidget() != m_grid)
        return nullptr;
    if (m_picture && m_picture->isVisibleTo(this))
        return m_picture->GetLastTabStop();
    return m_lastBelow ? m_lastBelow : m_grid;
}

QWidget* CListTab::GetMainControl() {
    return m_stack->currentWidget() == m_grid ? m_grid : nullptr;
}

void CListTab::TakeRows(std::unique_ptr<ListRows> rows) {
    m_grid->SetSource(rows.get());
    m_rows = std::move(rows);
}

bool CListTab::RefillsOn(RefreshHint hint) const {
    return hint == RefreshHint::DocumentReset || hint == RefreshHint::RunLoaded || hint == RefreshHint::OptionsChanged;
}

std::string obstacleOfCollection(const ReportSubject& subject, std::string_view what) {
    if (subject.table.id != -1)
        return {};
    return "A collection has no " + std::string(what) + " of its own; its tables may have some.";
}

void CListTab::Fill(bool isSameObject) {
    if (!m_rows)
        return;
    CTavixDoc& document = Site().GetTavixDoc();
    const std::shared_ptr<PrViewer> session = document.GetSession();
    PrViewer* viewer = session.get();
    PrepareFill();
    const std::string obstacle = viewer ? GetObstacle() : std::string();
    bool failed = false;
    {
        const std::unique_ptr<Messages::Busy> busy = document.GetMessages().busy();
        if (!viewer || !obstacle.empty())
            m_rows->Clear();
        else
            failed = !FillRows(*viewer);
    }
    if (failed) {
        WarnSoon(m_rows->GetErrorText());
        if (isSameObject)
            return;
    }
    const std::string note = failed ? m_rows->GetErrorText() : obstacle;
    if (failed)
        m_rows->Clear();
    const std::int64_t current = isSameObject ? m_grid->GetCurrentRow() : -1;
    m_grid->setFont(toQFont(readStatFont(document.GetSettings()), font()));
    if (isSameObject)
        m_grid->RowsRefilled();
    else
        m_grid->SourceChanged();
    m_grid->SelectRow(current);
    if (m_picture)
        m_picture->Refill();
    ShowNote(!note.empty() || !viewer ? note : m_rows->GetEmptyText());
    ShowBase(note.empty() && viewer ? m_rows->GetBase() : ListBase());
    RowsChanged();
}

void CListTab::ShowBase(const ListBase& base) {
    m_base->setText(toQString(base.text));
    m_base->setToolTip(base.toolTip.empty() ? QString()
                                            : QStringLiteral("<p>%1</p>").arg(toQString(base.toolTip).toHtmlEscaped()));
    m_base->setAccessibleDescription(toQString(base.toolTip));
    m_base->setVisible(!base.text.empty());
}

void CListTab::changeEvent(QEvent* event) {
    CProfTab::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        m_base->setPalette(quietPalette(palette()));
}

void CListTab::ShowNote(const std::string& note) {
    m_note->setText(toQString(note));
    m_stack->setCurrentWidget(note.empty() ? static_cast<QWidget*>(m_grid) : m_note);
    if (m_below)
        m_below->setVisible(note.empty());
    if (m_split)
        m_split->SetOffered(note.empty());
}

} // namespace tavix
