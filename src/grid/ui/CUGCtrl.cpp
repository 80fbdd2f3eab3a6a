#include "grid/ui/CUGCtrl.h"

#include "base/ui/QtText.h"
#include "grid/GridCopy.h"
#include "grid/ui/CellDelegate.h"
#include "grid/ui/GridHeader.h"
#include "grid/ui/GridMenus.h"
#include "grid/ui/GridModel.h"
#include "grid/ui/LockedColumns.h"
#include "grid/ui/RowEnds.h"
#include "grid/ui/TypingSearch.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QScrollBar>
#include <QStyle>

#include <algorithm>
#include <limits>
#include <unordered_set>

namespace tavix {

namespace {

// Sorting this many rows takes long enough to need a wait cursor.
constexpr int kManyRows = 100'000;

class WaitCursor {
  public:
    explicit WaitCursor(bool shown) : m_shown(shown) {
        if (shown)
            QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    }
    ~WaitCursor() {
        if (m_shown)
            QGuiApplication::restoreOverrideCursor();
    }
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;

  private:
    bool m_shown;
};

} // namespace

CUGCtrl::~CUGCtrl() = default;

CUGCtrl::CUGCtrl(QWidget* parent)
    : QTableView(parent),
      m_model(new GridModel(this)),
      m_widths(*this, *m_model),
      m_locked(new LockedColumns(*this, *m_model, LockedColumns::Edge::Left)),
      m_pinned(new LockedColumns(*this, *m_model, LockedColumns::Edge::Right)),
      m_search(new TypingSearch(*this, *m_model)),
      m_menus(std::make_unique<GridMenus>(*this, m_optional)) {
    setModel(m_model);
    SetUpView(*this);
    setHorizontalScrollMode(ScrollPerPixel);
    setTabKeyNavigation(false);
    ApplyFont();
    connect(m_search, &TypingSearch::Found, this, &CUGCtrl::SelectRow);
    // Moving to another row by hand ends a search.
    connect(selectionModel(), &QItemSelectionModel::currentRowChanged, m_search, &TypingSearch::Stop);
    connect(selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this](const QModelIndex& current) { Q_EMIT CurrentRowChanged(current.isValid() ? current.row() : -1); });
}

void CUGCtrl::SetUpView(QTableView& view) {
    view.setHorizontalHeader(new GridHeader(&view));
    // A click on a heading sorts; it does not select the whole column.
    disconnect(view.horizontalHeader(), &QHeaderView::sectionPressed, &view, nullptr);
    disconnect(view.horizontalHeader(), &QHeaderView::sectionEntered, &view, nullptr);
    auto* delegate = new CellDelegate(*m_model, &view);
    delegate->setShowsInvisible(m_showsInvisible);
    view.setItemDelegate(delegate);
    view.verticalHeader()->hide();
    view.verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    view.setSelectionBehavior(SelectRows);
    view.setSelectionMode(ExtendedSelection);
    view.setEditTriggers(NoEditTriggers);
    view.setAlternatingRowColors(true);
    view.setShowGrid(false);
    view.setWordWrap(false);
    view.setCornerButtonEnabled(false);
    view.setFrameShape(QFrame::NoFrame);
    connect(&view, &QTableView::doubleClicked, this,
            [this](const QModelIndex& index) { Q_EMIT RowActivated(index.row()); });
    view.horizontalHeader()->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(view.horizontalHeader(), &QWidget::customContextMenuRequested, this, [this, &view](const QPoint& at) {
        QHeaderView* header = view.horizontalHeader();
        m_menus->ShowForHeading(header->logicalIndexAt(at), header->mapToGlobal(at));
    });
    connect(view.horizontalHeader(), &QHeaderView::sectionClicked, this, &CUGCtrl::ToggleSort);
    connect(view.horizontalHeader(), &QHeaderView::sectionResized, this, [this, &view](int column, int, int width) {
        // Hiding a column in one view resizes it to 0 there.
        for (QTableView* other : Views()) {
            if (width > 0 && other != &view && !other->isColumnHidden(column) && other->columnWidth(column) != width)
                other->setColumnWidth(column, width);
        }
        if (width > 0)
            m_widths.Changed(column, width); // NOLINT(clang-analyzer-core.CallAndMessage): a member is never null
        PlaceLocked();
    });
}

