#include "grid/ui/ColumnWidths.h"

#include "grid/ui/CellDelegate.h"
#include "grid/ui/GridHeader.h"
#include "grid/ui/GridModel.h"

#include <QHeaderView>
#include <QTableView>

#include <algorithm>
#include <optional>

namespace tavix {

namespace {

// A column does not grow by itself beyond the width of about so many characters.
constexpr int kMostCharacters = 40;

} // namespace

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
    m_needs.clear();
    const auto* header = static_cast<const GridHeader*>(m_view.horizontalHeader());
    for (int column = 0; column < m_model.columnCount(); ++column) {
        const GridColumn shown = m_model.source()->GetColumn(column);
        ColumnNeed need;
        need.least = Scaled(shown.width);
        need.takesRest = shown.takesRest;
        need.isName = shown.locked;
        if (const auto chosen = m_memory ? m_memory->ReadWidth(shown.identity()) : std::nullopt)
            need.chosen = Scaled(*chosen);
        if (!need.chosen && !m_view.isColumnHidden(column)) {
            need.heading = header->NeededWidth(column);
            Measure(column, need);
        }
        m_needs.push_back(need);
    }
    FitToView();
}

void ColumnWidths::Measure(int column, ColumnNeed& need) const {
    const ColumnSample sample = sampleColumn(*m_model.source(), column, need.isName);
    need.isBlank = sample.isBlank;
    const auto* delegate = static_cast<const CellDelegate*>(m_view.itemDelegate());
    for (const GridCell& cell : sample.longest)
        need.content = std::max(need.content, delegate->neededWidth(cell, m_view.font()));
}

void ColumnWidths::FitToView() {
    if (m_needs.empty() || m_needs.size() != static_cast<std::size_t>(m_model.columnCount()))
        return;
    std::vector<int> shown;
    std::vector<ColumnNeed> needs;
    for (int column = 0; column < m_model.columnCount(); ++column) {
        if (m_view.isColumnHidden(column))
            continue;
        shown.push_back(column);
        needs.push_back(m_needs[static_cast<std::size_t>(column)]);
    }
    const int bound = kMostCharacters * m_view.fontMetrics().averageCharWidth();
    const std::vector<int> widths = fitColumns(needs, m_view.viewport()->width(), bound);
    const Placing placing(*this);
    for (std::size_t at = 0; at < shown.size(); ++at) {
        if (m_view.columnWidth(shown[at]) != widths[at])
            m_view.setColumnWidth(shown[at], widths[at]);
    }
}

void ColumnWidths::Changed(int column, int width) {
    if (m_placing > 0 || column >= m_model.columnCount())
        return;
    // A stretched column was resized by the header.
    if (m_view.horizontalHeader()->sectionResizeMode(column) == QHeaderView::Stretch)
        return;
    if (static_cast<std::size_t>(column) < m_needs.size())
        m_needs[static_cast<std::size_t>(column)].chosen = width;
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
