#include "grid/ui/GridMenus.h"

#include "base/ui/NestedLoop.h"
#include "base/ui/QtText.h"
#include "grid/OptionalColumns.h"
#include "grid/ui/CUGCtrl.h"
#include "grid/ui/GridModel.h"

#include <QItemSelectionModel>
#include <QMenu>

#include <string>

namespace tavix {

namespace {

// A menu takes "&" for the mark of a shortcut key.
QString entryText(const std::string& heading) {
    return toQString(heading).replace(u'&', QStringLiteral("&&"));
}

void run(QMenu& menu, const QPoint& globalPosition) {
    const NestedLoop loop(NestedLoop::Kind::Other);
    menu.exec(globalPosition);
}

} // namespace

const CUGDataSource* GridMenus::Source() const {
    return static_cast<const GridModel*>(m_grid.model())->source();
}

void GridMenus::Show(const QPoint& globalPosition) {
    const int rows = m_grid.model()->rowCount();
    QMenu menu(&m_grid);
    menu.addActions(m_grid.actions());
    if (!m_grid.actions().isEmpty())
        menu.addSeparator();
    const bool selected = m_grid.selectionModel()->hasSelection();
    QAction* copy = menu.addAction(QStringLiteral("&Copy"), QKeySequence(Qt::CTRL | Qt::Key_C), &m_grid,
                                   [this] { m_grid.CopySelection(false); });
    copy->setEnabled(selected);
    QAction* withHeadings =
        menu.addAction(QStringLiteral("Copy with &Headings"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_C), &m_grid,
                       [this] { m_grid.CopySelection(true); });
    withHeadings->setEnabled(selected);
    QAction* all = menu.addAction(QStringLiteral("Select &All"), QKeySequence(Qt::CTRL | Qt::Key_A), &m_grid,
                                  &QTableView::selectAll);
    all->setEnabled(rows > 0);
    const int column = m_grid.currentIndex().column();
    if (column >= 0 && rows > 1) {
        menu.addSeparator();
        menu.addAction(QStringLiteral("&Sort by %1").arg(entryText(Source()->GetColumn(column).heading)), &m_grid,
                       [this, column] { m_grid.ToggleSort(column); });
    }
    if (column >= 0)
        m_grid.AddHeadingEntries(menu, column);
    if (Source() && !OptionalColumns::Optional(*Source()).empty())
        AddColumnEntries(*menu.addMenu(QStringLiteral("C&olumns")));
    run(menu, globalPosition);
}

void GridMenus::ShowForHeading(int column, const QPoint& globalPosition) {
    if (!Source() || column >= Source()->GetColumnCount())
        return;
    QMenu menu(&m_grid);
    if (column >= 0) {
        for (const bool descending : {false, true}) {
            const QString text = descending ? QStringLiteral("Sort &Descending") : QStringLiteral("Sort &Ascending");
            menu.addAction(text, &m_grid, [this, column, descending] { m_grid.SortBy(column, descending); })
                ->setEnabled(Source()->GetRowCount() > 1);
        }
        m_grid.AddHeadingEntries(menu, column);
        menu.addSeparator();
    }
    AddColumnEntries(menu);
    if (!menu.isEmpty())
        run(menu, globalPosition);
}

void GridMenus::AddColumnEntries(QMenu& menu) {
    menu.setToolTipsVisible(true);
    for (const int column : OptionalColumns::Optional(*Source())) {
        const GridColumn shown = Source()->GetColumn(column);
        QAction* action = menu.addAction(entryText(shown.heading));
        action->setCheckable(true);
        action->setChecked(m_optional.IsShown(shown));
        if (!shown.toolTip.empty())
            action->setToolTip(toQString(shown.toolTip));
        QObject::connect(action, &QAction::toggled, &m_grid, [this, shown](bool isShown) {
            m_optional.Choose(shown, isShown);
            m_grid.ShowColumns();
        });
    }
}

} // namespace tavix