std::vector<QTableView*> CUGCtrl::Views() {
    std::vector<QTableView*> views = {this};
    for (const LockedColumns* locked : {m_locked, m_pinned}) {
        if (QTableView* view = locked ? locked->View() : nullptr)
            views.push_back(view);
    }
    return views;
}

void CUGCtrl::SetSource(CUGDataSource* source) {
    m_sortKey.reset();
    m_model->setSource(source);
    ApplyColumns();
}

void CUGCtrl::SourceChanged() {
    m_sortKey.reset();
    m_model->sourceChanged();
    ApplyColumns();
}

void CUGCtrl::RowsRefilled() {
    m_model->sourceChanged();
    ApplyColumns();
    for (int column = 0; column < m_model->columnCount() && m_sortKey; ++column) {
        if (m_model->source()->GetColumn(column).identity() == *m_sortKey) {
            Sort(column, m_sortDescending);
            return;
        }
    }
}

void CUGCtrl::ApplyFont() {
    const int height = std::max(fontMetrics().height(), 16) + 10;
    for (QTableView* view : Views()) {
        view->verticalHeader()->setMinimumSectionSize(height);
        view->verticalHeader()->setDefaultSectionSize(height);
    }
}

void CUGCtrl::ApplyColumns() {
    for (LockedColumns* locked : {m_locked, m_pinned}) {
        if (!locked->NeedsView())
            continue;
        QTableView& view = locked->MakeView();
        SetUpView(view);
        ApplyFont();
        connect(&view, &QWidget::customContextMenuRequested, this,
                [this, &view](const QPoint& at) { m_menus->Show(view.viewport()->mapToGlobal(at)); });
    }
    {
        const ColumnWidths::Placing placing(m_widths);
        for (int column = 0; column < m_model->columnCount(); ++column)
            setColumnHidden(column, !m_optional.IsShown(m_model->source()->GetColumn(column)));
        m_locked->HideOtherColumns();
        m_pinned->HideOtherColumns();
    }
    m_widths.Apply();
    m_sortColumn = -1;
    ShowSortArrow();
    // The height of the headings may have changed.
    updateGeometries();
    PlaceLocked();
}

void CUGCtrl::PlaceLocked() {
    m_locked->Place();
    m_pinned->Place();
    const int covered = m_pinned->CoveredWidth();
    const int free = covered > 0 ? viewport()->width() - covered : std::numeric_limits<int>::max();
    static_cast<CellDelegate*>(itemDelegate())->setFreeWidth(free);
    static_cast<GridHeader*>(horizontalHeader())->SetFreeWidth(free);
    // Scrolling moves what was painted, also the cells that were covered in part.
    if (covered > 0) {
        viewport()->update();
        horizontalHeader()->viewport()->update();
    }
}

void CUGCtrl::ShowColumns() {
    const int sorted = m_sortColumn;
    ApplyColumns();
    m_sortColumn = sorted;
    ShowSortArrow();
}

void CUGCtrl::ShowSortArrow() {
    for (QTableView* view : Views()) {
        view->horizontalHeader()->setSortIndicatorShown(true);
        view->horizontalHeader()->setSortIndicator(m_sortColumn,
                                                   m_sortDescending ? Qt::DescendingOrder : Qt::AscendingOrder);
    }
}

void CUGCtrl::SetColumnMemory(std::unique_ptr<ColumnMemory> memory) {
    m_widths.SetMemory(memory.get());
    m_optional.SetMemory(memory.get());
    m_memory = std::move(memory);
    ApplyColumns();
}

