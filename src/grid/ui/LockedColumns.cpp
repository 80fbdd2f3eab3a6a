#include "grid/ui/LockedColumns.h"

#include "grid/ui/GridModel.h"
#include "grid/ui/Tints.h"

#include <QFrame>
#include <QHeaderView>
#include <QScrollBar>

namespace tavix {

namespace {

// Columns at the right edge take at most this share of the grid.
constexpr double kMostAtRight = 0.45;

} // namespace

LockedColumns::LockedColumns(QTableView& grid, const GridModel& model, Edge edge)
    : QObject(&grid), m_grid(grid), m_model(model), m_edge(edge) {}

QTableView& LockedColumns::MakeView() {
    m_view = new QTableView(&m_grid);
    m_view->setModel(m_grid.model());
    m_view->setSelectionModel(m_grid.selectionModel());
    m_view->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_view->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_view->setHorizontalScrollMode(QTableView::ScrollPerPixel);
    m_view->setFocusProxy(&m_grid);
    m_view->setContextMenuPolicy(Qt::CustomContextMenu);
    const bool isLeft = m_edge == Edge::Left;
    m_view->setObjectName(isLeft ? QStringLiteral("lockedColumns") : QStringLiteral("pinnedColumns"));
    m_view->setAccessibleName(isLeft ? QStringLiteral("Locked columns") : QStringLiteral("Columns at the right edge"));
    if (!isLeft) {
        // The columns below it are cut anywhere.
        m_border = new QFrame(m_view);
        m_border->setAutoFillBackground(true);
    }
    m_view->hide();
    m_grid.viewport()->stackUnder(m_view);
    connect(m_view->verticalScrollBar(), &QScrollBar::valueChanged, m_grid.verticalScrollBar(), &QScrollBar::setValue);
    connect(m_grid.verticalScrollBar(), &QScrollBar::valueChanged, m_view->verticalScrollBar(), &QScrollBar::setValue);
    return *m_view;
}

int LockedColumns::Count() const {
    const int columns = m_model.columnCount();
    int count = 0;
    if (m_edge == Edge::Left) {
        while (count < columns && m_model.source()->GetColumn(count).locked)
            ++count;
    } else {
        while (count < columns && m_model.source()->GetColumn(columns - 1 - count).pinned)
            ++count;
    }
    return count;
}

bool LockedColumns::IsLocked(int column) const {
    const int count = Count();
    return m_edge == Edge::Left ? column < count : column >= m_model.columnCount() - count;
}

int LockedColumns::Width() const {
    int width = 0;
    for (int column = 0; column < m_model.columnCount(); ++column)
        width += IsLocked(column) ? m_grid.columnWidth(column) : 0;
    return width;
}

int LockedColumns::CoveredWidth() const {
    return m_view && m_view->isVisibleTo(&m_grid) ? m_view->width() : 0;
}

void LockedColumns::HideOtherColumns() {
    for (int column = 0; m_view && column < m_model.columnCount(); ++column)
        m_view->setColumnHidden(column, !IsLocked(column) || m_grid.isColumnHidden(column));
}

void LockedColumns::Place() {
    if (!m_view)
        return;
    const int width = Width();
    const int room = m_grid.viewport()->width();
    const QScrollBar& bar = *m_grid.horizontalScrollBar();
    // Where the grid shows the same columns, and in a grid without room for both, they are not needed.
    const bool isNeeded = m_edge == Edge::Left
                              ? width > 0 && bar.value() > 0 && width < room
                              : width > 0 && bar.value() < bar.maximum() && width < kMostAtRight * room;
    if (isNeeded) {
        const int frame = m_grid.frameWidth();
        const int heading = m_grid.horizontalHeader()->height();
        m_view->horizontalHeader()->setFixedHeight(heading);
        m_view->setGeometry(m_edge == Edge::Left ? frame : frame + room - width, frame, width,
                            m_grid.viewport()->height() + heading);
        m_view->verticalScrollBar()->setValue(m_grid.verticalScrollBar()->value());
        if (m_border) {
            QPalette colors = m_border->palette();
            colors.setColor(QPalette::Window, tint::line(m_grid.palette()));
            m_border->setPalette(colors);
            m_border->setGeometry(0, 0, 1, m_view->height());
            m_border->raise();
        }
    }
    m_view->setVisible(isNeeded);
}

} // namespace tavix
