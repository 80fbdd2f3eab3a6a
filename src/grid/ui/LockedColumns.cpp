#include "grid/ui/LockedColumns.h"

#include "grid/ui/GridModel.h"

#include <QHeaderView>
#include <QScrollBar>

namespace tavix {

LockedColumns::LockedColumns(QTableView& grid, const GridModel& model) : QObject(&grid), m_grid(grid), m_model(model) {}

QTableView& LockedColumns::MakeView() {
    m_view = new QTableView(&m_grid);
    m_view->setModel(m_grid.model());
    m_view->setSelectionModel(m_grid.selectionModel());
    m_view->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_view->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_view->setHorizontalScrollMode(QTableView::ScrollPerPixel);
    m_view->setFocusProxy(&m_grid);
    m_view->setContextMenuPolicy(Qt::CustomContextMenu);
    m_view->setObjectName(QStringLiteral("lockedColumns"));
    m_view->setAccessibleName(QStringLiteral("Locked columns"));
    m_view->hide();
    m_grid.viewport()->stackUnder(m_view);
    connect(m_view->verticalScrollBar(), &QScrollBar::valueChanged, m_grid.verticalScrollBar(), &QScrollBar::setValue);
    connect(m_grid.verticalScrollBar(), &QScrollBar::valueChanged, m_view->verticalScrollBar(), &QScrollBar::setValue);
    return *m_view;
}

int LockedColumns::Count() const {
    int locked = 0;
    while (locked < m_model.columnCount() && m_model.source()->GetColumn(locked).locked)
        ++locked;
    return locked;
}

int LockedColumns::Width() const {
    int width = 0;
    for (int column = 0, locked = Count(); column < locked; ++column)
        width += m_grid.columnWidth(column);
    return width;
}

void LockedColumns::HideOtherColumns() {
    for (int column = 0, locked = Count(); m_view && column < m_model.columnCount(); ++column)
        m_view->setColumnHidden(column, column >= locked);
}

void LockedColumns::Place() {
    if (!m_view)
        return;
    const int width = Width();
    // Unscrolled, the grid shows the same columns; a grid narrower than they are has no room for both.
    const bool isNeeded = width > 0 && m_grid.horizontalScrollBar()->value() > 0 && width < m_grid.viewport()->width();
    if (isNeeded) {
        const int frame = m_grid.frameWidth();
        const int heading = m_grid.horizontalHeader()->height();
        m_view->horizontalHeader()->setFixedHeight(heading);
        m_view->setGeometry(frame, frame, width, m_grid.viewport()->height() + heading);
        m_view->verticalScrollBar()->setValue(m_grid.verticalScrollBar()->value());
    }
    m_view->setVisible(isNeeded);
}

} // namespace tavix
