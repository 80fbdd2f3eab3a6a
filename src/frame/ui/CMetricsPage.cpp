#include "frame/ui/CMetricsPage.h"

#include "base/ui/QtText.h"
#include "base/ui/RoomyDelegate.h"

#include <QGridLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QShortcut>
#include <QSignalBlocker>
#include <QVBoxLayout>

namespace tavix {

namespace {

constexpr int kGap = 12;

/// The row before which Qt inserts the moved one, counted before the move.
int targetRow(int row, int steps) {
    return steps > 0 ? row + steps + 1 : row + steps;
}

} // namespace

CMetricsPage::CMetricsPage(OptionsModel& model, QWidget* parent)
    : QWidget(parent),
      m_model(model),
      m_list(new QListWidget),
      m_count(new QLabel),
      m_up(new QPushButton(tr("Move &Up"))),
      m_down(new QPushButton(tr("Move &Down"))) {
    m_list->setObjectName(QStringLiteral("metrics"));
    m_list->setAccessibleName(tr("Metrics in the order in which they are shown"));
    m_list->setDragDropMode(QAbstractItemView::InternalMove);
    m_list->setDefaultDropAction(Qt::MoveAction);
    m_list->setItemDelegate(new RoomyDelegate(m_list));
    m_list->setAlternatingRowColors(true);
    m_list->setUniformItemSizes(true);
    for (int row = 0; row < m_model.RowCount(); ++row) {
        auto* item = new QListWidgetItem(toQString(m_model.Row(row).description), m_list);
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable | Qt::ItemIsDragEnabled);
        item->setCheckState(m_model.Row(row).shown ? Qt::Checked : Qt::Unchecked);
    }
    m_list->setCurrentRow(0);

    auto* label = new QLabel(tr("Sho&w these metrics, in this order:"));
    label->setBuddy(m_list);
    auto* hint = new QLabel(tr("Space shows or hides a metric. Alt+Up and Alt+Down move it, and so does the mouse."));
    hint->setWordWrap(true);
    hint->setForegroundRole(QPalette::PlaceholderText);
    auto* all = new QPushButton(tr("Show &All"));
    auto* none = new QPushButton(tr("Show &None"));
    m_up->setObjectName(QStringLiteral("moveUp"));
    m_down->setObjectName(QStringLiteral("moveDown"));
    all->setObjectName(QStringLiteral("showAll"));
    none->setObjectName(QStringLiteral("showNone"));
    m_count->setObjectName(QStringLiteral("shownCount"));
    m_count->setAlignment(Qt::AlignHCenter);

    auto* buttons = new QVBoxLayout;
    buttons->setSpacing(kGap / 2);
    buttons->addWidget(m_up);
    buttons->addWidget(m_down);
    buttons->addSpacing(kGap);
    buttons->addWidget(all);
    buttons->addWidget(none);
    buttons->addSpacing(kGap);
    buttons->addWidget(m_count);
    buttons->addStretch();
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(kGap, kGap, kGap, kGap);
    grid->setHorizontalSpacing(kGap);
    grid->addWidget(label, 0, 0, 1, 2);
    grid->addWidget(m_list, 1, 0);
    grid->addLayout(buttons, 1, 1);
    grid->addWidget(hint, 2, 0, 1, 2);

    for (const auto& [key, steps] : {std::pair(Qt::Key_Up, -1), {Qt::Key_Down, 1}}) {
        auto* shortcut = new QShortcut(QKeySequence(Qt::ALT | key), m_list);
        shortcut->setContext(Qt::WidgetShortcut);
        connect(shortcut, &QShortcut::activated, this, [this, way = steps] { MoveCurrent(way); });
    }
    connect(m_up, &QPushButton::clicked, this, [this] { MoveCurrent(-1); });
    connect(m_down, &QPushButton::clicked, this, [this] { MoveCurrent(1); });
    connect(all, &QPushButton::clicked, this, [this] { ShowAll(true); });
    connect(none, &QPushButton::clicked, this, [this] { ShowAll(false); });
    connect(m_list, &QListWidget::currentRowChanged, this, &CMetricsPage::Update);
    connect(m_list, &QListWidget::itemChanged, this, [this](const QListWidgetItem* item) {
        m_model.SetShown(m_list->row(item), item->checkState() == Qt::Checked);
        Update();
    });
    connect(m_list->model(), &QAbstractItemModel::rowsMoved, this,
            [this](const QModelIndex&, int from, int, const QModelIndex&, int before) {
                RowMoved(from, before > from ? before - 1 : before);
            });
    Update();
}

void CMetricsPage::MoveCurrent(int steps) {
    const int row = m_list->currentRow();
    if (m_model.CanMove(row, steps))
        m_list->model()->moveRow({}, row, {}, targetRow(row, steps));
}

void CMetricsPage::RowMoved(int from, int to) {
    m_model.Move(from, to - from);
    m_list->scrollToItem(m_list->item(to));
    Update();
}

void CMetricsPage::ShowAll(bool shown) {
    m_model.ShowAll(shown);
    const QSignalBlocker quiet(m_list);
    for (int row = 0; row < m_list->count(); ++row)
        m_list->item(row)->setCheckState(shown ? Qt::Checked : Qt::Unchecked);
    m_list->viewport()->update();
    Update();
}

void CMetricsPage::Update() {
    const int row = m_list->currentRow();
    m_up->setEnabled(m_model.CanMove(row, -1));
    m_down->setEnabled(m_model.CanMove(row, 1));
    m_count->setText(tr("%1 of %2 shown").arg(m_model.ShownCount()).arg(m_model.RowCount()));
}

} // namespace tavix
