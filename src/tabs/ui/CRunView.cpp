#include "tabs/ui/CRunView.h"

#include "access/PrViewer.h"
#include "base/GenException.h"
#include "base/NumberText.h"
#include "base/ui/ElidedLabel.h"
#include "base/ui/QtText.h"
#include "base/ui/QuietPalette.h"
#include "doc/CTavixDoc.h"
#include "grid/StoredColumns.h"
#include "grid/ui/CUGCtrl.h"
#include "settings/Settings.h"
#include "tabs/ui/CSuggestDlg.h"
#include "tabs/ui/LinkButton.h"
#include "tabs/ui/OverviewCardButton.h"

#include <QEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QScrollArea>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace tavix {

namespace {

constexpr int kMargin = 12;
constexpr int kGap = 10;
constexpr int kCardRoom = 140;   // a row has as many cards as have this width
constexpr int kTwoColumns = 760; // from this width on, lists are side by side
constexpr int kLeastListHeight = 172;

/// By which the settings know the lists, in their order.
constexpr std::array<int, RunOverviewModel::ListCount> kStoredNumbers{0, 1, 4, 2, 3};

QLabel* plainLabel(QWidget* parent, const char* name) {
    auto* label = new QLabel(parent);
    label->setObjectName(QLatin1String(name));
    // Names come from the data.
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    return label;
}

} // namespace

CRunView::CRunView(CViewSite& site, QWidget* parent)
    : QWidget(parent),
      m_site(site),
      m_title(new ElidedLabel(this)),
      m_detail(plainLabel(this, "viewDetail")),
      m_area(new QScrollArea(this)),
      m_contents(new QWidget),
      m_cardGrid(new QGridLayout),
      m_listGrid(new QGridLayout) {
    setObjectName(QStringLiteral("runView"));
    m_title->setObjectName(QStringLiteral("viewTitle"));
    m_title->setTextInteractionFlags(Qt::TextSelectableByMouse);
    QFont titleFont = font();
    titleFont.setPointSizeF(titleFont.pointSizeF() * 1.35);
    titleFont.setWeight(QFont::DemiBold);
    m_title->setFont(titleFont);
    m_detail->setWordWrap(true);

    m_contents->setBackgroundRole(QPalette::Base);
    m_cardGrid->setSpacing(kGap);
    m_listGrid->setSpacing(kGap);
    m_listGrid->setVerticalSpacing(kGap + 4);
    auto* contents = new QVBoxLayout(m_contents);
    contents->setContentsMargins(kMargin, 4, kMargin, kMargin);
    contents->setSpacing(kGap + 4);
    contents->addLayout(m_cardGrid);
    contents->addLayout(m_listGrid, 1);
    for (int i = 0; i < RunOverviewModel::ListCount; ++i)
        m_lists.at(static_cast<std::size_t>(i)) = MakeList(i);
    m_area->setWidget(m_contents);
    m_area->setWidgetResizable(true);
    m_area->setFrameShape(QFrame::NoFrame);
    m_area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_area->setFocusPolicy(Qt::NoFocus);
    m_area->viewport()->setBackgroundRole(QPalette::Base);

    auto* head = new QVBoxLayout;
    head->setContentsMargins(kMargin, 8, kMargin, 4);
    head->setSpacing(1);
    m_suggest = new LinkButton(this);
    m_suggest->setObjectName(QStringLiteral("suggestRules"));
    m_suggest->setText(tr("suggest rules..."));
    m_suggest->setToolTip(tr("Rules that the figures of the runs suggest, as a job file"));
    connect(m_suggest, &QPushButton::clicked, this,
            [this] { CSuggestDlg::Show(m_site, -1, toQString(m_site.GetTavixDoc().GetTitle()), *window()); });
    auto* first = new QHBoxLayout;
    first->setSpacing(kMargin);
    first->addWidget(m_title, 1);
    first->addWidget(m_suggest);
    head->addLayout(first);
    head->addWidget(m_detail);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(head);
    layout->addWidget(m_area, 1);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Base); // with all labels in place, since it changes the palette
    ApplyDisplay();
    ApplyColors();
}

// The grids must not fetch rows while they are being destroyed.
CRunView::~CRunView() {
    for (const ListPane& list : m_lists)
        list.grid->SetSource(nullptr);
}

CRunView::ListPane CRunView::MakeList(int index) {
    ListPane list{};
    const OverviewList& rows = m_model.GetList(index);
    list.pane = new QWidget(m_contents);
    list.title = plainLabel(list.pane, "listTitle");
    QFont bold = font();
    bold.setWeight(QFont::DemiBold);
    list.title->setFont(bold);
    list.stack = new QStackedWidget(list.pane);
    list.grid = new CUGCtrl(list.stack);
    list.grid->setAccessibleName(toQString(rows.GetName()));
    list.grid->SetColumnMemory(std::make_unique<StoredColumns>(
        m_site.GetTavixDoc().GetSettings(),
        "overview" + formatInteger(kStoredNumbers.at(static_cast<std::size_t>(index)))));
    list.note = new QLabel(list.stack);
    list.note->setTextFormat(Qt::PlainText);
    list.note->setAlignment(Qt::AlignCenter);
    list.note->setWordWrap(true);
    list.stack->addWidget(list.grid);
    list.stack->addWidget(list.note);
    list.pane->setMinimumHeight(kLeastListHeight);
    auto* layout = new QVBoxLayout(list.pane);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    layout->addWidget(list.title);
    layout->addWidget(list.stack, 1);
    connect(list.grid, &CUGCtrl::RowActivated, this,
            [this, index](qint64 row) { Q_EMIT DoorOpened(m_model.GetList(index).GetDoor(row)); });
    return list;
}

