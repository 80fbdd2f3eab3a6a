#include "frame/ui/CRunTable.h"

#include "base/ui/QtText.h"
#include "base/ui/RoomyDelegate.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QHeaderView>

#include <algorithm>

namespace tavix {

namespace {

constexpr int kDateColumn = 0;
constexpr int kDescriptionColumn = 1;
constexpr int kDateWidth = 120;
constexpr int kDescriptionWidth = 230;

} // namespace

CRunTable::CRunTable(QWidget* parent) : QTreeWidget(parent) {
    setHeaderLabels({tr("Date/time"), tr("Description")});
    setItemDelegate(new RoomyDelegate(this));
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setAllColumnsShowFocus(true);
    setAlternatingRowColors(true);
    setTextElideMode(Qt::ElideRight);
    header()->setStretchLastSection(true);
    header()->setSectionsMovable(false);

    auto* copy = new QAction(tr("&Copy"), this);
    copy->setShortcut(QKeySequence::Copy);
    copy->setShortcutContext(Qt::WidgetShortcut);
    connect(copy, &QAction::triggered, this, [this] { CopySelected(); });
    addAction(copy);
    setContextMenuPolicy(Qt::ActionsContextMenu);
}

void CRunTable::SetRuns(const std::vector<RunInfo>& runs, int currentRun) {
    const std::locale locale = userLocale();
    clear();
    QList<QTreeWidgetItem*> items;
    QTreeWidgetItem* current = nullptr;
    for (const RunInfo& run : runs) {
        const QString description = toQString(run.description);
        auto* item = new QTreeWidgetItem({toQString(run.DateText(locale)), description});
        // Escaped inside rich text, so that markup in a description is shown as text.
        item->setToolTip(kDescriptionColumn, QLatin1String("<qt>") + description.toHtmlEscaped());
        if (run.id == currentRun) {
            current = item;
            QFont bold(font());
            bold.setBold(true);
            item->setFont(kDateColumn, bold);
            item->setFont(kDescriptionColumn, bold);
            item->setData(kDateColumn, Qt::AccessibleTextRole, tr("%1, current run").arg(item->text(kDateColumn)));
        }
        items.append(item);
    }
    addTopLevelItems(items);
    // The length of a date depends on the user's locale.
    resizeColumnToContents(kDateColumn);
    setColumnWidth(kDateColumn, std::max(kDateWidth, columnWidth(kDateColumn)));
    setColumnWidth(kDescriptionColumn, kDescriptionWidth);
    if (current) {
        setCurrentItem(current);
        scrollToItem(current, PositionAtCenter);
    }
}

int CRunTable::SelectedRow() const {
    const QModelIndexList rows = selectionModel()->selectedRows();
    return rows.isEmpty() ? -1 : rows.first().row();
}

void CRunTable::MarkDeleted(int row, bool deleted) {
    QTreeWidgetItem* item = topLevelItem(row);
    if (!item || item->font(kDateColumn).strikeOut() == deleted)
        return;
    for (const int column : {kDateColumn, kDescriptionColumn}) {
        QFont marked(item->font(column));
        marked.setStrikeOut(deleted);
        item->setFont(column, marked);
    }
}

void CRunTable::CopySelected() const {
    if (const QTreeWidgetItem* item = currentItem())
        QApplication::clipboard()->setText(item->text(kDateColumn) + QLatin1Char('\t') +
                                           item->text(kDescriptionColumn));
}

} // namespace tavix
