#include "grid/ui/ColumnWidths.h"

#include "grid/ui/GridModel.h"

#include <QHeaderView>
#include <QTableView>

#include <algorithm>
#include <optional>

namespace tavix {

ColumnWidths::ColumnWidths(QTableView& view, const GridModel& model) : m_view(view), m_model(model) {
    // A drag changes the width many times; only the last one is stored.
    m_keepSoon.setSingleShot(true);
    m_keepSoon.setInterval(500);
    QObject::connect(&m_keepSoon, &QTimer::timeout, &m_keepSoon, [this] { Keep(); });
}

ColumnWidths::~ColumnWidths() {
    Keep();
}

void ColumnWidths::SetMemory(ColumnMemory* memory) {
    Keep();
    m_memory = memory;
}

void ColumnWidths::Apply() {
    Keep();
    m_fitted = -1;
    const Placing placing(*this);
    for (int column = 0; column < m_model.columnCount(); ++column) {
        const GridColumn shown = m_model.source()->GetColumn(column);
        const std::optional<int> dragged = m_memory ? m_memory->ReadWidth(shown.identity()) : std::nullopt;
        m_view.setColumnWidth(column, Scaled(dragged.value_or(shown.width)));
        if (shown.takesRest && !dragged)
            m_fitted = column;
    }
    FitToView();
}

void ColumnWidths::FitToView() {
    if (m_fitted < 0 || m_fitted >= m_model.columnCount())
        return;
    const Placing placing(*this);
    const int others = m_view.horizontalHeader()->length() - m_view.columnWidth(m_fitted);
    const int least = Scaled(m_model.source()->GetColumn(m_fitted).width);
    m_view.setColumnWidth(m_fitted, std::max(least, m_view.viewport()->width() - others));
}

void ColumnWidths::Changed(int column, int width) {
    if (m_placing > 0 || column >= m_model.columnCount())
        return;
    // A stretched column was resized by the header.
    if (m_view.horizontalHeader()->sectionResizeMode(column) == QHeaderView::Stretch)
        return;
    if (column == m_fitted)
        m_fitted = -1;
    if (!m_memory)
        return;
    m_dragged[m_model.source()->GetColumn(column).identity()] = width * 96 / m_view.logicalDpiX();
    m_keepSoon.start();
}

void ColumnWidths::Keep() {
    m_keepSoon.stop();
    for (const auto& [column, width] : m_dragged)
        m_memory->KeepWidth(column, width);
    m_dragged.clear();
}

int ColumnWidths::Scaled(int pixels) const {
    return pixels * m_view.logicalDpiX() / 96;
}

} // namespace tavix