bool CRunView::ShowRun(int source) {
    const CTavixDoc& document = m_site.GetTavixDoc();
    PrViewer* viewer = document.GetViewer();
    if (!viewer)
        return false;
    if (m_run == document.GetCurrentJob()) {
        m_model.ShowSource(source);
    } else {
        try {
            const auto busy = document.GetMessages().busy();
            m_model.Fill(readRunOverview(*viewer, document.GetJobId()), document.GetTitle(), source);
        } catch (const GenException& failure) {
            m_run = -1;
            m_site.WarnSoon("The overview of the run cannot be read:\n\n" + failure.getText().str());
            return false;
        }
        m_run = document.GetCurrentJob();
    }
    ShowModel();
    return true;
}

void CRunView::ShowModel() {
    m_title->setText(toQString(m_model.GetTitle()));
    m_detail->setText(toQString(m_model.GetDetail()));
    const std::vector<OverviewCard>& cards = m_model.GetCards();
    while (m_cards.size() < cards.size()) {
        auto* card = new OverviewCardButton(m_contents);
        connect(card, &QAbstractButton::clicked, this, [this, card] { Q_EMIT DoorOpened(card->GetDoor()); });
        m_cards.push_back(card);
        // Before the lists in the tab order.
        setTabOrder(card, m_lists.front().grid);
    }
    for (std::size_t i = 0; i < cards.size(); ++i)
        m_cards[i]->ShowCard(cards[i]);
    for (int i = 0; i < RunOverviewModel::ListCount; ++i) {
        const ListPane& list = m_lists.at(static_cast<std::size_t>(i));
        OverviewList& rows = m_model.GetList(i);
        list.title->setText(toQString(rows.GetTitle()));
        list.note->setText(toQString(rows.GetEmptyText()));
        list.grid->SetSource(&rows);
        list.stack->setCurrentWidget(rows.GetRowCount() > 0 ? static_cast<QWidget*>(list.grid) : list.note);
    }
    m_cardColumns = 0;
    LayOut();
}

// As many cards in a row as have room, the last one up to the end of its row; lists side by side where both can be
// read. Findings name a field with its table and have a row of their own.
void CRunView::LayOut() {
    const int count = static_cast<int>(m_cards.size());
    const int room = std::max(1, (width() - 2 * kMargin + kGap) / (kCardRoom + kGap));
    int columns = std::clamp(room, 1, std::max(count, 1));
    if (columns < count)
        columns = (count + (count + columns - 1) / columns - 1) / ((count + columns - 1) / columns);
    if (columns != m_cardColumns) {
        m_cardColumns = columns;
        for (int i = 0; i < count; ++i)
            m_cardGrid->addWidget(m_cards[static_cast<std::size_t>(i)], i / columns, i % columns, 1,
                                  i + 1 == count ? columns - i % columns : 1);
        for (int i = 0; i < count; ++i)
            m_cardGrid->setColumnStretch(i, i < columns ? 1 : 0);
    }
    const int listColumns = width() >= kTwoColumns ? 2 : 1;
    if (listColumns == m_listColumns)
        return;
    m_listColumns = listColumns;
    for (int i = 0; i < RunOverviewModel::ListCount; ++i) {
        const int place = i + (i > RunOverviewModel::Findings ? listColumns - 1 : 0);
        m_listGrid->addWidget(m_lists.at(static_cast<std::size_t>(i)).pane, place / listColumns, place % listColumns, 1,
                              i == RunOverviewModel::Findings ? listColumns : 1);
    }
    for (int i = 0; i < RunOverviewModel::ListCount; ++i)
        m_listGrid->setColumnStretch(i, i < listColumns ? 1 : 0);
}

void CRunView::ApplyDisplay() {
    const bool showsInvisible = readFlag(m_site.GetTavixDoc().GetSettings(), Setting::ShowInvisible);
    for (const ListPane& list : m_lists)
        list.grid->SetShowsInvisible(showsInvisible);
}

QWidget* CRunView::GetLastTabStop() {
    for (auto list = m_lists.rbegin(); list != m_lists.rend(); ++list) {
        if (list->stack->currentWidget() == list->grid)
            return list->grid;
    }
    for (auto card = m_cards.rbegin(); card != m_cards.rend(); ++card) {
        if ((*card)->focusPolicy() != Qt::NoFocus)
            return *card;
    }
    return nullptr;
}

void CRunView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    LayOut();
}

void CRunView::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        ApplyColors();
}

void CRunView::ApplyColors() {
    const QPalette quiet = quietPalette(palette());
    m_detail->setPalette(quiet);
    for (const ListPane& list : m_lists)
        list.note->setPalette(quiet);
}

} // namespace tavix
