#include "frame/ui/CRunTable.h"

#include "base/ui/QtText.h"
#include "base/ui/RoomyDelegate.h"
#include "grid/FoldedFinder.h"
#include "report/RunList.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QScrollBar>

#include <algorithm>

namespace tavix {

namespace {

enum Columns { DateColumn, DescriptionColumn, RunColumn, TablesColumn, RecordsColumn, ChangeColumn, ColumnCount };
constexpr int kDateWidth = 120;
constexpr int kDescriptionWidth = 230;

} // namespace

CRunTable::CRunTable(QWidget* parent) : QTreeWidget(parent) {
    setHeaderLabels({tr("Date/time"), tr("Description"), tr("Run"), tr("Tables"), tr("Records"), tr("Change")});
    headerItem()->setToolTip(ChangeColumn, tr("The change in the number of records since the run before"));
    for (const int column : {TablesColumn, RecordsColumn, ChangeColumn})
        headerItem()->setTextAlignment(column, Qt::AlignRight | Qt::AlignVCenter);
    setItemDelegate(new RoomyDelegate(this));
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setAllColumnsShowFocus(true);
    setAlternatingRowColors(true);
    setTextElideMode(Qt::ElideRight);
    header()->setStretchLastSection(false);
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
    for (const RunRow& run : listRuns(runs, locale)) {
        const QString description = toQString(run.description);
        auto* item = new QTreeWidgetItem({toQString(run.date), description, toQString(run.run), toQString(run.tables),
                                          toQString(run.records), toQString(run.change)});
        for (const int column : {TablesColumn, RecordsColumn, ChangeColumn})
            item->setTextAlignment(column, Qt::AlignRight | Qt::AlignVCenter);
        // Escaped inside rich text, so that markup in a description is shown as text.
        item->setToolTip(DescriptionColumn, QLatin1String("<qt>") + description.toHtmlEscaped());
        if (run.id == currentRun) {
            current = item;
            QFont bold(font());
            bold.setBold(true);
            for (int column = 0; column < ColumnCount; ++column)
                item->setFont(column, bold);
            item->setData(DateColumn, Qt::AccessibleTextRole, tr("%1, current run").arg(item->text(DateColumn)));
        }
        items.append(item);
    }
    addTopLevelItems(items);
    // The length of a date depends on the user's locale.
    for (int column = 0; column < ColumnCount; ++column)
        if (column != DescriptionColumn)
            resizeColumnToContents(column);
    setColumnWidth(DateColumn, std::max(kDateWidth, columnWidth(DateColumn)));
    FitDescription();
    if (current) {
        setCurrentItem(current);
        scrollToItem(current, PositionAtCenter);
        horizontalScrollBar()->setValue(0);
    }
}

void CRunTable::FitDescription() {
    const int others = header()->length() - columnWidth(DescriptionColumn);
    setColumnWidth(DescriptionColumn, std::max(kDescriptionWidth, viewport()->width() - others));
}

void CRunTable::resizeEvent(QResizeEvent* event) {
    QTreeWidget::resizeEvent(event);
    FitDescription();
}

int CRunTable::ShowMatching(const QString& text) {
    const FoldedFinder finder(toUtf8(text.simplified()));
    QTreeWidgetItem* first = nullptr;
    int shown = 0;
    for (int row = 0; row < topLevelItemCount(); ++row) {
        QTreeWidgetItem* item = topLevelItem(row);
        const QString searched =
            item->text(RunColumn) + u'\n' + item->text(DateColumn) + u'\n' + item->text(DescriptionColumn);
        const bool matches = finder.isIn(toUtf8(searched));
        item->setHidden(!matches);
        shown += matches ? 1 : 0;
        if (matches && !first)
            first = item;
    }
    if (!currentItem() || currentItem()->isHidden())
        setCurrentItem(first);
    if (currentItem()) {
        scrollToItem(currentItem());
        horizontalScrollBar()->setValue(0);
    }
    return shown;
}

int CRunTable::SelectedRow() const {
    const QModelIndexList rows = selectionModel()->selectedRows();
    return rows.isEmpty() ? -1 : rows.first().row();
}

void CRunTable::MarkDeleted(int row, bool deleted) {
    QTreeWidgetItem* item = topLevelItem(row);
    if (!item || item->font(DateColumn).strikeOut() == deleted)
        return;
    for (int column = 0; column < ColumnCount; ++column) {
        QFont marked(item->font(column));
        marked.setStrikeOut(deleted);
        item->setFont(column, marked);
    }
}

void CRunTable::CopySelected() const {
    if (const QTreeWidgetItem* item = currentItem())
        QApplication::clipboard()->setText(item->text(DateColumn) + QLatin1Char('\t') + item->text(DescriptionColumn));
}

} // namespace tavix