void CUGCtrl::hideEvent(QHideEvent* event) {
    m_widths.Keep();
    QTableView::hideEvent(event);
}

void CUGCtrl::SetShowsInvisible(bool shows) {
    m_showsInvisible = shows;
    for (QTableView* view : Views()) {
        static_cast<CellDelegate*>(view->itemDelegate())->setShowsInvisible(shows);
        view->viewport()->update();
    }
}

std::int64_t CUGCtrl::GetCurrentRow() const {
    return currentIndex().isValid() ? currentIndex().row() : -1;
}

void CUGCtrl::SelectCell(std::int64_t row, int column) {
    if (row < 0 || row >= m_model->rowCount() || column < 0 || column >= m_model->columnCount())
        return;
    const QModelIndex index = m_model->index(static_cast<int>(row), column);
    selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    scrollTo(index);
}

std::vector<std::int64_t> CUGCtrl::GetSelectedRows() const {
    std::vector<std::int64_t> rows;
    // Ranges, not indexes: "select all" is a single range.
    for (const QItemSelectionRange& range : selectionModel()->selection()) {
        for (int row = range.top(); row <= range.bottom(); ++row)
            rows.push_back(row);
    }
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    return rows;
}

void CUGCtrl::ToggleSort(int column) {
    SortBy(column, m_sortColumn == column && !m_sortDescending);
    // The header has moved the arrow to the clicked heading, even if the rows could not be sorted.
    ShowSortArrow();
}

void CUGCtrl::SortBy(int column, bool descending) {
    // A click on a heading does nothing for a single row.
    if (m_model->rowCount() < 2 || !Sort(column, descending))
        return;
    m_sortKey = m_model->source()->GetColumn(column).identity();
}

bool CUGCtrl::Sort(int column, bool descending) {
    CUGDataSource* source = m_model->source();
    if (!source)
        return false;
    const WaitCursor wait(m_model->rowCount() >= kManyRows);
    std::unordered_set<std::int64_t> selected;
    for (const std::int64_t row : GetSelectedRows())
        selected.insert(source->GetRowKey(row));
    const std::int64_t current = GetCurrentRow();
    const std::int64_t currentKey = current < 0 ? -1 : source->GetRowKey(current);
    if (!source->Sort(column, descending))
        return false;

    m_sortColumn = column;
    m_sortDescending = descending;
    ShowSortArrow();
    QItemSelection selection;
    QModelIndex newCurrent;
    for (int row = 0; row < m_model->rowCount() && (!selected.empty() || current >= 0); ++row) {
        const std::int64_t key = source->GetRowKey(row);
        if (selected.count(key) != 0)
            selection.select(m_model->index(row, 0), m_model->index(row, m_model->columnCount() - 1));
        if (current >= 0 && key == currentKey)
            newCurrent = m_model->index(row, std::max(0, currentIndex().column()));
    }
    m_model->orderChanged();
    selectionModel()->setCurrentIndex(newCurrent, QItemSelectionModel::NoUpdate);
    selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
    if (newCurrent.isValid())
        scrollTo(newCurrent);
    return true;
}

void CUGCtrl::CopySelection(bool withHeadings) const {
    const std::vector<std::int64_t> rows = GetSelectedRows();
    if (!m_model->source() || rows.empty())
        return;
    const std::vector<int> columns = m_optional.ShownColumns(*m_model->source());
    QApplication::clipboard()->setText(toQString(copyRows(*m_model->source(), rows, columns, withHeadings)));
}

// Home and End move within the list, not within a row: whole rows are selected.
QModelIndex CUGCtrl::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) {
    const int rows = m_model->rowCount();
    if ((action != MoveHome && action != MoveEnd) || rows == 0)
        return QTableView::moveCursor(action, modifiers);
    return m_model->index(action == MoveHome ? 0 : rows - 1, std::max(0, currentIndex().column()));
}

void CUGCtrl::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape && m_search->IsRunning()) {
        m_search->Stop();
        return;
    }
    const bool control = event->modifiers().testFlag(Qt::ControlModifier);
    if (control && event->key() == Qt::Key_C) {
        CopySelection(event->modifiers().testFlag(Qt::ShiftModifier));
        return;
    }
    if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && GetCurrentRow() >= 0) {
        Q_EMIT RowActivated(GetCurrentRow());
        return;
    }
    // The view around the grid switches its tabs with these keys.
    if (control && (event->key() == Qt::Key_PageUp || event->key() == Qt::Key_PageDown)) {
        event->ignore();
        return;
    }
    QTableView::keyPressEvent(event);
}

void CUGCtrl::keyboardSearch(const QString& typed) {
    m_search->Type(typed);
}

void CUGCtrl::contextMenuEvent(QContextMenuEvent* event) {
    if (event->reason() == QContextMenuEvent::Keyboard && currentIndex().isValid())
        m_menus->Show(viewport()->mapToGlobal(visualRect(currentIndex()).bottomLeft()));
    else
        m_menus->Show(event->globalPos());
}

void CUGCtrl::AddHeadingEntries(QMenu& menu, int column) const {
    if (m_addHeadingEntries)
        m_addHeadingEntries(menu, column);
}

int CUGCtrl::EndOfColumns() const {
    return horizontalHeader()->length() - horizontalHeader()->offset();
}

QModelIndex CUGCtrl::indexAt(const QPoint& at) const {
    const int end = EndOfColumns();
    return QTableView::indexAt(at.x() >= end && end > 0 ? QPoint(end - 1, at.y()) : at);
}

void CUGCtrl::paintEvent(QPaintEvent* event) {
    paintRowEnds(*this, std::max(0, EndOfColumns()));
    QTableView::paintEvent(event);
}

// The selection is paler without the focus.
void CUGCtrl::focusInEvent(QFocusEvent* event) {
    QTableView::focusInEvent(event);
    for (QTableView* view : Views())
        view->viewport()->update();
}

void CUGCtrl::focusOutEvent(QFocusEvent* event) {
    QTableView::focusOutEvent(event);
    for (QTableView* view : Views())
        view->viewport()->update();
}

void CUGCtrl::resizeEvent(QResizeEvent* event) {
    QTableView::resizeEvent(event);
    m_search->PlaceLine();
    m_widths.FitToView();
    PlaceLocked();
}

void CUGCtrl::changeEvent(QEvent* event) {
    QTableView::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        ApplyFont();
    if (event->type() == QEvent::FontChange)
        m_widths.Apply();
    if (event->type() == QEvent::PaletteChange)
        PlaceLocked();
}

void CUGCtrl::scrollContentsBy(int dx, int dy) {
    QTableView::scrollContentsBy(dx, dy);
    if (dx != 0)
        PlaceLocked();
}

void CUGCtrl::scrollTo(const QModelIndex& index, ScrollHint hint) {
    const int sideways = horizontalScrollBar()->value();
    QTableView::scrollTo(index, hint);
    const QRect cell = visualRect(index);
    const int end = viewport()->width() - m_pinned->CoveredWidth();
    if (m_locked->IsLocked(index.column()) || (m_pinned->IsLocked(index.column()) && m_pinned->CoveredWidth() > 0))
        horizontalScrollBar()->setValue(sideways); // always in view
    else if (const int hiddenAtRight = cell.right() + 1 - end; hiddenAtRight > 0)
        horizontalScrollBar()->setValue(horizontalScrollBar()->value() + hiddenAtRight);
    if (const int hidden = m_locked->Width() - visualRect(index).left();
        hidden > 0 && !m_locked->IsLocked(index.column()))
        horizontalScrollBar()->setValue(horizontalScrollBar()->value() - hidden);
}

} // namespace tavix
